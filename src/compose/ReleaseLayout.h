#pragma once
// Fixed frames, colours and texts of the new-topic screen, shared by its source files.

#include "MainScreen.h"
#include "UIColorAdd.h"

#include <QRectF>
#include <QString>

namespace ReleaseLayout {

inline constexpr const char *kBackground = "f3f3f3";
inline constexpr const char *kPlaceholderColor = "abacae";
inline constexpr int kTitleFont = 16;

// In points; "room" is what a frame leaves of the screen's height.
inline constexpr qreal kTitleTop = 20;
inline constexpr qreal kTitleHeight = 40;
// A measured title taller than this and shorter than the maximum sets the box's height.
inline constexpr qreal kTitleGrowsAbove = 42;
inline constexpr qreal kTitleGrowsBelow = 82;
inline constexpr qreal kContentTop = 70;
inline constexpr qreal kContentRoom = 134;
// Kept between the body box and a shown keyboard.
inline constexpr qreal kContentKeyboardGap = 10;
inline constexpr qreal kCountWidth = 60;
inline constexpr qreal kCountHeight = 12;
inline constexpr qreal kCountAbove = 90;
inline constexpr QRectF kTitlePlaceholderFrame(10, 10, 200, 20);
inline constexpr QRectF kBodyPlaceholderFrame(10, 18, 200, 15);

inline QColor color(const char *hex)
{
    return UIColorAdd::colorWithHexString(QString::fromLatin1(hex));
}

inline QRectF titleFrame(qreal boxHeight)
{
    return QRectF(0, kTitleTop, MainScreen::width(), boxHeight);
}

inline QRectF contentFrame(qreal keyboardRoom)
{
    return QRectF(0, kContentTop, MainScreen::width(), MainScreen::height() - kContentRoom - keyboardRoom);
}

inline QRectF countFrame(qreal keyboardHeight)
{
    return QRectF(MainScreen::width() - kCountWidth, MainScreen::height() - kCountAbove - keyboardHeight,
                  kCountWidth, kCountHeight);
}

} // namespace ReleaseLayout
