#pragma once
// Shared by the kit's tests: a shown phone-sized window, and drags made of real mouse events.

#include "ScrollView.h"
#include "Window.h"

#include <QTest>

#include <memory>

namespace kittest {

inline std::unique_ptr<Window> shownWindow()
{
    auto window = std::make_unique<Window>(QSize(375, 667));
    window->show();
    return window;
}

// Presses at `from` in the scroll view's viewport, moves by `delta` in steps, and lets go.
inline void drag(ScrollView *scrollView, QPoint from, QPoint delta, int steps = 8)
{
    QWidget *viewport = scrollView->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, from);
    for (int i = 1; i <= steps; ++i) {
        const QPoint at = from + delta * i / steps;
        QMouseEvent move(QEvent::MouseMove, at, viewport->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &move);
    }
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, from + delta);
}

} // namespace kittest
