#pragma once
// What the command line asks of a launched app besides launching: open a board from the home
// screen's list or a topic over it, receive a notification, type a reply draft, save a
// picture. Each runs once the app has settled after the one before. Main thread.

#include "AppOptions.h"
#include "SettleWatcher.h"

#include <functional>
#include <vector>

class AppDelegate;

class LaunchScript
{
public:
    static constexpr int kExitNotFound = 3;
    static constexpr int kExitUnanswered = 4;

    LaunchScript(AppDelegate &app, const AppOptions &options);

    // Runs the steps; the app quits after a screenshot, or when a board is not found.
    void start();

private:
    void next();
    void openBoard(qint64 sectionId);
    void openTopic(qint64 topicId, qint64 sectionId);
    void typeReplyDraft(const QString &draft);
    void saveScreenshot(const QString &path);

    AppDelegate &m_app;
    std::vector<std::function<void()>> m_steps;
    std::size_t m_next = 0;
    bool m_savesPicture = false;
    SettleWatcher m_settle;
};
