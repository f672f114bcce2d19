#include "RequestKeyMemo.h"

#include <mutex>

QByteArray RequestKeyMemo::rawKey(const QByteArray &path, const QByteArray &rawQuery, const QByteArray &host)
{
    // Neither "?" nor a line break can stand in a request path or a Host header.
    return path + '?' + rawQuery + '\n' + host;
}

std::optional<QByteArray> RequestKeyMemo::find(const QByteArray &rawKey) const
{
    std::shared_lock lock(m_mutex);
    const auto found = m_keys.constFind(rawKey);
    if (found == m_keys.constEnd())
        return std::nullopt;
    return *found;
}

void RequestKeyMemo::remember(const QByteArray &rawKey, const QByteArray &cacheKey)
{
    const qsizetype bytes = rawKey.size() + cacheKey.size();
    std::unique_lock lock(m_mutex);
    if (m_keys.contains(rawKey))
        return;
    if (m_keys.size() >= kMaxEntries || m_bytes + bytes > kMaxBytes) {
        m_keys.clear();
        m_bytes = 0;
    }
    m_keys.insert(rawKey, cacheKey);
    m_bytes += bytes;
}
