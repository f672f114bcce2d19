#include "BodyBudget.h"

BodyBudget::BodyBudget(qint64 totalBytes)
    : m_totalBytes(totalBytes)
{
}

bool BodyBudget::claim(const QByteArray &address, qint64 bytes)
{
    std::lock_guard lock(m_mutex);
    const qint64 held = m_byAddress.value(address);
    const bool withinShare = held == 0 || held + bytes <= m_totalBytes / kAddressShareDivisor;
    if (m_inFlight + bytes > m_totalBytes || !withinShare)
        return false;
    m_inFlight += bytes;
    m_byAddress[address] = held + bytes;
    return true;
}

void BodyBudget::release(const QByteArray &address, qint64 bytes)
{
    if (bytes == 0)
        return;
    std::lock_guard lock(m_mutex);
    m_inFlight -= bytes;
    const auto found = m_byAddress.find(address);
    if (found == m_byAddress.end())
        return;
    *found -= bytes;
    if (*found <= 0)
        m_byAddress.erase(found);
}
