#include "LFAnalyticsLocation.h"

#include "LFAnalyticsContext.h"

#include <QMutexLocker>

LFAnalyticsLocation::LFAnalyticsLocation(LFAnalyticsContext &context)
    : m_context(context)
{
}

LFAnalyticsLocation &LFAnalyticsLocation::shared()
{
    return LFAnalyticsContext::shared().location();
}

void LFAnalyticsLocation::setLatitude(double latitude, double longitude)
{
    setLocation({latitude, longitude, m_context.now()});
}

void LFAnalyticsLocation::setLocation(const Fix &fix)
{
    QMutexLocker lock(&m_mutex);
    m_fix = fix;
}

LFAnalyticsLocation::Fix LFAnalyticsLocation::location() const
{
    QMutexLocker lock(&m_mutex);
    return m_fix;
}

bool LFAnalyticsLocation::takeLocation(Fix &fix)
{
    QMutexLocker lock(&m_mutex);
    if (m_fix.latitude == 0 || m_fix.longitude == 0)
        return false;
    fix = m_fix;
    m_fix.latitude = 0;
    m_fix.longitude = 0;
    return true;
}
