#include "DatabaseLocation.h"

#include <QUrl>

namespace {

const QString kSchemes[] = {QStringLiteral("postgresql"), QStringLiteral("postgres")};

bool isPostgresAddress(const QString &text)
{
    for (const QString &scheme : kSchemes) {
        if (text.startsWith(scheme + QStringLiteral("://")))
            return true;
    }
    return false;
}

} // namespace

std::optional<DatabaseLocation> DatabaseLocation::parse(const QString &text, QString *error)
{
    DatabaseLocation location;
    if (text.isEmpty()) {
        *error = QStringLiteral("--db needs a file path or a postgresql:// address");
        return std::nullopt;
    }
    if (!isPostgresAddress(text)) {
        location.path = text;
        return location;
    }
    const QUrl url(text, QUrl::StrictMode);
    location.kind = Kind::PostgreSQL;
    location.host = url.host();
    location.port = url.port(kDefaultPostgresPort);
    location.user = url.userName();
    location.password = url.password();
    location.databaseName = url.path().mid(1);
    if (!url.isValid() || location.host.isEmpty() || location.user.isEmpty() || location.databaseName.isEmpty()
        || location.databaseName.contains(QLatin1Char('/')) || url.hasQuery() || url.hasFragment()) {
        *error = QStringLiteral("--db %1 is not of the form postgresql://user@host:port/dbname")
                     .arg(url.isValid() ? url.toDisplayString(QUrl::RemovePassword) : QStringLiteral("address"));
        return std::nullopt;
    }
    return location;
}

QString DatabaseLocation::describe() const
{
    if (kind == Kind::SQLite)
        return path;
    return QStringLiteral("postgresql://%1@%2:%3/%4").arg(user, host).arg(port).arg(databaseName);
}
