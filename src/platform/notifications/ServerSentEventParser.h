#pragma once
// Reads a server-sent event stream as it arrives, in pieces of any size: "id:", "event:" and
// "data:" fields, events ended by an empty line, comments ignored. A line longer than its
// limit, or an event whose data grows past its limit, is dropped (logged once per event), so a
// hostile stream cannot grow memory without bound. Plain value; any thread.

#include <QByteArray>
#include <QList>

struct ServerSentEvent
{
    QByteArray id;
    QByteArray event;  // empty for the default "message"
    QByteArray data;   // data lines joined by "\n"
};

class ServerSentEventParser
{
public:
    static constexpr int kMaxLineBytes = 256 * 1024;
    static constexpr int kMaxEventDataBytes = 1024 * 1024;

    // The events completed by `bytes`.
    QList<ServerSentEvent> feed(const QByteArray &bytes);

private:
    void takeLine(QByteArray line, QList<ServerSentEvent> &done);
    void appendData(const QByteArray &value);
    // The current event is dropped: what it holds is let go and the loss logged once.
    void dropEvent(const char *why);

    QByteArray m_line;
    ServerSentEvent m_event;
    bool m_hasData = false;
    bool m_overlong = false;  // the current line ran past the limit: its event is dropped
    bool m_dropEvent = false;
};
