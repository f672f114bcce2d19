#pragma once
// A person's finger and keyboard for scripted walks through the app: taps, drags and typed
// text enter through the window the way the platform delivers them, so the kit's gesture
// handling, hit-testing and focus decide what they do. Main thread.

#include <QPointF>
#include <QPointer>
#include <QString>

class QWidget;
class QWindow;
class Window;

class TouchDriver
{
public:
    // One finger step while dragging, and the pause that lets a drag end without a fling.
    static constexpr int kStepMs = 16;
    static constexpr int kRestMs = 80;

    explicit TouchDriver(Window *window);

    // Taps the middle of `target`; false when it is not on screen in the window.
    bool tap(QWidget *target);
    void tapAt(const QPointF &windowPoint);
    // Moves the finger from one point to the other in `steps` steps and lifts it; a slow drag
    // rests before lifting so the content stops where it is, a fast one flicks.
    void drag(const QPointF &from, const QPointF &to, int steps, bool flick);
    // Commits text to whatever has the keyboard focus, as an input method does.
    bool type(const QString &text);

    // Where `target`'s middle lies in window coordinates, if it is visible there.
    bool centreOf(QWidget *target, QPointF *windowPoint) const;

private:
    void send(int type, const QPointF &windowPoint, bool buttonDown);
    QWindow *handle() const;

    QPointer<Window> m_window;
    qint64 m_clock = 0;
};
