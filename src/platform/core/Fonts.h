#pragma once
// The app's system font: "Noto Sans CJK SC", so Chinese is drawn with its Simplified forms;
// "system font N" is pixel size N. Labels, buttons and text measuring all use it. Main thread.

#include <QFont>

class Fonts
{
public:
    Fonts() = delete;

    static constexpr const char *kSystemFamily = "Noto Sans CJK SC";
    // What a label, a button and a text view show when given no font.
    static constexpr int kLabelDefaultSize = 17;
    static constexpr int kButtonDefaultSize = 15;
    static constexpr int kTextViewDefaultSize = 12;

    static QFont systemFontOfSize(int pixelSize);
};
