#include "ForumCli.h"

#include "CliFormat.h"
#include "FieldValue.h"
#include "FirstLoad.h"
#include "ForumPayloads.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "PostModel.h"
#include "PostOutcome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitNotFound = 3;

} // namespace

ForumCli::ForumCli(bool jsonOutput, QObject *parent)
    : QObject(parent), m_json(jsonOutput), m_out(stdout)
{
}

void ForumCli::finish(int exitCode)
{
    m_out.flush();
    emit finished(exitCode);
}

void ForumCli::failPendingRequest(const QString &logLine)
{
    if (m_pending == 0)
        return;
    // A payload that fails to parse is logged just before its handler runs with an absent
    // payload; only a request that stays unanswered after the log line has failed.
    const int pendingNow = m_pending;
    QTimer::singleShot(0, this, [this, logLine, pendingNow] {
        if (m_pending < pendingNow || m_pending == 0)
            return;
        m_pending = 0;
        QTextStream(stderr) << "request failed: " << logLine << Qt::endl;
        finish(kExitFailed);
    });
}

std::function<void(const HttpTask &, const QJsonValue &)> ForumCli::answered(PayloadHandler handler)
{
    ++m_pending;
    return [this, handler = std::move(handler)](const HttpTask &, const QJsonValue &payload) {
        --m_pending;
        handler(payload);
    };
}

void ForumCli::printJson(const QJsonValue &payload)
{
    m_out << CliFormat::json(payload) << Qt::endl;
}

void ForumCli::printAnswer(const QJsonValue &payload, const std::function<QString()> &readable)
{
    if (m_json)
        printJson(payload);
    else
        m_out << readable();
    finish(kExitOk);
}

void ForumCli::withBoards(const PayloadHandler &then)
{
    auto boards = std::make_shared<QJsonValue>(QJsonValue::Undefined);
    auto remaining = std::make_shared<int>(m_userIds.hasUserId() ? 1 : 2);
    m_pending += *remaining;
    auto oneAnswered = [this, boards, remaining, then] {
        --m_pending;
        if (--*remaining == 0)
            then(*boards);
    };
    FirstLoad::Handlers handlers;
    handlers.sections = [boards, oneAnswered](const QJsonValue &payload) {
        *boards = payload;
        oneAnswered();
    };
    handlers.userStored = [this, oneAnswered](const QString &id) {
        if (!m_json)
            m_out << "临时用户 " << id << Qt::endl;
        oneAnswered();
    };
    FirstLoad::start(m_userIds, handlers);
}

void ForumCli::ads()
{
    HttpRequest::GetAdRecomSuccessBlock(answered([this](const QJsonValue &payload) {
                                            printAnswer(payload, [&] { return CliFormat::banner(payload); });
                                        }),
                                        {});
}

void ForumCli::boards()
{
    withBoards([this](const QJsonValue &answer) {
        printAnswer(answer, [&] { return CliFormat::boards(answer); });
    });
}

void ForumCli::withBoard(qint64 sectionId, const BoardHandler &then)
{
    withBoards([this, sectionId, then](const QJsonValue &answer) {
        for (const QJsonValue &entry : answer.toArray()) {
            const ListModel board = ListModel::fromJson(entry);
            if (FieldValue::integerValue(board.sectionid()) == sectionId) {
                then(board);
                return;
            }
        }
        QTextStream(stderr) << "no board " << sectionId << Qt::endl;
        finish(kExitNotFound);
    });
}

void ForumCli::topics(qint64 sectionId, int page)
{
    withBoard(sectionId, [this, page](const ListModel &board) {
        const QString payload = JsonChangDic::jsonWithDictionary(ForumPayloads::topics(board, page));
        HttpRequest::GetTopicsSuccessBlock(answered([this, board, page](const QJsonValue &answer) {
                                               printAnswer(answer, [&] { return CliFormat::topics(board, page, answer); });
                                           }),
                                           {}, payload);
    });
}

void ForumCli::top(qint64 sectionId)
{
    withBoard(sectionId, [this](const ListModel &board) {
        const QString payload = JsonChangDic::jsonWithDictionary(ForumPayloads::topTopic(board));
        HttpRequest::GetTopTopicSuccessBlock(answered([this](const QJsonValue &answer) {
                                                 printAnswer(answer, [&] { return CliFormat::topTopics(answer); });
                                             }),
                                             {}, payload);
    });
}

void ForumCli::topic(qint64 tid, qint64 sectionId)
{
    withBoards([this, tid, sectionId](const QJsonValue &) {
        ListModel board;
        board.setValueForKey(sectionId, u"sectionid");
        PostModel opened;
        opened.setValueForKey(tid, u"tid");
        const QString payload = JsonChangDic::jsonWithDictionary(
            ForumPayloads::topicDetail(board, opened, m_userIds.userId()));
        // Both requests share one payload and go out together, as the topic screen sends
        // them; their answers may come back in either order.
        struct Answers
        {
            QJsonValue detail = QJsonValue::Undefined;
            QJsonValue replies = QJsonValue::Undefined;
            int missing = 2;
        };
        auto answers = std::make_shared<Answers>();
        auto printWhenBoth = [this, answers] {
            if (--answers->missing > 0)
                return;
            const QJsonValue both = QJsonObject{{QStringLiteral("detail"), answers->detail},
                                                {QStringLiteral("replies"), answers->replies}};
            printAnswer(both, [&] { return CliFormat::topicDetail(answers->detail, answers->replies); });
        };
        HttpRequest::GetTopicDetailSuccessBlock(answered([answers, printWhenBoth](const QJsonValue &detail) {
                                                    answers->detail = detail;
                                                    printWhenBoth();
                                                }),
                                                {}, payload);
        HttpRequest::GetRepliesLogSuccessBlock(answered([answers, printWhenBoth](const QJsonValue &replies) {
                                                   answers->replies = replies;
                                                   printWhenBoth();
                                               }),
                                               {}, payload);
    });
}

void ForumCli::printPostOutcome(const QJsonValue &payload, PostOutcome::Kind kind)
{
    const bool succeeded = PostOutcome::succeeded(kind, payload);
    if (m_json) {
        printJson(payload);
    } else {
        const QString description = payload.toObject().value(QStringLiteral("description")).toString();
        m_out << PostOutcome::notice(kind, payload) << "  (" << description << ")" << Qt::endl;
    }
    finish(succeeded ? kExitOk : kExitFailed);
}

void ForumCli::reply(qint64 tid, qint64 sectionId, const QString &text)
{
    withBoards([this, tid, sectionId, text](const QJsonValue &) {
        ListModel board;
        board.setValueForKey(sectionId, u"sectionid");
        PostModel opened;
        opened.setValueForKey(tid, u"tid");
        // Replying from the topic sends the topic's title, so fetch the topic first.
        const QString detailPayload = JsonChangDic::jsonWithDictionary(
            ForumPayloads::topicDetail(board, opened, m_userIds.userId()));
        HttpRequest::GetTopicDetailSuccessBlock(
            answered([this, board, tid, text](const QJsonValue &detail) {
                const QJsonValue title = detail.toObject().value(QStringLiteral("title"));
                const QString payload = JsonChangDic::jsonWithDictionary(
                    ForumPayloads::reply(board, tid, title, m_userIds.userId(), text));
                HttpRequest::GetRepliesleTopicSuccessBlock(answered([this](const QJsonValue &answer) {
                                                               printPostOutcome(answer, PostOutcome::Kind::Reply);
                                                           }),
                                                           {}, payload);
            }),
            {}, detailPayload);
    });
}

void ForumCli::post(qint64 sectionId, const QString &title, const QString &content)
{
    withBoard(sectionId, [this, title, content](const ListModel &board) {
        const QString payload = JsonChangDic::jsonWithDictionary(
            ForumPayloads::writeTopic(board, m_userIds.userId(), title, content));
        HttpRequest::GetWriteTopicSuccessBlock(answered([this](const QJsonValue &answer) {
                                                   printPostOutcome(answer, PostOutcome::Kind::Topic);
                                               }),
                                               {}, payload);
    });
}
