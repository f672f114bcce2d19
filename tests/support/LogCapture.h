#pragma once
// Collects the messages logged under one logging category while it exists, for tests that
// check exact log lines. Main thread.

#include <QByteArray>
#include <QStringList>
#include <QtGlobal>

class LogCapture
{
public:
    explicit LogCapture(QByteArray category);
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    const QStringList &lines() const { return m_lines; }
    bool contains(const QString &fragment) const;
    void clear() { m_lines.clear(); }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message);

    QByteArray m_category;
    QStringList m_lines;
    QtMessageHandler m_previous = nullptr;
};
