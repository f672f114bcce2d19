#pragma once
// Fixed sizes, colours and picture names of the board screen's views, kept in one place.

#include "UIColorAdd.h"

namespace BoardStyle {

// Colours as six hexadecimal digits.
inline constexpr const char *kHeaderTextColor = "ffffff";
inline constexpr const char *kTopicCountColor = "ffdf00";
inline constexpr const char *kMutedColor = "abacae";
inline constexpr const char *kUserColor = "2e3339";
inline constexpr const char *kLineColor = "f3f3f3";

inline QColor color(const char *hex)
{
    return UIColorAdd::colorWithHexString(QString::fromLatin1(hex));
}

// Pictures by name: pinned rows show the first, guide rows the second.
inline const QString kPinnedBadge = QStringLiteral("置顶");
inline const QString kGuideBadge = QStringLiteral("攻略");

// System font sizes.
inline constexpr int kPinnedTitleFont = 15;
inline constexpr int kTopicMetaFont = 12;
inline constexpr int kTopicTimeFont = 11;

// The header card's height, as the board screen creates it.
inline constexpr qreal kHeaderHeight = 185;
// Tags of the header card's two tappable areas, handed to its delegate.
inline constexpr int kBackTag = 101;
inline constexpr int kSubmitTag = 102;

// The hairline under each row: 0.3 points high, its bottom 1 point above the row's.
inline constexpr qreal kLineHeight = 0.3;
inline constexpr qreal kLineBottomInset = 1;

} // namespace BoardStyle
