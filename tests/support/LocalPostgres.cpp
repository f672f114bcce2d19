#include "LocalPostgres.h"

#include <QDir>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTcpServer>

#include <pwd.h>
#include <unistd.h>

namespace {

constexpr int kToolTimeoutMs = 60'000;
const QString kUnprivilegedUser = QStringLiteral("postgres");
const QString kTemplate = QStringLiteral("forum_template");

// The newest installed server's binaries, or empty.
QString findBinaries()
{
    const QDir versions(QStringLiteral("/usr/lib/postgresql"));
    QStringList found = versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    std::sort(found.begin(), found.end(), [](const QString &a, const QString &b) { return a.toInt() < b.toInt(); });
    for (auto it = found.crbegin(); it != found.crend(); ++it) {
        const QString bin = versions.filePath(*it + QStringLiteral("/bin"));
        if (QFile::exists(bin + QStringLiteral("/initdb")))
            return bin;
    }
    return {};
}

int freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost, 0) ? probe.serverPort() : 0;
}

bool isRoot()
{
    return ::geteuid() == 0;
}

} // namespace

LocalPostgres &LocalPostgres::shared()
{
    static LocalPostgres cluster;
    return cluster;
}

LocalPostgres::LocalPostgres()
    : m_binaries(findBinaries())
    , m_port(freePort())
{
    if (m_binaries.isEmpty())
        m_error = QStringLiteral("no PostgreSQL server under /usr/lib/postgresql (install postgresql)");
    else if (!m_folder.isValid())
        m_error = QStringLiteral("no temporary folder: %1").arg(m_folder.errorString());
    else if (initialise())
        start();
}

LocalPostgres::~LocalPostgres()
{
    stop();
}

bool LocalPostgres::initialise()
{
    if (isRoot()) {
        const passwd *user = ::getpwnam(kUnprivilegedUser.toLocal8Bit().constData());
        if (!user || ::chown(m_folder.path().toLocal8Bit().constData(), user->pw_uid, user->pw_gid) != 0) {
            m_error = QStringLiteral("running as root needs the %1 user to own the cluster").arg(kUnprivilegedUser);
            return false;
        }
    }
    return runTool(QStringLiteral("initdb"),
                   {QStringLiteral("-D"), m_folder.filePath(QStringLiteral("data")), QStringLiteral("-U"),
                    QLatin1String(kUser), QStringLiteral("--auth=trust"), QStringLiteral("-E"), QStringLiteral("UTF8"),
                    QStringLiteral("--no-sync")});
}

bool LocalPostgres::start()
{
    // fsync off: a test cluster is thrown away, and durability is not what these tests test.
    const QString options = QStringLiteral("-p %1 -k %2 -c listen_addresses=127.0.0.1 -c fsync=off "
                                           "-c synchronous_commit=off -c max_connections=200")
                                .arg(m_port)
                                .arg(m_folder.path());
    m_running = runTool(QStringLiteral("pg_ctl"),
                        {QStringLiteral("-D"), m_folder.filePath(QStringLiteral("data")), QStringLiteral("-o"), options,
                         QStringLiteral("-l"), m_folder.filePath(QStringLiteral("server.log")), QStringLiteral("-w"),
                         QStringLiteral("start")});
    return m_running;
}

bool LocalPostgres::stop()
{
    if (!m_running)
        return true;
    m_running = !runTool(QStringLiteral("pg_ctl"),
                         {QStringLiteral("-D"), m_folder.filePath(QStringLiteral("data")), QStringLiteral("-m"),
                          QStringLiteral("fast"), QStringLiteral("-w"), QStringLiteral("stop")});
    return !m_running;
}

bool LocalPostgres::runTool(const QString &tool, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    const QString program = m_binaries + QLatin1Char('/') + tool;
    if (isRoot())
        process.start(QStringLiteral("runuser"), QStringList{QStringLiteral("-u"), kUnprivilegedUser, QStringLiteral("--"), program} + arguments);
    else
        process.start(program, arguments);
    if (!process.waitForFinished(kToolTimeoutMs) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        m_error = QStringLiteral("%1 failed: %2").arg(tool, QString::fromLocal8Bit(process.readAll()));
        return false;
    }
    return true;
}

bool LocalPostgres::createDatabase(const QString &name, const QString &templateName)
{
    const QString connection = QStringLiteral("local-postgres-admin");
    bool created = false;
    {
        QSqlDatabase admin = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connection);
        admin.setHostName(QStringLiteral("127.0.0.1"));
        admin.setPort(m_port);
        admin.setUserName(QLatin1String(kUser));
        admin.setDatabaseName(QStringLiteral("postgres"));
        if (!admin.open()) {
            m_error = QStringLiteral("cannot reach the test cluster: %1").arg(admin.lastError().text());
        } else {
            QSqlQuery query(admin);
            created = query.exec(QStringLiteral("CREATE DATABASE %1 TEMPLATE %2").arg(name, templateName));
            if (!created)
                m_error = QStringLiteral("cannot create %1: %2").arg(name, query.lastError().text());
        }
        admin.close();
    }
    QSqlDatabase::removeDatabase(connection);
    return created;
}

QString LocalPostgres::urlOf(const QString &name) const
{
    return QStringLiteral("postgresql://%1@127.0.0.1:%2/%3").arg(QLatin1String(kUser)).arg(m_port).arg(name);
}

QString LocalPostgres::emptyDatabase()
{
    const QString name = QStringLiteral("forum_%1").arg(++m_databases);
    return m_running && createDatabase(name, QStringLiteral("template0")) ? urlOf(name) : QString();
}

QString LocalPostgres::freshDatabase(const std::function<bool(const QString &url)> &prepareTemplate)
{
    if (!m_running)
        return {};
    if (!m_templateReady) {
        if (!createDatabase(kTemplate, QStringLiteral("template0")))
            return {};
        if (!prepareTemplate(urlOf(kTemplate))) {
            m_error = QStringLiteral("the template database could not be prepared");
            return {};
        }
        m_templateReady = true;
    }
    const QString name = QStringLiteral("forum_%1").arg(++m_databases);
    return createDatabase(name, kTemplate) ? urlOf(name) : QString();
}
