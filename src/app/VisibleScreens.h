#pragma once
// Which screens a window shows: its home stack, the home screen at its root, and the screen on
// top of everything (the visible screen of the topmost presented stack). Main thread.

class NavigationController;
class ViewController;
class Window;

namespace Home {
class ViewController;
}

namespace VisibleScreens {

NavigationController *rootStack(const Window *window);
Home::ViewController *home(const Window *window);
// Null while the top stack is between two screens.
ViewController *top(const Window *window);

} // namespace VisibleScreens
