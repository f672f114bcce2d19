#include "AnalyticsReport.h"

#include "AnalyticsStore.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSqlQuery>

#include <cstdio>

namespace {
QString utcTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODate);
}

QString seconds(qint64 ms)
{
    return QString::number(double(ms) / 1000, 'f', 3) + QStringLiteral(" s");
}

void appendEvents(QSqlDatabase &db, QString &text)
{
    text += QStringLiteral("Events\n");
    QSqlQuery query(QStringLiteral("SELECT name, COUNT(*) FROM analytics_events GROUP BY name ORDER BY name"), db);
    while (query.next())
        text += QStringLiteral("  %1: %2\n").arg(query.value(0).toString()).arg(query.value(1).toLongLong());
}

void appendSessions(QSqlDatabase &db, QString &text)
{
    text += QStringLiteral("Sessions\n");
    QSqlQuery sessions(QStringLiteral("SELECT session_id, start_ms, duration_ms FROM analytics_sessions"
                                      " ORDER BY start_ms, session_id"), db);
    QSqlQuery pages(db);
    pages.prepare(QStringLiteral("SELECT page_name, duration_ms FROM analytics_pages WHERE session_id = ? ORDER BY id"));
    while (sessions.next()) {
        const QString id = sessions.value(0).toString();
        text += QStringLiteral("  %1 from %2 for %3\n")
                    .arg(id, utcTime(sessions.value(1).toLongLong()), seconds(sessions.value(2).toLongLong()));
        pages.addBindValue(id);
        pages.exec();
        while (pages.next())
            text += QStringLiteral("    page %1: %2\n").arg(pages.value(0).toString(), seconds(pages.value(1).toLongLong()));
    }
}

void appendErrors(QSqlDatabase &db, QString &text)
{
    text += QStringLiteral("Errors\n");
    QSqlQuery query(QStringLiteral("SELECT session_id, ts, context FROM analytics_errors ORDER BY ts, id"), db);
    while (query.next()) {
        const QString firstLine = query.value(2).toString().section(QLatin1Char('\n'), 0, 0);
        text += QStringLiteral("  %1 at %2: %3\n")
                    .arg(query.value(0).toString(), utcTime(query.value(1).toLongLong()), firstLine);
    }
}
} // namespace

QString AnalyticsReport::render(AnalyticsStore &store)
{
    QString text;
    appendEvents(store.database(), text);
    appendSessions(store.database(), text);
    appendErrors(store.database(), text);
    return text;
}

int AnalyticsReport::run(const QStringList &arguments)
{
    if (arguments.size() != 2 || arguments.constFirst() != QStringLiteral("--db")) {
        std::fputs("usage: quorvel-server analytics-report --db PATH\n", stderr);
        return 2;
    }
    const QString path = arguments.at(1);
    if (!QFileInfo::exists(path)) {
        std::fprintf(stderr, "quorvel-server: no database at %s\n", qPrintable(path));
        return 1;
    }
    QString error;
    const std::unique_ptr<AnalyticsStore> store = AnalyticsStore::open(path, &error);
    if (!store) {
        std::fprintf(stderr, "quorvel-server: %s\n", qPrintable(error));
        return 1;
    }
    std::fputs(render(*store).toUtf8().constData(), stdout);
    return 0;
}
