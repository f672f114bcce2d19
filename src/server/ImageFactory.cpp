#include "ImageFactory.h"

#include <QBuffer>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

namespace {

constexpr QSize kIconSize(120, 120);
constexpr QSize kHeaderSize(750, 370);
constexpr QSize kBannerSize(750, 390);
const char *const kFontFamily = "Noto Sans CJK SC";

// Light and deep tone of each picture's colour theme.
const QColor kThemes[][2] = {
    {QColor(0x4f, 0xc3, 0xf7), QColor(0x01, 0x57, 0x9b)},
    {QColor(0xff, 0xb7, 0x4d), QColor(0xe6, 0x51, 0x00)},
    {QColor(0x81, 0xc7, 0x84), QColor(0x1b, 0x5e, 0x20)},
    {QColor(0xf0, 0x62, 0x92), QColor(0x88, 0x0e, 0x4f)},
    {QColor(0x95, 0x75, 0xcd), QColor(0x31, 0x1b, 0x92)},
    {QColor(0x4d, 0xb6, 0xac), QColor(0x00, 0x4d, 0x40)},
};

const QColor *theme(qint64 seed)
{
    const qint64 count = qint64(std::size(kThemes));
    return kThemes[((seed % count) + count) % count];
}

bool canDrawText()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
}

QImage gradientCanvas(QSize size, qint64 seed)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, theme(seed)[0]);
    gradient.setColorAt(1, theme(seed)[1]);
    painter.fillRect(image.rect(), gradient);
    // A few soft circles, placed from the seed, so pictures of one theme still differ.
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 5; ++i) {
        const int radius = size.height() / 6 + int((seed * 37 + i * 53) % (size.height() / 3));
        const int x = int((seed * 97 + i * 211) % size.width());
        const int y = int((seed * 61 + i * 137) % size.height());
        painter.setBrush(QColor(255, 255, 255, 28 + 10 * i));
        painter.drawEllipse(QPoint(x, y), radius, radius);
    }
    return image;
}

void drawCaption(QImage &image, const QString &caption, int pixelSize, int flags,
                 const QRect &area)
{
    if (!canDrawText() || caption.isEmpty())
        return;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    QFont font(QString::fromLatin1(kFontFamily));
    font.setPixelSize(pixelSize);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(QColor(0, 0, 0, 70));
    painter.drawText(area.translated(2, 2), flags, caption);
    painter.setPen(Qt::white);
    painter.drawText(area, flags, caption);
}

QByteArray png(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

QByteArray ImageFactory::cached(const QString &key, const std::function<QByteArray()> &paint)
{
    auto found = m_cache.constFind(key);
    if (found != m_cache.constEnd())
        return *found;
    const QByteArray bytes = paint();
    m_cache.insert(key, bytes);
    return bytes;
}

QByteArray ImageFactory::sectionIcon(qint64 sectionid, const QString &caption)
{
    return cached(QStringLiteral("icon/%1").arg(sectionid), [&] {
        // Square: the screens round the corners themselves, each with its own radius.
        QImage image = gradientCanvas(kIconSize, sectionid);
        drawCaption(image, caption.left(1), kIconSize.height() / 2, Qt::AlignCenter, image.rect());
        return png(image);
    });
}

QByteArray ImageFactory::sectionHeader(qint64 sectionid)
{
    return cached(QStringLiteral("header/%1").arg(sectionid),
                  [&] { return png(gradientCanvas(kHeaderSize, sectionid + 3)); });
}

QByteArray ImageFactory::banner(qint64 bid, const QString &caption)
{
    return cached(QStringLiteral("banner/%1").arg(bid), [&] {
        QImage image = gradientCanvas(kBannerSize, bid * 5 + 1);
        const QRect area = image.rect().adjusted(40, 0, -40, -60);
        drawCaption(image, caption, 44, int(Qt::AlignLeft | Qt::AlignBottom) | Qt::TextWordWrap, area);
        return png(image);
    });
}
