#include "TextMeasure.h"

#include "Fonts.h"
#include "MainScreen.h"
#include "TextWrapping.h"

#include <QCache>

#include <map>

namespace {

constexpr int kBodyFontSize = 17;
constexpr qreal kHeightLimit = 10000;
constexpr int kCachedTextsPerWidth = 4096;

} // namespace

namespace TextMeasure {

qreal wrappedHeight(const QString &text, const QFont &font, qreal width, qreal limit)
{
    return qMin(TextWrapping::height(text, font, width, TextWrapping::Mode::WordsThenCharacters), limit);
}

qreal bodyTextHeight(const std::optional<QString> &text, qreal margin)
{
    if (!text)
        return 0;
    const qreal width = MainScreen::width() - margin;
    static std::map<qreal, QCache<QString, qreal>> cachesByWidth;
    QCache<QString, qreal> &cache = cachesByWidth.try_emplace(width, kCachedTextsPerWidth).first->second;
    if (const qreal *known = cache.object(*text))
        return *known;
    static const QFont bodyFont = Fonts::systemFontOfSize(kBodyFontSize);
    const qreal height = wrappedHeight(*text, bodyFont, width, kHeightLimit);
    cache.insert(*text, new qreal(height));
    return height;
}

} // namespace TextMeasure
