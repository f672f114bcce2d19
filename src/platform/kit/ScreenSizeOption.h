#pragma once
// Reads the screen size from a program's arguments: "--screen WxH" or "--screen=WxH" in
// points, e.g. "--screen 320x568". Main thread.

#include <QSize>
#include <QStringList>

class ScreenSizeOption
{
public:
    ScreenSizeOption() = delete;

    static constexpr QSize kDefaultSize{375, 667};

    // "WxH" with both in 1..10000; an invalid size otherwise.
    static QSize parse(const QString &text);
    // The size given, or the default when none is; an argument that does not read as a size
    // gives the default and a message in `error`.
    static QSize fromArguments(const QStringList &arguments, QString *error = nullptr);
};
