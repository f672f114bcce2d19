// quorvel-cli: the forum service from a terminal, with the app's user defaults, so its
// first run obtains a temporary user just as the app does.

#include "ForumCli.h"
#include "ForumLog.h"
#include "ServiceConfig.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int kExitUsage = 2;
constexpr int kExitFailed = 1;
// An answer the transport swallows (a null `Data` calls nothing) must not hang the tool.
constexpr int kDefaultTimeoutSeconds = 30;

ForumCli *g_cli = nullptr;
QtMessageHandler g_defaultHandler = nullptr;

// Forum log lines still reach stderr; while a request is pending they also mean failure,
// since the transport reports failures only by logging.
void forwardForumLog(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    g_defaultHandler(type, context, message);
    if (g_cli && context.category && QByteArray(context.category) == lcForum().categoryName())
        g_cli->failPendingRequest(message);
}

int usage(const QCommandLineParser &parser, const QString &problem)
{
    std::fprintf(stderr, "%s\n\n%s", qPrintable(problem), qPrintable(parser.helpText()));
    return kExitUsage;
}

bool readNumber(const QString &text, qint64 *value)
{
    bool ok = false;
    *value = text.toLongLong(&ok);
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quorvel"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "The Quorvel forum from the command line.\n\n"
        "Commands:\n"
        "  ads                                 promoted banner items\n"
        "  boards                              the boards\n"
        "  topics SECTION [--page N]           a board's topics, 10 a page\n"
        "  top SECTION                         a board's pinned and guide topics\n"
        "  topic TID --section S               a topic and its replies\n"
        "  reply TID --section S TEXT          reply to a topic\n"
        "  post SECTION --title T --content C  write a new topic"));
    parser.addHelpOption();
    const QCommandLineOption apiRoot(QStringLiteral("api-root"),
                                     QStringLiteral("Forum API root (default %1, or $%2).")
                                         .arg(QString::fromLatin1(ServiceConfig::kDefaultApiRoot),
                                              QString::fromLatin1(ServiceConfig::kApiRootVariable)),
                                     QStringLiteral("url"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print the answer's payload as JSON."));
    const QCommandLineOption page(QStringLiteral("page"), QStringLiteral("Page of topics, from 1."),
                                  QStringLiteral("n"), QStringLiteral("1"));
    const QCommandLineOption section(QStringLiteral("section"), QStringLiteral("Board id."), QStringLiteral("id"));
    const QCommandLineOption title(QStringLiteral("title"), QStringLiteral("New topic's title."), QStringLiteral("text"));
    const QCommandLineOption content(QStringLiteral("content"), QStringLiteral("New topic's text."),
                                     QStringLiteral("text"));
    const QCommandLineOption timeout(QStringLiteral("timeout"),
                                     QStringLiteral("Give up after this many seconds without an answer (default %1).")
                                         .arg(kDefaultTimeoutSeconds),
                                     QStringLiteral("seconds"), QString::number(kDefaultTimeoutSeconds));
    parser.addOptions({apiRoot, json, page, section, title, content, timeout});
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("One of the commands above."));
    parser.process(app);

    if (parser.isSet(apiRoot))
        ServiceConfig::setApiRoot(parser.value(apiRoot));

    const QStringList args = parser.positionalArguments();
    if (args.isEmpty())
        return usage(parser, QStringLiteral("No command given."));
    const QString command = args.first();

    ForumCli cli(parser.isSet(json));
    g_cli = &cli;
    g_defaultHandler = qInstallMessageHandler(forwardForumLog);
    QObject::connect(&cli, &ForumCli::finished, &app, [](int code) { QCoreApplication::exit(code); });

    qint64 first = 0;
    qint64 sectionId = 0;
    const bool hasFirst = args.size() >= 2 && readNumber(args.at(1), &first);
    const bool hasSection = parser.isSet(section) && readNumber(parser.value(section), &sectionId);
    qint64 pageNumber = 0;
    if (!readNumber(parser.value(page), &pageNumber) || pageNumber < 1)
        return usage(parser, QStringLiteral("--page takes a whole number from 1."));
    qint64 timeoutSeconds = 0;
    if (!readNumber(parser.value(timeout), &timeoutSeconds) || timeoutSeconds < 1)
        return usage(parser, QStringLiteral("--timeout takes a whole number of seconds from 1."));

    std::function<void()> run;
    if (command == u"ads" && args.size() == 1) {
        run = [&] { cli.ads(); };
    } else if (command == u"boards" && args.size() == 1) {
        run = [&] { cli.boards(); };
    } else if (command == u"topics" && args.size() == 2 && hasFirst) {
        run = [&] { cli.topics(first, int(pageNumber)); };
    } else if (command == u"top" && args.size() == 2 && hasFirst) {
        run = [&] { cli.top(first); };
    } else if (command == u"topic" && args.size() == 2 && hasFirst && hasSection) {
        run = [&] { cli.topic(first, sectionId); };
    } else if (command == u"reply" && args.size() == 3 && hasFirst && hasSection) {
        run = [&] { cli.reply(first, sectionId, args.at(2)); };
    } else if (command == u"post" && args.size() == 2 && hasFirst && parser.isSet(title) && parser.isSet(content)) {
        run = [&] { cli.post(first, parser.value(title), parser.value(content)); };
    } else {
        return usage(parser, QStringLiteral("Unknown command or wrong arguments: %1").arg(args.join(u' ')));
    }
    QTimer::singleShot(0, &app, run);
    QTimer::singleShot(std::chrono::seconds(timeoutSeconds), &app, [timeoutSeconds] {
        std::fprintf(stderr, "no answer within %lld s\n", static_cast<long long>(timeoutSeconds));
        QCoreApplication::exit(kExitFailed);
    });
    return app.exec();
}
