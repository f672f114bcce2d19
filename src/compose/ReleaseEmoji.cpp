// The emoji test by code point ranges, walked by composed character (grapheme cluster).

#include "ReleaseViewController.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>

namespace {

constexpr char32_t kSurrogatePairFrom = 0x1D000;
constexpr char32_t kSurrogatePairTo = 0x1F77F;
constexpr char16_t kEnclosingKeycap = 0x20E3;

struct UnitRange
{
    char16_t from;
    char16_t to;
};

// Single units that count as emoji on their own.
constexpr std::array<UnitRange, 4> kSingleRanges{{{0x2100, 0x27FF}, {0x2B05, 0x2B07}, {0x2934, 0x2935},
                                                  {0x3297, 0x3299}}};
constexpr std::array<char16_t, 8> kSingleUnits{0x00A9, 0x00AE, 0x2B1B, 0x2B1C, 0x2B50, 0x2B55, 0x3030, 0x303D};

bool sequenceIsEmoji(QStringView sequence)
{
    const char16_t first = sequence.at(0).unicode();
    if (sequence.size() >= 2) {
        const QChar second = sequence.at(1);
        if (QChar::isHighSurrogate(first)) {
            const char32_t codePoint = QChar::surrogateToUcs4(first, second.unicode());
            return codePoint >= kSurrogatePairFrom && codePoint <= kSurrogatePairTo;
        }
        return second.unicode() == kEnclosingKeycap;
    }
    return std::any_of(kSingleRanges.begin(), kSingleRanges.end(),
                       [first](const UnitRange &r) { return first >= r.from && first <= r.to; })
           || std::find(kSingleUnits.begin(), kSingleUnits.end(), first) != kSingleUnits.end();
}

} // namespace

bool ReleaseViewController::stringContainsEmoji(const QString &string)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, string);
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end > start; end = finder.toNextBoundary()) {
        if (sequenceIsEmoji(QStringView(string).mid(start, end - start)))
            return true;
        start = end;
    }
    return false;
}
