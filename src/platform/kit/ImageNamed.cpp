#include "ImageNamed.h"

#include "KitLog.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>

namespace {

const QString kFolder = QStringLiteral(":/images/");
const QString kSuffix = QStringLiteral(".svg");

qreal usableRatio(qreal ratio)
{
    if (std::isnan(ratio))
        return 1;
    return qBound(qreal(1), ratio, ImageNamed::kMaxPixelRatio);
}

QImage draw(const QString &name, qreal ratio)
{
    const QString path = kFolder + name + kSuffix;
    if (name.isEmpty() || name.contains(u'/') || !QFile::exists(path)) {
        KitLog::warning("ImageNamed", QStringLiteral("the app ships no picture named \"%1\" (%2)").arg(name, path));
        return {};
    }
    QSvgRenderer renderer(path);
    if (!renderer.isValid() || renderer.defaultSize().isEmpty()) {
        KitLog::warning("ImageNamed", QStringLiteral("the picture %1 cannot be drawn").arg(path));
        return {};
    }
    // Points are the SVG's own units; the pixels are as many more as the ratio says.
    const QSize pixels = (QSizeF(renderer.defaultSize()) * ratio).toSize();
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}

} // namespace

namespace ImageNamed {

QImage image(const QString &name)
{
    return image(name, qGuiApp ? qGuiApp->devicePixelRatio() : 1);
}

QImage image(const QString &name, qreal pixelRatio)
{
    static QHash<QString, QImage> cache;
    const qreal ratio = usableRatio(pixelRatio);
    const QString key = name + u'@' + QString::number(ratio);
    if (const auto found = cache.constFind(key); found != cache.cend())
        return *found;
    const QImage drawn = draw(name, ratio);
    // Misses are not kept: each asks the resources again and says so in the log.
    if (!drawn.isNull())
        cache.insert(key, drawn);
    return drawn;
}

} // namespace ImageNamed
