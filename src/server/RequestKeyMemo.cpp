#include "RequestKeyMemo.h"

#include <QCryptographicHash>

#include <mutex>

QByteArray RequestKeyMemo::digest(const QByteArray &path, const QByteArray &rawQuery, const QByteArray &host)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    // Neither "?" nor a line break can stand in a request path or a Host header.
    hash.addData(path);
    hash.addData("?");
    hash.addData(rawQuery);
    hash.addData("\n");
    hash.addData(host);
    return hash.result();
}

std::optional<QByteArray> RequestKeyMemo::find(const QByteArray &digest) const
{
    std::shared_lock lock(m_mutex);
    const auto found = m_keys.constFind(digest);
    if (found == m_keys.constEnd())
        return std::nullopt;
    return *found;
}

void RequestKeyMemo::remember(const QByteArray &digest, const QByteArray &cacheKey)
{
    std::unique_lock lock(m_mutex);
    if (m_keys.size() >= kMaxEntries)
        m_keys.clear();
    m_keys.insert(digest, cacheKey);
}
