#include "AppOptions.h"

#include "ScreenSizeOption.h"
#include "ServiceConfig.h"

#include <QCommandLineParser>

std::optional<AppOptions> AppOptions::parse(const QStringList &arguments, QString *error, bool *helpRequested)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Quorvel, the forum client."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help."));
    const QCommandLineOption apiRoot(QStringLiteral("api-root"),
                                     QStringLiteral("Forum API root (default %1, or $%2).")
                                         .arg(QString::fromLatin1(ServiceConfig::kDefaultApiRoot),
                                              QString::fromLatin1(ServiceConfig::kApiRootVariable)),
                                     QStringLiteral("url"));
    const QCommandLineOption screen(QStringLiteral("screen"), QStringLiteral("Screen size in points (default 375x667)."),
                                    QStringLiteral("WxH"));
    const QCommandLineOption board(QStringLiteral("board"), QStringLiteral("Open this board, as the home screen would."),
                                   QStringLiteral("id"));
    const QCommandLineOption topic(QStringLiteral("topic"), QStringLiteral("Open this topic, as a board list would."),
                                   QStringLiteral("tid"));
    const QCommandLineOption section(QStringLiteral("section"), QStringLiteral("The topic's board."),
                                     QStringLiteral("id"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Save the window to this PNG once the screen has loaded, "
                                                       "then quit."),
                                        QStringLiteral("path"));
    const QCommandLineOption draft(QStringLiteral("reply-draft"),
                                   QStringLiteral("Type this into the reply bar before the screenshot."),
                                   QStringLiteral("text"));
    parser.addOptions({help, apiRoot, screen, board, topic, section, screenshot, draft});

    *helpRequested = false;
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    if (parser.isSet(help)) {
        *helpRequested = true;
        *error = parser.helpText();
        return std::nullopt;
    }

    AppOptions options;
    options.apiRoot = parser.value(apiRoot);
    options.screenSize = ScreenSizeOption::kDefaultSize;
    if (parser.isSet(screen)) {
        options.screenSize = ScreenSizeOption::parse(parser.value(screen));
        if (!options.screenSize.isValid()) {
            *error = QStringLiteral("--screen takes WxH, such as 375x667");
            return std::nullopt;
        }
    }
    if (parser.isSet(board)) {
        bool boardOk = false;
        options.boardId = parser.value(board).toLongLong(&boardOk);
        if (!boardOk) {
            *error = QStringLiteral("--board takes a board id");
            return std::nullopt;
        }
    } else if (parser.isSet(topic)) {
        bool topicOk = false;
        bool sectionOk = false;
        options.topicId = parser.value(topic).toLongLong(&topicOk);
        options.sectionId = parser.value(section).toLongLong(&sectionOk);
        if (!topicOk || !sectionOk) {
            *error = QStringLiteral("--topic takes a topic id and needs --section with the board id");
            return std::nullopt;
        }
    } else {
        *error = QStringLiteral("Say what to open: --board S, or --topic TID --section S");
        return std::nullopt;
    }
    options.screenshotPath = parser.value(screenshot);
    options.replyDraft = parser.value(draft);
    return options;
}
