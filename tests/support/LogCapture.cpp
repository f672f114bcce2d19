#include "LogCapture.h"

namespace {
LogCapture *g_active = nullptr;
}

LogCapture::LogCapture(QByteArray category) : m_category(std::move(category))
{
    g_active = this;
    m_previous = qInstallMessageHandler(&LogCapture::handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    g_active = nullptr;
}

bool LogCapture::contains(const QString &fragment) const
{
    for (const QString &line : m_lines) {
        if (line.contains(fragment))
            return true;
    }
    return false;
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (g_active && context.category && g_active->m_category == context.category) {
        g_active->m_lines << message;
        return;
    }
    if (g_active && g_active->m_previous)
        g_active->m_previous(type, context, message);
}
