#include "TextMeasure.h"

#include "Fonts.h"
#include "MainScreen.h"

#include <QCache>
#include <QFontMetricsF>

#include <map>

namespace {

constexpr int kBodyFontSize = 17;
constexpr qreal kHeightLimit = 10000;
constexpr int kCachedTextsPerWidth = 4096;

} // namespace

namespace TextMeasure {

qreal wrappedHeight(const QString &text, const QFont &font, qreal width, qreal limit)
{
    const QFontMetricsF metrics(font);
    const QRectF bounds = metrics.boundingRect(QRectF(0, 0, width, limit),
                                               Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop,
                                               text);
    return qMin(bounds.height(), limit);
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
