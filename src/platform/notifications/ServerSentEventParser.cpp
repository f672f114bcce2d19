#include "ServerSentEventParser.h"

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
            m_dropEvent = true;
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
        if (m_hasData)
            m_event.data.append('\n');
        m_event.data.append(value);
        m_hasData = true;
    }
}
