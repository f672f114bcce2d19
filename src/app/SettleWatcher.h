#pragma once
// Tells when the app has settled: no forum request and no picture load has been in flight for a
// short while (or a time limit passed since watching began). Screenshots and scripted walks wait for it.
// Main thread.

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

class SettleWatcher : public QObject
{
    Q_OBJECT

public:
    static constexpr int kPollMs = 50;
    static constexpr int kQuietMs = 400;
    static constexpr int kLimitMs = 8000;

    explicit SettleWatcher(QObject *parent = nullptr);

    // Calls `settled` once, when the app has settled; a new call replaces an earlier wait.
    // `timedOut` says whether the limit passed first.
    void start(std::function<void(bool timedOut)> settled);

private:
    void poll();

    std::function<void(bool)> m_settled;
    QTimer m_timer;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_quietFor;
    bool m_quiet = false;
};
