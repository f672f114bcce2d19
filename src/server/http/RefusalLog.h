#pragma once
// Logs refused clients ("refused 203.0.113.7: body over 65536 bytes (413)") at most once per
// client address, kind of refusal and minute, so a hostile client cannot flood the log.
// Any thread.

#include <QByteArray>
#include <QHash>
#include <QString>

#include <functional>
#include <mutex>

class RefusalLog
{
public:
    using Sink = std::function<void(const QString &line)>;
    using Clock = std::function<qint64()>;  // milliseconds, steady

    static constexpr qint64 kWindowMs = 60'000;
    // Keys (addresses and kinds) remembered at once; past it, those whose minute is over are forgotten.
    static constexpr qsizetype kMaxAddresses = 4096;

    explicit RefusalLog(Sink sink, Clock clock = {});

    // `kind` tells refusals apart ("413", "timeout"); `what` is the text logged.
    void refused(const QByteArray &address, const QByteArray &kind, const QString &what);
    // Logs `line` unless a line under the same `key` was logged within the minute.
    void once(const QByteArray &key, const QString &line);

private:
    Sink m_sink;
    Clock m_clock;
    std::mutex m_mutex;
    QHash<QByteArray, qint64> m_lastLogged;
};
