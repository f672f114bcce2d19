// The emoji test's code point ranges.

#include "ReleaseViewController.h"

#include <gtest/gtest.h>

namespace {

QString unit(char16_t u)
{
    return QString(QChar(u));
}

QString codePoint(char32_t c)
{
    return QString::fromUcs4(&c, 1);
}

TEST(StringContainsEmoji, FindsTheListedRangesAndSequences)
{
    for (const QString &yes : {unit(0x00A9), unit(0x00AE), codePoint(0x1F600), QStringLiteral("1\u20E3"),
                               codePoint(0x1D000), codePoint(0x1F77F), unit(0x2100), unit(0x27FF),
                               unit(0x2B05), unit(0x2935), unit(0x3299), unit(0x2B1C), unit(0x303D),
                               QStringLiteral("中文") + codePoint(0x1F600)})
        EXPECT_TRUE(ReleaseViewController::stringContainsEmoji(yes)) << yes.toStdString();
}

TEST(StringContainsEmoji, LeavesOtherTextAlone)
{
    for (const QString &no : {QString(), QStringLiteral("新手攻略，开服七天"), unit(0x20FF), unit(0x2800),
                              codePoint(0x1CFFF), codePoint(0x1F780), unit(0x2B08), unit(0x3296),
                              QStringLiteral("abc 123")})
        EXPECT_FALSE(ReleaseViewController::stringContainsEmoji(no)) << no.toStdString();
}

} // namespace
