#pragma once
// Fixed sizes and colours of the home screen's board rows, kept in one place.

#include "BoardStyle.h"

#include <QColor>
#include <QRectF>

namespace HomeStyle {

// Colours as six hexadecimal digits.
inline constexpr const char *kIconBackgroundColor = "ffdf00";
inline constexpr const char *kTitleColor = "2c3239";

// The platform's light grey (white level 2/3), for the topic count.
inline QColor lightGrayColor()
{
    return QColor::fromRgbF(2.0f / 3, 2.0f / 3, 2.0f / 3, 1.0f);
}

// System font sizes.
inline constexpr int kTitleFont = 18;
inline constexpr int kTopicFont = 13;

// A board row: its fixed frame (always 375 points wide, whatever the screen) and the row
// height the home screen gives it.
inline constexpr QRectF kRowFrame{0, 0, 375, 89};

} // namespace HomeStyle
