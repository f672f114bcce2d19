#include "AppOptions.h"

#include "LFAnalyticsContext.h"
#include "LFPushEndpoint.h"
#include "ScreenSizeOption.h"
#include "ServiceConfig.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QUrl>

namespace {

QCommandLineOption valueOption(const char *name, const QString &description, const char *valueName)
{
    return QCommandLineOption(QString::fromLatin1(name), description, QString::fromLatin1(valueName));
}

bool isWebAddress(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https")) &&
           !url.host().isEmpty();
}

std::optional<qint64> idValue(const QString &text)
{
    bool ok = false;
    const qint64 id = text.toLongLong(&ok);
    return ok ? std::optional<qint64>(id) : std::nullopt;
}

} // namespace

std::optional<AppOptions> AppOptions::parse(const QStringList &arguments, QString *error, bool *helpRequested)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Quorvel, the forum client. With no option it launches as on a phone: the home screen with "
        "the banner and the boards."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help."));
    const QCommandLineOption apiRoot = valueOption(
        "api-root",
        QStringLiteral("Forum API root (default %1, or $%2).")
            .arg(QString::fromLatin1(ServiceConfig::kDefaultApiRoot), QString::fromLatin1(ServiceConfig::kApiRootVariable)),
        "url");
    const QCommandLineOption pushUrl = valueOption(
        "push-url",
        QStringLiteral("Push gateway (default %1, or $%2).")
            .arg(QString::fromLatin1(LFPushEndpoint::kDefaultUrl), QString::fromLatin1(LFPushEndpoint::kEnvironmentVariable)),
        "url");
    const QCommandLineOption analyticsUrl = valueOption(
        "analytics-url",
        QStringLiteral("Analytics log host, to which /app_logs is added (default %1, or $QUORVEL_ANALYTICS_URL).")
            .arg(LFAnalyticsContext::kDefaultLogHost),
        "url");
    const QCommandLineOption analyticsFallbackUrl = valueOption(
        "analytics-fallback-url",
        QStringLiteral("Analytics log host tried when the first fails (default %1, or $QUORVEL_ANALYTICS_FALLBACK_URL).")
            .arg(LFAnalyticsContext::kDefaultLogHost),
        "url");
    const QCommandLineOption screen = valueOption("screen", QStringLiteral("Screen size in points (default 375x667)."), "WxH");
    const QCommandLineOption board = valueOption("board", QStringLiteral("Open this board from the home screen's list."), "id");
    const QCommandLineOption topic = valueOption("topic", QStringLiteral("Open this topic, as a board list would."), "tid");
    const QCommandLineOption section = valueOption("section", QStringLiteral("The topic's board."), "id");
    const QCommandLineOption screenshot = valueOption(
        "screenshot", QStringLiteral("Save the window to this PNG once the screen reached has loaded, then quit."), "path");
    const QCommandLineOption draft =
        valueOption("reply-draft", QStringLiteral("Type this into the reply bar before the screenshot."), "text");
    const QCommandLineOption notification = valueOption(
        "notification",
        QStringLiteral("Once the home screen has loaded, receive this user info (a JSON object) as a notification."),
        "json");
    const QCommandLineOption tour = valueOption(
        "tour",
        QStringLiteral("Walk the app as a person would, saving one picture per step in this folder; exit 0 when "
                       "every step was reached, 1 naming the step that was not."),
        "folder");
    parser.addOptions({help, apiRoot, pushUrl, analyticsUrl, analyticsFallbackUrl, screen, board, topic, section, screenshot, draft, notification, tour});

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
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("unexpected argument: %1").arg(parser.positionalArguments().first());
        return std::nullopt;
    }

    AppOptions options;
    options.apiRoot = parser.value(apiRoot);
    options.pushUrl = parser.value(pushUrl);
    options.analyticsUrl = parser.value(analyticsUrl);
    options.analyticsFallbackUrl = parser.value(analyticsFallbackUrl);
    for (const auto &[option, value] :
         {std::pair{"--api-root", options.apiRoot}, std::pair{"--push-url", options.pushUrl},
          std::pair{"--analytics-url", options.analyticsUrl}, std::pair{"--analytics-fallback-url", options.analyticsFallbackUrl}}) {
        if (!value.isEmpty() && !isWebAddress(value)) {
            *error = QStringLiteral("%1 takes an http or https address, such as http://127.0.0.1:8080/").arg(QLatin1String(option));
            return std::nullopt;
        }
    }
    options.screenSize = ScreenSizeOption::kDefaultSize;
    if (parser.isSet(screen)) {
        options.screenSize = ScreenSizeOption::parse(parser.value(screen));
        if (!options.screenSize.isValid()) {
            *error = QStringLiteral("--screen takes WxH, such as 375x667");
            return std::nullopt;
        }
    }
    const int destinations = int(parser.isSet(board)) + int(parser.isSet(topic)) + int(parser.isSet(tour));
    if (destinations > 1) {
        *error = QStringLiteral("--board, --topic and --tour go one at a time");
        return std::nullopt;
    }
    // The tour takes its own pictures and delivers its own notification.
    if (parser.isSet(tour) && (parser.isSet(screenshot) || parser.isSet(notification) || parser.isSet(draft))) {
        *error = QStringLiteral("--tour goes without --screenshot, --notification and --reply-draft");
        return std::nullopt;
    }
    if ((parser.isSet(section) || parser.isSet(draft)) && !parser.isSet(topic)) {
        *error = QStringLiteral("--section and --reply-draft go with --topic");
        return std::nullopt;
    }
    if (parser.isSet(board)) {
        options.boardId = idValue(parser.value(board));
        if (!options.boardId) {
            *error = QStringLiteral("--board takes a board id");
            return std::nullopt;
        }
    } else if (parser.isSet(topic)) {
        options.topicId = idValue(parser.value(topic));
        const std::optional<qint64> sectionId = idValue(parser.value(section));
        if (!options.topicId || !sectionId) {
            *error = QStringLiteral("--topic takes a topic id and needs --section with the board id");
            return std::nullopt;
        }
        options.sectionId = *sectionId;
    }
    if (parser.isSet(notification)) {
        QJsonParseError problem{};
        const QJsonDocument document = QJsonDocument::fromJson(parser.value(notification).toUtf8(), &problem);
        if (!document.isObject()) {
            *error = QStringLiteral("--notification takes a JSON object, such as {\"key1\":\"{\\\"data\\\":{...}}\"}");
            return std::nullopt;
        }
        options.notification = document.object();
    }
    options.tourFolder = parser.value(tour);
    if (parser.isSet(tour) && options.tourFolder.isEmpty()) {
        *error = QStringLiteral("--tour takes a folder");
        return std::nullopt;
    }
    options.screenshotPath = parser.value(screenshot);
    options.replyDraft = parser.value(draft);
    return options;
}
