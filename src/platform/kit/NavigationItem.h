#pragma once
// What the navigation bar shows for one screen: its title, its left and right bar button
// items and whether the back button is hidden. Owned by its view controller. Main thread.

#include <QObject>
#include <QPointer>
#include <QString>

#include "BarButtonItem.h"

class NavigationItem : public QObject
{
    Q_OBJECT
public:
    explicit NavigationItem(QObject *parent = nullptr);

    void setTitle(const QString &title);
    QString title() const { return m_title; }

    // The item takes ownership; the item it replaces is deleted.
    void setLeftBarButtonItem(BarButtonItem *item);
    BarButtonItem *leftBarButtonItem() const { return m_left; }
    void setRightBarButtonItem(BarButtonItem *item);
    BarButtonItem *rightBarButtonItem() const { return m_right; }

    void setHidesBackButton(bool hides, bool animated = false);
    bool hidesBackButton() const { return m_hidesBackButton; }

signals:
    void changed();

private:
    void replaceItem(QPointer<BarButtonItem> &slot, BarButtonItem *item);

    QString m_title;
    QPointer<BarButtonItem> m_left;
    QPointer<BarButtonItem> m_right;
    bool m_hidesBackButton = false;
};
