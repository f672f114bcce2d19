#pragma once
// Fixed sizes, colours and texts of the topic screen and its views, kept in one place.

#include "UIColorAdd.h"

namespace TopicStyle {

// Colours as six hexadecimal digits.
inline constexpr const char *kTextColor = "2e3339";
inline constexpr const char *kMutedColor = "abacae";
inline constexpr const char *kEndMarkerColor = "b2b4b6";
inline constexpr const char *kListBackground = "f3f3f3";

inline QColor color(const char *hex)
{
    return UIColorAdd::colorWithHexString(QString::fromLatin1(hex));
}

// System font sizes.
inline constexpr int kTitleFont = 18;
inline constexpr int kBodyFont = 14;
inline constexpr int kMetaFont = 11;
inline constexpr int kReplyUserFont = 12;

// The head view's frame height beyond its two measured texts.
inline constexpr qreal kHeadExtraHeight = 102;
// A reply row's height beyond its measured content.
inline constexpr qreal kReplyRowExtraHeight = 50;
inline constexpr qreal kSectionHeaderHeight = 46;
inline constexpr qreal kSectionFooterHeight = 1;
// Room at the bottom of the screen for the reply bar.
inline constexpr qreal kReplyBarHeight = 50;
// A reply holds at most this many UTF-16 units.
inline constexpr int kReplyMaxLength = 35;

} // namespace TopicStyle
