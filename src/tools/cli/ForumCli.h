#pragma once
// The forum from the command line: each command makes the same requests the app's screens
// make, through the endpoint catalogue, and prints the answer readably or as JSON.
// Main thread.

#include "HttpTask.h"
#include "ListModel.h"
#include "PostOutcome.h"
#include "UserIdStore.h"

#include <QJsonValue>
#include <QObject>
#include <QTextStream>

#include <functional>

class ForumCli : public QObject
{
    Q_OBJECT

public:
    explicit ForumCli(bool jsonOutput, QObject *parent = nullptr);

    // Each command ends by emitting finished(exit code).
    void ads();
    void boards();
    void topics(qint64 sectionId, int page);
    void top(qint64 sectionId);
    void topic(qint64 tid, qint64 sectionId);
    void reply(qint64 tid, qint64 sectionId, const QString &text);
    void post(qint64 sectionId, const QString &title, const QString &content);

    // Called when the forum client logs a failure while a request is pending.
    void failPendingRequest(const QString &logLine);

signals:
    void finished(int exitCode);

private:
    using PayloadHandler = std::function<void(const QJsonValue &payload)>;
    using BoardHandler = std::function<void(const ListModel &board)>;

    // The home screen's first load: a temporary user when none is stored, and the boards.
    // `then` runs with the boards once every request it made has been answered.
    void withBoards(const PayloadHandler &then);
    // Finds the board record for `sectionId` in the board list.
    void withBoard(qint64 sectionId, const BoardHandler &then);
    // Counts a request as pending until its answer arrives, then runs the handler.
    std::function<void(const HttpTask &, const QJsonValue &)> answered(PayloadHandler handler);
    void printJson(const QJsonValue &payload);
    // The payload as JSON with --json, else as the readable text; then the command ends.
    void printAnswer(const QJsonValue &payload, const std::function<QString()> &readable);
    void printPostOutcome(const QJsonValue &payload, PostOutcome::Kind kind);
    void finish(int exitCode);

    bool m_json;
    int m_pending = 0;
    UserIdStore m_userIds;
    QTextStream m_out;
};
