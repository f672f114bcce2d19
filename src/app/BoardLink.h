#pragma once
// Opens a board by its id as the home screen would: loads the board list (asking for a
// temporary user first when none is stored) and shows that board's screen, with its record,
// as the root of the window's navigation. Main thread.

#include <QtGlobal>

#include <functional>

class Window;

class BoardLink
{
public:
    BoardLink() = delete;

    // `done(false)` when the board list came without that board.
    static void open(Window &window, qint64 sectionId, std::function<void(bool opened)> done);
};
