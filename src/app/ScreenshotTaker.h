#pragma once
// Saves the window to a PNG once the screen has settled: no forum request has been in
// flight for a short while (or a time limit passed), then quits with 0. Main thread.

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>

class Window;

class ScreenshotTaker : public QObject
{
    Q_OBJECT

public:
    static constexpr int kPollMs = 50;
    static constexpr int kQuietMs = 400;
    static constexpr int kLimitMs = 6000;

    // `beforeShot` runs once the screen has settled; the shot is taken when it settles again.
    ScreenshotTaker(Window *window, QString path, std::function<void()> beforeShot = {},
                    QObject *parent = nullptr);

    void start();

private:
    void poll();
    void settled();

    Window *m_window;
    QString m_path;
    std::function<void()> m_beforeShot;
    QTimer m_timer;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_quietFor;
    bool m_quiet = false;
};
