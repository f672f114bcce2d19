#pragma once
// quorvel-server with its analytics collector on free loopback ports and a database in a
// temporary folder, for tests that upload to the collector. Test thread; stopped on
// destruction.

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <memory>

class CollectorProcess
{
public:
    static constexpr int kStartTimeoutMs = 20000;

    explicit CollectorProcess(const QStringList &extraArguments = {})
    {
        m_process.setProgram(QStringLiteral(QUORVEL_SERVER_BINARY));
        m_process.setArguments(QStringList{QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--analytics-port"),
                                           QStringLiteral("0"), QStringLiteral("--db"), databasePath()}
                               + extraArguments);
        m_process.setStandardErrorFile(m_folder.filePath(QStringLiteral("server.log")));
        m_process.start();
        static const QRegularExpression analyticsLine(QStringLiteral("^quorvel-server analytics listening on (http://\\S+)"));
        QByteArray seen;
        while (m_analyticsRoot.isEmpty() && m_process.waitForReadyRead(kStartTimeoutMs)) {
            seen += m_process.readAllStandardOutput();
            for (const QByteArray &line : seen.split('\n')) {
                const QRegularExpressionMatch match = analyticsLine.match(QString::fromUtf8(line));
                if (match.hasMatch())
                    m_analyticsRoot = match.captured(1);
            }
        }
    }
    ~CollectorProcess()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
    }

    // "http://127.0.0.1:PORT", to which the client appends "/app_logs"; empty when not running.
    QString analyticsRoot() const { return m_analyticsRoot; }
    QString databasePath() const { return m_folder.filePath(QStringLiteral("forum.sqlite")); }
    QByteArray log() const
    {
        QFile file(m_folder.filePath(QStringLiteral("server.log")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_analyticsRoot;
};
