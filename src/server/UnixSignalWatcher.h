#pragma once
// Turns SIGTERM and SIGINT into a clean quit of the event loop: the handler only writes a
// byte to a socket pair, which the main thread reads. Lives on the main thread; one per process.

#include <QObject>

class QSocketNotifier;

class UnixSignalWatcher : public QObject
{
    Q_OBJECT

public:
    explicit UnixSignalWatcher(QObject *parent = nullptr);
    ~UnixSignalWatcher() override;

signals:
    void terminationRequested(int signalNumber);

private:
    QSocketNotifier *m_notifier = nullptr;
};
