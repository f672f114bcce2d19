#pragma once
// The HTTP side of the collector: hands each request to the AnalyticsCollector and logs one
// line per request. Requests are handled one at a time on the main thread.

#include "AnalyticsCollector.h"

#include <QAbstractHttpServer>

class CollectorHttpServer : public QAbstractHttpServer
{
    Q_OBJECT

public:
    explicit CollectorHttpServer(AnalyticsCollector &collector, QObject *parent = nullptr);

protected:
    bool handleRequest(const QHttpServerRequest &request, QTcpSocket *socket) override;
    void missingHandler(const QHttpServerRequest &request, QTcpSocket *socket) override;

private:
    AnalyticsCollector &m_collector;
};
