#pragma once
// Carries out a modal presentation or dismissal in the presenter's window: the presented view
// covers the whole window (sliding up when animated), and appearance hooks run on both sides.
// Main thread.

#include <functional>

class ViewController;

class ModalTransition
{
public:
    ModalTransition() = delete;

    static constexpr int kDurationMs = 300;

    static void present(ViewController *presenter, ViewController *presented, bool animated,
                        const std::function<void()> &completion);
    static void dismiss(ViewController *presenter, bool animated, const std::function<void()> &completion);
};
