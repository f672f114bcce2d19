#include "LFAnalyticsCache.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <new>

namespace {
constexpr quint32 kMagic = 0x4c464143;    // "LFAC"
constexpr quint32 kFormatVersion = 1;
constexpr QDataStream::Version kStreamVersion = QDataStream::Qt_6_4;
constexpr int kDigestSize = 20;           // SHA-1

template <typename T> void writeList(QDataStream &out, const QList<T> &list)
{
    out << quint32(list.size());
    for (const T &item : list)
        out << item;
}

// Reads item by item: a damaged count never reserves memory for items that are not there.
template <typename T> void readList(QDataStream &in, QList<T> &list)
{
    quint32 count = 0;
    in >> count;
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        T item;
        in >> item;
        list.append(std::move(item));
    }
}
} // namespace

namespace LFAnalyticsCache {

bool write(const QString &path, const LFANContainers &containers, QString &problem)
{
    QByteArray body;
    {
        QDataStream out(&body, QIODevice::WriteOnly);
        out.setVersion(kStreamVersion);
        writeList(out, containers.events);
        writeList(out, containers.errors);
        writeList(out, containers.ekvs);
        writeList(out, containers.terminates);
        writeList(out, containers.pages);
    }
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        problem = file.errorString();
        return false;
    }
    QDataStream out(&file);
    out.setVersion(kStreamVersion);
    out << kMagic << kFormatVersion;
    out.writeRawData(QCryptographicHash::hash(body, QCryptographicHash::Sha1).constData(), kDigestSize);
    out.writeRawData(body.constData(), int(body.size()));
    if (!file.commit()) {
        problem = file.errorString();
        return false;
    }
    return true;
}

ReadResult read(const QString &path)
{
    ReadResult result;
    QFile file(path);
    if (!file.exists())
        return result;
    if (!file.open(QIODevice::ReadOnly)) {
        result.problem = file.errorString();
        return result;
    }
    auto damage = [&result](const QString &problem) {
        result.problem = problem;
        result.damaged = true;
        return result;
    };
    const QByteArray bytes = file.readAll();
    constexpr int headerSize = 8 + kDigestSize;
    QDataStream header(bytes);
    quint32 magic = 0;
    quint32 version = 0;
    header >> magic >> version;
    if (bytes.size() < headerSize || magic != kMagic || version != kFormatVersion)
        return damage(QStringLiteral("unknown format"));
    const QByteArray body = bytes.mid(headerSize);
    if (QCryptographicHash::hash(body, QCryptographicHash::Sha1) != bytes.mid(8, kDigestSize))
        return damage(QStringLiteral("digest mismatch"));
    LFANContainers containers;
    try {
        QDataStream in(body);
        in.setVersion(kStreamVersion);
        readList(in, containers.events);
        readList(in, containers.errors);
        readList(in, containers.ekvs);
        readList(in, containers.terminates);
        readList(in, containers.pages);
        if (in.status() != QDataStream::Ok || !in.atEnd())
            return damage(QStringLiteral("unreadable records"));
    } catch (const std::bad_alloc &) {
        return damage(QStringLiteral("unreadable records"));
    }
    result.containers = std::move(containers);
    return result;
}

} // namespace LFAnalyticsCache
