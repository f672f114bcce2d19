#include "PushSendCommand.h"

#include "ForumDatabase.h"
#include "PushGatewaySecret.h"

#include <QCommandLineParser>
#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int kUsageError = 2;
constexpr int kRefused = 1;
constexpr int kTimeoutMs = 15'000;
const QString kDefaultDatabase = QStringLiteral("quorvel-forum.sqlite");

void printTo(FILE *stream, const QString &text)
{
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

QString newMessageId()
{
    return QString::number(QRandomGenerator::system()->generate64(), 16).rightJustified(16, QLatin1Char('0'));
}

// The secret a server keeps in the database at `location`; empty, with `error` set, when
// there is none (no server has started on it) or the database cannot be read.
QByteArray secretOfDatabase(const QString &location, QString *error)
{
    const std::unique_ptr<ForumDatabase> database = ForumDatabase::open(location, error);
    if (!database)
        return {};
    try {
        if (const std::optional<QByteArray> secret = PushGatewaySecret::storedIn(*database))
            return *secret;
        *error = QStringLiteral("%1 holds no push secret yet (start the server on it first)").arg(location);
    } catch (const StoreError &failure) {
        *error = QString::fromStdString(failure.what());
    }
    return {};
}

} // namespace

bool PushSendCommand::isRequested(const QStringList &arguments)
{
    return arguments.size() >= 3 && arguments[1] == QLatin1String("push") && arguments[2] == QLatin1String("send");
}

QJsonObject PushSendCommand::userInfo(const QString &msgId, const Topic &topic, const QString &alert)
{
    const QJsonObject data{{QStringLiteral("topicid"), topic.topicId},
                           {QStringLiteral("sectionid"), topic.sectionId},
                           {QStringLiteral("title"), topic.title},
                           {QStringLiteral("username"), topic.userName},
                           {QStringLiteral("content"), topic.content}};
    const QByteArray payload = QJsonDocument(QJsonObject{{QStringLiteral("data"), data}}).toJson(QJsonDocument::Compact);
    return {{QStringLiteral("d"), msgId},
            {QStringLiteral("aps"), QJsonObject{{QStringLiteral("alert"), alert}, {QStringLiteral("badge"), 1}}},
            {QStringLiteral("key1"), QString::fromUtf8(payload)}};
}

int PushSendCommand::run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Sends a notification naming a topic through a running quorvel-server's push gateway."));
    const auto option = [](const char *name, const char *help, const char *value = nullptr) {
        return value ? QCommandLineOption(QLatin1String(name), QLatin1String(help), QLatin1String(value))
                     : QCommandLineOption(QLatin1String(name), QLatin1String(help));
    };
    const QCommandLineOption gateway = option("gateway", "The gateway's root, e.g. http://127.0.0.1:8080/push.", "url");
    const QCommandLineOption device = option("device", "Send to the device with this token (64 hex digits).", "token");
    const QCommandLineOption tag = option("tag", "Send to the devices with this tag.", "tag");
    const QCommandLineOption alias = option("alias", "Send to the devices with this alias.", "name");
    const QCommandLineOption all = option("all", "Send to every registered device.");
    const QCommandLineOption topic = option("topic", "The topic id to open.", "tid");
    const QCommandLineOption section = option("section", "The topic's board id.", "sectionid");
    const QCommandLineOption title = option("title", "The topic's title.", "text");
    const QCommandLineOption user = option("user", "The poster's name.", "name");
    const QCommandLineOption content = option("content", "The topic's text.", "text");
    const QCommandLineOption alert = option("alert", "The alert text (default: the title).", "text");
    const QCommandLineOption db = option("db", "The server's database, which holds the secret: a file or a "
                                               "postgresql:// address (default quorvel-forum.sqlite).", "location");
    const QCommandLineOption secretFile = option("secret-file", "Read the secret from this file instead.", "path");
    parser.addOptions({gateway, device, tag, alias, all, topic, section, title, user, content, alert, db, secretFile});
    parser.addHelpOption();

    QStringList rest = arguments;
    rest.removeAt(1);  // "push": the parser sees "<program> send ..."
    if (!parser.parse(rest)) {
        printTo(stderr, parser.errorText() + QLatin1Char('\n'));
        return kUsageError;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        printTo(stdout, parser.helpText());
        return 0;
    }

    const int targets = int(parser.isSet(device)) + int(parser.isSet(tag)) + int(parser.isSet(alias)) + int(parser.isSet(all));
    bool topicOk = false;
    bool sectionOk = false;
    Topic named{parser.value(topic).toLongLong(&topicOk), parser.value(section).toLongLong(&sectionOk),
                parser.value(title), parser.value(user), parser.value(content)};
    if (!parser.isSet(gateway) || targets != 1 || !topicOk || !sectionOk) {
        printTo(stderr, QStringLiteral("push send needs --gateway URL, one of --device, --tag, --alias, --all, "
                                       "and whole numbers for --topic and --section\n"));
        return kUsageError;
    }

    QJsonObject target;
    if (parser.isSet(device))
        target.insert(QStringLiteral("device"), parser.value(device));
    else if (parser.isSet(tag))
        target.insert(QStringLiteral("tag"), parser.value(tag));
    else if (parser.isSet(alias))
        target.insert(QStringLiteral("alias"), parser.value(alias));
    else
        target.insert(QStringLiteral("all"), true);

    QString error;
    const QByteArray secret = parser.isSet(secretFile)
        ? PushGatewaySecret::read(parser.value(secretFile), &error)
        : secretOfDatabase(parser.isSet(db) ? parser.value(db) : kDefaultDatabase, &error);
    if (secret.isEmpty())
        printTo(stderr, QStringLiteral("push send: %1; asking without it\n").arg(error));

    const QString alertText = parser.isSet(alert) ? parser.value(alert) : named.title;
    const QJsonObject body{{QStringLiteral("target"), target},
                           {QStringLiteral("user_info"), userInfo(newMessageId(), named, alertText)}};
    QString root = parser.value(gateway);
    while (root.endsWith(QLatin1Char('/')))
        root.chop(1);
    QNetworkRequest request(QUrl(root + QStringLiteral("/send")));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    if (!secret.isEmpty())
        request.setRawHeader("Authorization", "Bearer " + secret);
    request.setTransferTimeout(kTimeoutMs);

    QNetworkAccessManager network;
    QNetworkReply *reply = network.post(request, QJsonDocument(body).toJson(QJsonDocument::Compact));
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray answer = reply->readAll();
    reply->deleteLater();
    if (status == 200) {
        printTo(stdout, QString::fromUtf8(answer) + QLatin1Char('\n'));
        return 0;
    }
    const QString why = status == 0 ? reply->errorString() : QString::fromUtf8(answer);
    printTo(stderr, QStringLiteral("push send: the gateway refused (status %1): %2\n").arg(status).arg(why));
    return kRefused;
}
