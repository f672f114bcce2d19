#pragma once
// Loads remote images over one QNetworkAccessManager with a disk cache (in the caches folder)
// and keeps decoded images in a memory cache. A load answers once, on the main thread, unless
// the object that asked is gone first: its reply is a child of that object. Main thread.

#include <QCache>
#include <QImage>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QUrl>

#include <functional>

class QNetworkReply;

class ImageLoader : public QObject
{
    Q_OBJECT
public:
    using Completion = std::function<void(const QImage &image)>;
    static constexpr qint64 kDiskCacheBytes = 64 * 1024 * 1024;
    static constexpr int kMemoryCacheKilobytes = 32 * 1024;

    // The loader the image views use: its disk cache is "images" in the caches folder.
    static ImageLoader &shared();

    explicit ImageLoader(const QString &diskCacheDirectory, QObject *parent = nullptr);

    // A hit in the memory or disk cache answers before returning (and returns null); otherwise
    // the returned reply (a child of `context`) answers later with the image, or a null image
    // on failure.
    QNetworkReply *loadImage(const QUrl &url, QObject *context, Completion completion);

    QImage cachedImage(const QUrl &url) const;
    void clearMemoryCache() { m_memoryCache.clear(); }
    // Network loads started and not yet answered or dropped.
    int loadsInFlight() const { return m_inFlight; }

private:
    void remember(const QUrl &url, const QImage &image);

    QNetworkAccessManager m_network;
    QCache<QUrl, QImage> m_memoryCache;
    int m_inFlight = 0;
};
