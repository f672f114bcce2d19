#include "LocalForumServer.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QRegularExpression>

namespace {

constexpr int kStartTimeoutMs = 20000;
constexpr int kStopTimeoutMs = 5000;

#ifdef QUORVEL_SERVER_BINARY
const QString kServerBinary = QStringLiteral(QUORVEL_SERVER_BINARY);
#else
const QString kServerBinary;
#endif

} // namespace

LocalForumServer::LocalForumServer(const QStringList &extraArguments)
    : m_extraArguments(extraArguments)
{
    if (kServerBinary.isEmpty())
        m_error = QStringLiteral("quorvel-server is not part of this build");
    else if (!m_folder.isValid())
        m_error = QStringLiteral("no temporary folder: %1").arg(m_folder.errorString());
    else
        start(0);
}

LocalForumServer::~LocalForumServer()
{
    stop();
}

bool LocalForumServer::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running && m_port != 0;
}

QString LocalForumServer::origin() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(m_port);
}

QString LocalForumServer::apiRoot() const
{
    return origin() + QStringLiteral("/api/");
}

QString LocalForumServer::databasePath() const
{
    // A --db among the extra arguments comes later on the command line, so it wins.
    const qsizetype given = m_extraArguments.lastIndexOf(QStringLiteral("--db"));
    if (given >= 0 && given + 1 < m_extraArguments.size())
        return m_extraArguments.at(given + 1);
    return m_folder.filePath(QStringLiteral("forum.sqlite"));
}

QByteArray LocalForumServer::log() const
{
    QFile file(m_folder.filePath(QStringLiteral("server.log")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool LocalForumServer::start(quint16 port)
{
    m_process = std::make_unique<QProcess>();
    // The log goes to a file so a chatty server never blocks on a full pipe.
    m_process->setStandardErrorFile(m_folder.filePath(QStringLiteral("server.log")), QIODevice::Append);
    // The collector on a free port of its own, so that servers of tests running side by side
    // never share one.
    QStringList arguments{QStringLiteral("--port"), QString::number(port), QStringLiteral("--db"),
                          databasePath(), QStringLiteral("--analytics-port"), QStringLiteral("0")};
    arguments += m_extraArguments;
    m_process->start(kServerBinary, arguments);

    static const QRegularExpression listening(
        QStringLiteral("^quorvel-server listening on http://[^:/]+:(\\d+)/api/"));
    QDeadlineTimer deadline(kStartTimeoutMs);
    while (!m_process->canReadLine()) {
        if (m_process->state() == QProcess::NotRunning || deadline.hasExpired()
            || !m_process->waitForReadyRead(int(deadline.remainingTime()))) {
            if (m_process->canReadLine())
                break;
            m_error = QStringLiteral("quorvel-server did not start: %1").arg(QString::fromUtf8(log()));
            stop();
            return false;
        }
    }
    const QRegularExpressionMatch match = listening.match(QString::fromUtf8(m_process->readLine()));
    if (!match.hasMatch()) {
        m_error = QStringLiteral("unexpected first line from quorvel-server");
        stop();
        return false;
    }
    m_port = quint16(match.captured(1).toUInt());
    m_error.clear();

    static const QRegularExpression analytics(QStringLiteral("^quorvel-server analytics listening on (http://\\S+)"));
    while (!m_process->canReadLine() && m_process->state() != QProcess::NotRunning && !deadline.hasExpired())
        m_process->waitForReadyRead(int(deadline.remainingTime()));
    m_analyticsRoot = analytics.match(QString::fromUtf8(m_process->readLine())).captured(1);
    return true;
}

void LocalForumServer::stop()
{
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(kStopTimeoutMs)) {
            m_process->kill();
            m_process->waitForFinished(kStopTimeoutMs);
        }
    }
    m_process.reset();
    m_port = 0;
}

void LocalForumServer::kill()
{
    if (!m_process)
        return;
    m_process->kill();
    m_process->waitForFinished(kStopTimeoutMs);
    m_process.reset();
    m_port = 0;
}

bool LocalForumServer::restart()
{
    if (kServerBinary.isEmpty())
        return false;
    const quint16 previous = m_port;
    stop();
    return (previous != 0 && start(previous)) || start(0);
}
