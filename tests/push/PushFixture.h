#pragma once
// A push component of its own for each test: a settable clock, user defaults in a temporary
// folder, the desktop notification service, and the project's server with its gateway.
// Main thread.

#include "Application.h"
#include "DesktopNotificationService.h"
#include "EventLoop.h"
#include "LFPushCore.h"
#include "LFPushUtils.h"
#include "LocalForumServer.h"
#include "LogCapture.h"
#include "UserDefaults.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

class SettableClock final : public LFPushClock
{
public:
    explicit SettableClock(double start) : m_now(start) {}
    double now() const override { return m_now; }
    void advanceDays(int days) { m_now += days * 86400.0; }
    void advanceSeconds(double seconds) { m_now += seconds; }

private:
    double m_now;
};

class PushFixture : public ::testing::Test
{
protected:
    static constexpr const char *kAppKey = "3c1f9a27b84e0d65a2f7c913";

    explicit PushFixture(const QStringList &serverArguments = {}) : server(serverArguments)
    {
        LFPushUtils::setLogEnabled(true);
        Application::shared().setRemoteNotificationService(&service);
    }

    void SetUp() override { ASSERT_TRUE(server.isRunning()) << server.errorString().toStdString(); }

    QString pushRoot() const { return server.origin() + QStringLiteral("/push"); }

    // `store` replaces the fixture's defaults, e.g. a new one on the same file after a restart.
    std::unique_ptr<LFPushCore> makeCore(const QString &pushUrl = {}, UserDefaults *store = nullptr)
    {
        LFPushOptions options;
        options.clock = clock;
        options.defaults = store ? store : &defaults;
        options.pushUrl = pushUrl.isEmpty() ? pushRoot() : pushUrl;
        options.application = &Application::shared();
        options.deviceIdentifier = QString(40, QLatin1Char('d'));
        return std::make_unique<LFPushCore>(options);
    }

    // A launch of the app: start, then registration through the platform, as the app does.
    std::unique_ptr<LFPushCore> launch()
    {
        std::unique_ptr<LFPushCore> core = makeCore();
        core->startWithAppkey(QLatin1String(kAppKey), {});
        core->registerForRemoteNotifications({}, 7, 7);
        return core;
    }

    // How many times the gateway answered `call` ("POST /push/register 200").
    int answered(const char *call) const { return int(server.log().count(QByteArray(call) + '\n')); }

    bool logged(const QString &line, int timeoutMs = 10000)
    {
        return testsupport::waitUntil([&] { return log.lines().contains(line); }, timeoutMs);
    }

    // Rows of a query on the server's database, each row's columns joined by "|".
    QStringList rows(const QString &sql) const
    {
        QStringList result;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("push-test"));
            db.setDatabaseName(server.databasePath());
            if (db.open()) {
                QSqlQuery query(sql, db);
                while (query.next()) {
                    QStringList columns;
                    for (int i = 0; i < query.record().count(); ++i)
                        columns << query.value(i).toString();
                    result << columns.join(QLatin1Char('|'));
                }
            }
        }
        QSqlDatabase::removeDatabase(QStringLiteral("push-test"));
        return result;
    }

    LocalForumServer server;
    QTemporaryDir folder;
    UserDefaults defaults{folder.filePath(QStringLiteral("defaults.ini"))};
    // Noon, so a day forward is always another date text whatever the time zone.
    std::shared_ptr<SettableClock> clock = std::make_shared<SettableClock>(
        double(QDateTime(QDate(2026, 3, 2), QTime(12, 0)).toSecsSinceEpoch()));
    DesktopNotificationService service{{QUrl(pushRoot()), folder.filePath(QStringLiteral("token")),
                                        folder.filePath(QStringLiteral("notifications.ini")),
                                        &Application::shared(), true}};
    LogCapture log{"quorvel.push"};
};
