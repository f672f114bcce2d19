#include "ServerSentEventParser.h"

#include "NotificationLog.h"

QList<ServerSentEvent> ServerSentEventParser::feed(const QByteArray &bytes)
{
    QList<ServerSentEvent> done;
    qsizetype start = 0;
    while (start < bytes.size()) {
        const qsizetype end = bytes.indexOf('\n', start);
        const qsizetype stop = end < 0 ? bytes.size() : end;
        if (!m_overlong) {
            m_line.append(bytes.constData() + start, stop - start);
            if (m_line.size() > kMaxLineBytes) {
                m_overlong = true;
                m_line.clear();
            }
        }
        if (end < 0)
            break;
        if (m_overlong) {
            m_overlong = false;
            dropEvent("a line over the size limit");
        } else {
            takeLine(std::exchange(m_line, {}), done);
        }
        start = end + 1;
    }
    return done;
}

void ServerSentEventParser::takeLine(QByteArray line, QList<ServerSentEvent> &done)
{
    if (line.endsWith('\r'))
        line.chop(1);
    if (line.isEmpty()) {
        if (m_hasData && !m_dropEvent)
            done.append(m_event);
        m_event = {};
        m_hasData = false;
        m_dropEvent = false;
        return;
    }
    if (line.startsWith(':'))
        return;
    const qsizetype colon = line.indexOf(':');
    const QByteArray field = colon < 0 ? line : line.left(colon);
    QByteArray value = colon < 0 ? QByteArray() : line.mid(colon + 1);
    if (value.startsWith(' '))
        value.remove(0, 1);
    if (field == "id") {
        m_event.id = value;
    } else if (field == "event") {
        m_event.event = value;
    } else if (field == "data") {
        appendData(value);
    }
}

void ServerSentEventParser::appendData(const QByteArray &value)
{
    const qsizetype separator = m_hasData ? 1 : 0;
    m_hasData = true;
    if (m_dropEvent)
        return;
    if (m_event.data.size() + separator + value.size() > kMaxEventDataBytes) {
        dropEvent("data over the size limit");
        return;
    }
    if (separator)
        m_event.data.append('\n');
    m_event.data.append(value);
}

void ServerSentEventParser::dropEvent(const char *why)
{
    if (m_dropEvent)
        return;
    m_dropEvent = true;
    m_event.data = {};
    NotificationLog::warning(QStringLiteral("notification channel: event with %1 dropped").arg(QLatin1String(why)));
}
