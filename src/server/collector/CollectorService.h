#pragma once
// The running collector: its store on the server's database file, the collector and its HTTP
// server, listening. Main thread.

#include "AnalyticsCollector.h"
#include "AnalyticsStore.h"
#include "CollectorHttpServer.h"
#include "CollectorOptions.h"

#include <QString>

#include <memory>

class CollectorService
{
public:
    // Opens the store and listens on `host` and the options' port; nothing, with `error` set,
    // when either fails.
    static std::unique_ptr<CollectorService> start(const QString &databasePath, const QString &host,
                                                   const CollectorOptions &options, const HttpLimits &limits,
                                                   QString *error);

    // "http://HOST:PORT", to which clients append "/app_logs".
    QString root() const { return m_root; }

private:
    CollectorService() = default;

    std::unique_ptr<AnalyticsStore> m_store;
    std::unique_ptr<AnalyticsCollector> m_collector;
    std::unique_ptr<CollectorHttpServer> m_server;
    QString m_root;
};
