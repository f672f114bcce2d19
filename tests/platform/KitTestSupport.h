#pragma once
// Shared by the kit's tests: a shown phone-sized window, and drags made of real mouse events.

#include "Pointer.h"
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

// A slow drag by a person's pointer, from `from` in the scroll view's viewport: the content
// follows and, once let go, settles without gliding.
inline void drag(ScrollView *scrollView, QPoint from, QPoint delta)
{
    testsupport::Pointer pointer(scrollView);
    pointer.drag(pointer.inWindow(from, scrollView->viewport()), delta);
}

} // namespace kittest
