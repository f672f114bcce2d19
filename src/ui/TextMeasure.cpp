#include "TextMeasure.h"

#include "MainScreen.h"

#include <QCache>
#include <QFontMetricsF>

#include <map>

namespace {

constexpr qreal kBodyFontSize = 17;
constexpr qreal kHeightLimit = 10000;
constexpr int kCachedTextsPerWidth = 4096;
const QString kFontFamily = QStringLiteral("Noto Sans CJK SC");

} // namespace

namespace TextMeasure {

QFont systemFontOfSize(qreal size)
{
    QFont font(kFontFamily);
    font.setPixelSize(qRound(size));
    return font;
}

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
    static const QFont bodyFont = systemFontOfSize(kBodyFontSize);
    const qreal height = wrappedHeight(*text, bodyFont, width, kHeightLimit);
    cache.insert(*text, new qreal(height));
    return height;
}

} // namespace TextMeasure
