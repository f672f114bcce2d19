#include "RefusalLog.h"

#include <chrono>

RefusalLog::RefusalLog(Sink sink, Clock clock)
    : m_sink(std::move(sink))
    , m_clock(std::move(clock))
{
    if (!m_clock) {
        m_clock = [] {
            using namespace std::chrono;
            return qint64(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
        };
    }
}

void RefusalLog::refused(const QByteArray &address, const QByteArray &kind, const QString &what)
{
    once(address + ' ' + kind, QStringLiteral("refused %1: %2").arg(QString::fromLatin1(address), what));
}

void RefusalLog::once(const QByteArray &key, const QString &line)
{
    const qint64 now = m_clock();
    {
        std::lock_guard lock(m_mutex);
        const auto last = m_lastLogged.constFind(key);
        if (last != m_lastLogged.constEnd() && now - *last < kWindowMs)
            return;
        if (m_lastLogged.size() >= kMaxAddresses)
            m_lastLogged.removeIf([now](const auto &entry) { return now - entry.value() >= kWindowMs; });
        // Still full of this minute's addresses: the newest are not logged rather than
        // letting the table grow without bound.
        if (m_lastLogged.size() >= kMaxAddresses)
            return;
        m_lastLogged.insert(key, now);
    }
    m_sink(line);
}
