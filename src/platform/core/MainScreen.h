#pragma once
// The main screen's bounds in points: 375 x 667 unless the window was given another size.
// Read by layout and text-measuring code; set once by the program's window at start-up.
// Main thread.

#include <QSizeF>

class MainScreen
{
public:
    MainScreen() = delete;

    static constexpr QSizeF kDefaultSize{375, 667};

    static QSizeF size();
    static qreal width() { return size().width(); }
    static qreal height() { return size().height(); }
    static void setSize(const QSizeF &size);
};
