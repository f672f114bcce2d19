#pragma once
// Calls its action when the view it is attached to is tapped (pressed and released inside
// without dragging). The view must handle touches (View::setUserInteractionEnabled). The
// recogniser belongs to its view. Main thread.

#include <QObject>
#include <QPointF>
#include <QPointer>

#include <functional>

class TapGestureRecognizer : public QObject
{
    Q_OBJECT
public:
    using Action = std::function<void(TapGestureRecognizer *)>;

    TapGestureRecognizer(QWidget *view, Action action);

    QWidget *view() const { return m_view; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> m_view;
    Action m_action;
    QPointF m_pressPosition;
    bool m_pressed = false;
};
