#include "ImageLoader.h"

#include "KitLog.h"

#include <QDir>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QStandardPaths>

#include <memory>

ImageLoader &ImageLoader::shared()
{
    static ImageLoader *loader = new ImageLoader(
        QDir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation)).filePath(QStringLiteral("images")));
    return *loader;
}

ImageLoader::ImageLoader(const QString &diskCacheDirectory, QObject *parent)
    : QObject(parent), m_memoryCache(kMemoryCacheKilobytes)
{
    auto *diskCache = new QNetworkDiskCache(&m_network);
    diskCache->setCacheDirectory(diskCacheDirectory);
    diskCache->setMaximumCacheSize(kDiskCacheBytes);
    m_network.setCache(diskCache);
}

QImage ImageLoader::cachedImage(const QUrl &url) const
{
    const QImage *image = m_memoryCache.object(url);
    return image ? *image : QImage();
}

void ImageLoader::remember(const QUrl &url, const QImage &image)
{
    m_memoryCache.insert(url, new QImage(image), qMax<qsizetype>(1, image.sizeInBytes() / 1024));
}

QNetworkReply *ImageLoader::loadImage(const QUrl &url, QObject *context, Completion completion)
{
    if (const QImage *cached = m_memoryCache.object(url)) {
        completion(*cached);
        return nullptr;
    }
    // The disk copy serves even when its answer said nothing about freshness: pictures at a
    // URL do not change.
    if (const std::unique_ptr<QIODevice> stored{m_network.cache()->data(url)}) {
        const QImage image = QImage::fromData(stored->readAll());
        if (!image.isNull()) {
            remember(url, image);
            completion(image);
            return nullptr;
        }
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    QNetworkReply *reply = m_network.get(request);
    reply->setParent(context);
    ++m_inFlight;
    connect(reply, &QObject::destroyed, this, [this] { --m_inFlight; });
    connect(reply, &QNetworkReply::finished, context, [this, reply, url, completion = std::move(completion)] {
        reply->deleteLater();
        QImage image;
        if (reply->error() == QNetworkReply::NoError)
            image = QImage::fromData(reply->readAll());
        if (!image.isNull())
            remember(url, image);
        else
            KitLog::warning("ImageLoader", QStringLiteral("no image from %1 (%2)").arg(url.toString(), reply->errorString()));
        completion(image);
    });
    return reply;
}
