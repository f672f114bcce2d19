#pragma once
// A walk through the whole app as a person takes it, against whatever server the API root
// names: home, a board, a topic and a reply, the composer and a publish, both kinds of banner
// item, and a notification. Every step goes through taps, drags and typing on the screens
// themselves; after each, a picture of the window is saved in the tour's folder. Main thread
// (it waits in nested event loops between steps).

#include "PostModel.h"
#include "SettleWatcher.h"
#include "TouchDriver.h"

#include <QJsonValue>
#include <QString>

#include <functional>

class AppDelegate;
class NavigationController;
class ViewController;

class Tour
{
public:
    static constexpr int kStepLimitMs = 15000;
    static inline const char *const kReplyText = "这一期的攻略写得很清楚，收藏了";
    static inline const char *const kTopicTitle = "新人报到：从哪里开始";
    static inline const char *const kNotificationAlert = "你关注的话题有新回复";
    static inline const char *const kTopicBody = "刚入坑，看了置顶的攻略，想问问大家先练哪个职业。";

    Tour(AppDelegate &app, QString folder);

    // Runs every step; returns the exit code (0, or 1 after printing the step not reached).
    int run();

private:
    struct Step
    {
        const char *name;
        std::function<bool()> reach;
    };

    bool home();
    bool board();
    bool topic();
    bool reply();
    bool compose();
    bool publish();
    bool writeTopic();
    bool bannerTopic();
    bool webPage();
    bool notification();

    // Waits, running the event loop, until `condition` holds and the app has settled.
    bool waitFor(const std::function<bool()> &condition, const QString &what);
    bool settle();
    bool shoot(const char *name);
    bool fail(const QString &why);
    bool noticeShown() const;
    bool goBack();
    bool backToHome();
    bool openBannerItem(bool topicItem);

    NavigationController *navigation() const;
    ViewController *top() const;

    AppDelegate &m_app;
    QString m_folder;
    TouchDriver m_finger;
    SettleWatcher m_settle;
    QString m_problem;
    PostModel m_topic;       // the first ordinary topic of the first board
    QJsonValue m_sectionId;
    QJsonValue m_newestBefore; // the board's newest topic before publishing
};
