#pragma once
// Starts the app: holds the launch picture for 2 seconds (blocking, on purpose), shows the
// window with the home screen in a navigation stack, then starts push (registering for remote
// notifications) and analytics; and hands every received notification to the push component and
// turns it into its topic, presented over whatever is on screen. The life-cycle callbacks do
// nothing. Main thread.

#include "ApplicationDelegate.h"

#include <QJsonValue>
#include <QSize>

#include <memory>

class ImageView;
class Window;

class AppDelegate : public ApplicationDelegate
{
public:
    // The one key both the push and the analytics component are started with.
    static inline const char *const kAppKey = "3c1f9a27b84e0d65a2f7c913";
    static constexpr uint32_t kReportPolicy = 1;
    static constexpr int kLaunchHoldMs = 2000;
    // Written under `push` when a notification opens a topic.
    static inline const char *const kPushKey = "push";
    static inline const char *const kPushValue = "push";

    // `launchHoldMs` is how long the launch picture stays; tests shorten it.
    explicit AppDelegate(const QSize &screenSize, int launchHoldMs = kLaunchHoldMs);
    ~AppDelegate() override;

    Window *window() const { return m_window.get(); }

    // The last notification's decoded payload (undefined when `key1` was missing or bad).
    QJsonValue jsonDic;
    qint64 number = 0;
    qint64 result = 0;

    bool didFinishLaunchingWithOptions(const LaunchOptions &options) override;
    void didReceiveRemoteNotification(const QJsonObject &userInfo) override;
    void goToMessageViewController(const QJsonValue &payload);
    // Kept for the interface; reports nothing.
    void lefiseixEvent(const QString &, const QJsonObject &, int) {}

private:
    // Shows the launch picture over the window and sleeps; the picture stays until dropped.
    std::unique_ptr<ImageView> holdLaunchPicture();

    QSize m_screenSize;
    int m_launchHoldMs;
    std::unique_ptr<Window> m_window;
};
