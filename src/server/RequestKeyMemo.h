#pragma once
// Remembers which answer-cache key a reading request's raw bytes (path, query and Host) came
// to, so a repeated request finds its cached answer without deciphering its payload again.
// The key of a raw request never changes, so entries outlive the answers they point to.
// Requests are remembered by a digest, so padded ones cost no more than short ones.
// Bounded: past its budget it starts over empty. Any thread.

#include <QByteArray>
#include <QHash>

#include <optional>
#include <shared_mutex>

class RequestKeyMemo
{
public:
    static constexpr qsizetype kMaxEntries = 50'000;

    // The digest a request is remembered by.
    static QByteArray digest(const QByteArray &path, const QByteArray &rawQuery, const QByteArray &host);

    std::optional<QByteArray> find(const QByteArray &digest) const;
    void remember(const QByteArray &digest, const QByteArray &cacheKey);

private:
    mutable std::shared_mutex m_mutex;
    QHash<QByteArray, QByteArray> m_keys;
};
