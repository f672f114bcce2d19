#pragma once
// Remembers which answer-cache key a reading request's raw bytes (path, query and Host) came
// to, so a repeated request finds its cached answer without deciphering its payload again.
// The key of a raw request never changes, so entries outlive the answers they point to.
// Bounded: past its budget it starts over empty. Any thread.

#include <QByteArray>
#include <QHash>

#include <optional>
#include <shared_mutex>

class RequestKeyMemo
{
public:
    static constexpr qsizetype kMaxEntries = 100'000;
    static constexpr qsizetype kMaxBytes = 32 * 1024 * 1024;

    static QByteArray rawKey(const QByteArray &path, const QByteArray &rawQuery, const QByteArray &host);

    std::optional<QByteArray> find(const QByteArray &rawKey) const;
    void remember(const QByteArray &rawKey, const QByteArray &cacheKey);

private:
    mutable std::shared_mutex m_mutex;
    QHash<QByteArray, QByteArray> m_keys;
    qsizetype m_bytes = 0;
};
