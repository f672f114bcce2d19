#pragma once
// The client's command line. Main thread.

#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

struct AppOptions
{
    QString apiRoot;            // empty: the compiled-in or environment default
    QString pushUrl;            // the push gateway; empty: the push component's default
    QString analyticsUrl;       // the analytics log host; empty: the analytics component's default
    QString analyticsFallbackUrl;
    QSize screenSize;
    std::optional<qint64> boardId;   // open this board from the home screen's list
    std::optional<qint64> topicId;   // open this topic over the home screen, as a board list would
    qint64 sectionId = 0;
    QString screenshotPath;     // empty: run normally
    QString replyDraft;         // typed into the reply bar before the screenshot
    std::optional<QJsonObject> notification; // delivered as a received notification once home has loaded
    QString tourFolder;         // walk the app, saving a picture per step here, then quit

    // Parses `arguments` (argv); on a usage error returns nothing and fills `error`, which
    // for --help holds the help text and `helpRequested` is set.
    static std::optional<AppOptions> parse(const QStringList &arguments, QString *error, bool *helpRequested);
};
