#include "LFPushEndpoint.h"

#include <QMutex>
#include <QMutexLocker>

namespace {
QMutex g_mutex;
QString g_url;
} // namespace

void LFPushEndpoint::setUrl(const QString &url)
{
    QMutexLocker lock(&g_mutex);
    g_url = url;
}

QString LFPushEndpoint::url()
{
    {
        QMutexLocker lock(&g_mutex);
        if (!g_url.isEmpty())
            return g_url;
    }
    const QString fromEnvironment = qEnvironmentVariable(kEnvironmentVariable);
    return fromEnvironment.isEmpty() ? QString::fromLatin1(kDefaultUrl) : fromEnvironment;
}
