#include "VisibleScreens.h"

#include "HomeViewController.h"
#include "NavigationController.h"
#include "Window.h"

namespace VisibleScreens {

NavigationController *rootStack(const Window *window)
{
    return window ? dynamic_cast<NavigationController *>(window->rootViewController()) : nullptr;
}

Home::ViewController *home(const Window *window)
{
    NavigationController *stack = rootStack(window);
    return stack && !stack->viewControllers().isEmpty() ? dynamic_cast<Home::ViewController *>(stack->viewControllers().first())
                                                        : nullptr;
}

ViewController *top(const Window *window)
{
    if (!window)
        return nullptr;
    ViewController *shown = window->topmostViewController();
    if (auto *stack = dynamic_cast<NavigationController *>(shown))
        return stack->isTransitioning() ? nullptr : stack->visibleViewController();
    return shown;
}

} // namespace VisibleScreens
