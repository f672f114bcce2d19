// quorvel-server: the forum's reference server. See --help.
#include "AnalyticsReport.h"
#include "CollectorService.h"
#include "DemoData.h"
#include "ForumDatabase.h"
#include "ForumHttpServer.h"
#include "ForumRouter.h"
#include "ForumStore.h"
#include "PushGateway.h"
#include "PushGatewaySecret.h"
#include "PushSendCommand.h"
#include "ServerLog.h"
#include "ServerOptions.h"
#include "UnixSignalWatcher.h"

#include <QDateTime>
#include <QGuiApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    // Pictures carry text, and fonts need a QGuiApplication; there is no display to use.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quorvel-server"));
    if (QCoreApplication::arguments().value(1) == AnalyticsReport::kCommand)
        return AnalyticsReport::run(QCoreApplication::arguments().mid(2));

    if (PushSendCommand::isRequested(QCoreApplication::arguments()))
        return PushSendCommand::run(QCoreApplication::arguments());

    const ServerOptionsParse parsed = parseServerOptions(QCoreApplication::arguments());
    if (!parsed.options) {
        std::fputs(parsed.message.toLocal8Bit().constData(), parsed.exitCode == 0 ? stdout : stderr);
        return parsed.exitCode;
    }
    const ServerOptions &options = *parsed.options;
    if (!HttpServer::raiseOpenFileLimit(options.maxConnections))
        serverLog(QStringLiteral("the open-file limit is below %1 connections; some will be refused")
                      .arg(options.maxConnections));

    QString error;
    const std::unique_ptr<ForumDatabase> database = ForumDatabase::open(options.databasePath, &error);
    if (!database) {
        serverLog(error);
        return 1;
    }
    ForumStore store(*database);
    try {
        DemoData::seed(store, options.bulkBoardTopics);
    } catch (const StoreError &failure) {
        serverLog(QStringLiteral("cannot write the demo data: %1").arg(QString::fromStdString(failure.what())));
        return 1;
    }

    ForumRouter router(store, options, [] { return QDateTime::currentMSecsSinceEpoch(); });
    QByteArray pushSecret;
    try {
        pushSecret = PushGatewaySecret::ofDatabase(*database);
    } catch (const StoreError &failure) {
        serverLog(QStringLiteral("cannot read the push secret: %1").arg(QString::fromStdString(failure.what())));
        return 1;
    }
    PushGateway gateway(*database, {pushSecret, {options.pushLaunchPolicy, 0}});
    ForumHttpServer server(router, options.httpLimits());
    server.setRequestTaker([&gateway](const HttpRequest &request, const HttpResponder &responder) {
        return gateway.take(request, responder);
    });
    const quint16 port = server.listen(options.host, options.port, &error);
    if (port == 0) {
        serverLog(error);
        return 1;
    }
    const QString origin = QStringLiteral("http://%1:%2").arg(options.host).arg(port);
    router.setFallbackOrigin(origin);
    server.start(options.threadCount());
    std::printf("quorvel-server listening on %s/api/\n", origin.toUtf8().constData());

    // The forum serves on even when the collector cannot: parallel servers share its default port.
    const std::unique_ptr<CollectorService> collector =
        CollectorService::start(options.databasePath, options.host, options.analytics, options.httpLimits(), &error);
    if (collector)
        std::printf("quorvel-server analytics listening on %s (POST /app_logs)\n", collector->root().toUtf8().constData());
    else
        serverLog(QStringLiteral("analytics collector not started: %1").arg(error));
    std::fflush(stdout);

    UnixSignalWatcher signalWatcher;
    QObject::connect(&signalWatcher, &UnixSignalWatcher::terminationRequested, &app, [](int signalNumber) {
        serverLog(QStringLiteral("signal %1, stopping").arg(signalNumber));
        QCoreApplication::quit();
    });
    return app.exec();
}
