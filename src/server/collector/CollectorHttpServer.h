#pragma once
// The HTTP side of the collector: hands each upload from the HTTP layer's pool to the
// AnalyticsCollector on the main thread (where its store lives) and logs one line per
// request. Lives on the main thread.

#include "AnalyticsCollector.h"
#include "HttpServer.h"

#include <QObject>

class CollectorHttpServer : public QObject
{
    Q_OBJECT

public:
    // Uploads are at most the client's largest log file (256 KiB) wrapped in an envelope.
    static constexpr int kMaxUploadBytes = 1024 * 1024;
    // Uploads are few; one pool thread reads them.
    static constexpr int kThreads = 1;

    // `limits` apply but for the body, which is the collector's own.
    CollectorHttpServer(AnalyticsCollector &collector, HttpLimits limits, QObject *parent = nullptr);

    quint16 listen(const QString &address, quint16 port, QString *error);

private:
    void answer(const HttpRequest &request, const HttpResponder &responder);

    AnalyticsCollector &m_collector;
    HttpServer m_http;
};
