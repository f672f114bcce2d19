#pragma once
// A button for the navigation bar: a title, a style and an action run when it is tapped.
// An item with no action is a blank spacer that still takes the back button's place.
// Owned by the navigation item it is given to. Main thread.

#include <QObject>
#include <QString>

#include <functional>

class BarButtonItem : public QObject
{
    Q_OBJECT
public:
    enum class Style { Plain = 0, Bordered = 1, Done = 2 };
    using Action = std::function<void()>;

    explicit BarButtonItem(const QString &title, Style style = Style::Plain, Action action = {},
                           QObject *parent = nullptr);

    void setTitle(const QString &title);
    QString title() const { return m_title; }
    Style style() const { return m_style; }
    bool hasAction() const { return bool(m_action); }

    // What a tap on the item does.
    void trigger();

signals:
    void changed();
    void triggered();

private:
    QString m_title;
    Style m_style;
    Action m_action;
};
