#pragma once
// Room for the request bodies being read, in all and per client address: past the total a
// body is turned away rather than held, and one address may take only a share of it, so one
// client's stalled bodies cannot keep everyone else's out. An address with nothing under way
// may always take one body that fits the total. Any thread.

#include <QByteArray>
#include <QHash>

#include <mutex>

class BodyBudget
{
public:
    // One address may hold this fraction of the total.
    static constexpr qint64 kAddressShareDivisor = 8;

    explicit BodyBudget(qint64 totalBytes);

    // All or nothing; false when the body must be turned away.
    bool claim(const QByteArray &address, qint64 bytes);
    void release(const QByteArray &address, qint64 bytes);

private:
    const qint64 m_totalBytes;
    std::mutex m_mutex;
    qint64 m_inFlight = 0;
    QHash<QByteArray, qint64> m_byAddress;
};
