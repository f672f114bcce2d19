#pragma once
// A person's mouse on a shown window. Events enter through the window system, so they reach
// the widget under the pointer (and the widget that took the press keeps them), exactly as
// real ones do; their timestamps run on QTest's simulated clock, so speeds are exact and no
// test waits for real time to pass.

#include <QTest>
#include <QWidget>
#include <QWindow>
#include <qpa/qwindowsysteminterface.h>

namespace testsupport {

class Pointer
{
public:
    // Slow enough that letting go adds no speed: 20 ms a step, and a pause before release.
    static constexpr int kSlowStepMs = 20;
    static constexpr int kPauseMs = 200;
    // Quick: 8 ms a step, released at once.
    static constexpr int kFlickStepMs = 8;

    explicit Pointer(QWidget *anyWidgetInWindow) : m_window(anyWidgetInWindow->window()) {}

    // `at` in `widget`'s coordinates (the window's when none is given).
    QPoint inWindow(QPoint at, const QWidget *widget = nullptr) const
    {
        return widget ? widget->mapTo(m_window, at) : at;
    }
    // The widget a press at `at` (window coordinates) lands on.
    QWidget *widgetAt(QPoint at) const
    {
        QWidget *child = m_window->childAt(at);
        return child ? child : m_window;
    }

    void press(QPoint at)
    {
        m_at = at;
        QTest::mousePress(m_window->windowHandle(), Qt::LeftButton, {}, at);
    }
    void moveTo(QPoint at, int afterMs)
    {
        m_at = at;
        QTest::mouseMove(m_window->windowHandle(), at, afterMs);
    }
    void release(int afterMs = 1)
    {
        QTest::mouseRelease(m_window->windowHandle(), Qt::LeftButton, {}, m_at, afterMs);
    }

    void tap(QPoint at)
    {
        press(at);
        release();
    }
    // Moves by `delta` in `steps`, `stepMs` apart, and lets go after `pauseMs`.
    void drag(QPoint from, QPoint delta, int steps = 10, int stepMs = kSlowStepMs, int pauseMs = kPauseMs)
    {
        press(from);
        for (int i = 1; i <= steps; ++i)
            moveTo(from + delta * i / steps, stepMs);
        release(pauseMs);
    }
    void flick(QPoint from, QPoint delta, int steps = 5)
    {
        drag(from, delta, steps, kFlickStepMs, 1);
    }

    // Wheel notches (120 = one notch; positive y turns the wheel away, scrolling up), or a
    // touchpad's pixels when `pixels` is set, to the widget under the pointer.
    void wheel(QPoint at, QPoint angleDelta, QPoint pixels = {}, Qt::ScrollPhase phase = Qt::NoScrollPhase)
    {
        // Touchpads report an angle with their pixels; the window system drops updates without.
        if (angleDelta.isNull())
            angleDelta = pixels;
        QWindowSystemInterface::handleWheelEvent(m_window->windowHandle(), QPointF(at),
                                                 m_window->mapToGlobal(QPointF(at)), pixels, angleDelta, {}, phase);
        QWindowSystemInterface::flushWindowSystemEvents();
    }

private:
    QWidget *m_window;
    QPoint m_at;
};

} // namespace testsupport
