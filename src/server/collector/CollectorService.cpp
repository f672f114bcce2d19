#include "CollectorService.h"

#include <QDateTime>

std::unique_ptr<CollectorService> CollectorService::start(const QString &databasePath, const QString &host,
                                                          const CollectorOptions &options, const HttpLimits &limits,
                                                          QString *error)
{
    std::unique_ptr<CollectorService> service(new CollectorService);
    service->m_store = AnalyticsStore::open(databasePath, error);
    if (!service->m_store)
        return nullptr;
    service->m_collector = std::make_unique<AnalyticsCollector>(*service->m_store, options,
                                                                [] { return QDateTime::currentMSecsSinceEpoch(); });
    service->m_server = std::make_unique<CollectorHttpServer>(*service->m_collector, limits);
    const quint16 port = service->m_server->listen(host, options.port, error);
    if (port == 0)
        return nullptr;
    service->m_root = QStringLiteral("http://%1:%2").arg(host).arg(port);
    return service;
}
