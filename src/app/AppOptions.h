#pragma once
// The client's command line. Main thread.

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

struct AppOptions
{
    QString apiRoot;            // empty: the compiled-in or environment default
    QSize screenSize;
    std::optional<qint64> boardId;   // open this board, as the home screen would
    std::optional<qint64> topicId;
    qint64 sectionId = 0;
    QString screenshotPath;     // empty: run normally
    QString replyDraft;         // typed into the reply bar before the screenshot

    // Parses `arguments` (argv); on a usage error returns nothing and fills `error`, which
    // for --help holds the help text and `helpRequested` is set.
    static std::optional<AppOptions> parse(const QStringList &arguments, QString *error, bool *helpRequested);
};
