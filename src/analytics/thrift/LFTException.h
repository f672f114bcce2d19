#pragma once
// Errors of the binary record layer. Thrown by decoders and encoders, caught by their callers;
// never thrown across the LFAnalytics interface. Any thread.

#include <QString>

#include <exception>

class LFTException : public std::exception
{
public:
    LFTException(QString name, QString reason)
        : m_name(std::move(name)), m_reason(std::move(reason)), m_what(m_reason.toUtf8()) {}

    const QString &name() const { return m_name; }
    const QString &reason() const { return m_reason; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    QString m_name;
    QString m_reason;
    QByteArray m_what;
};

class LFTProtocolException : public LFTException
{
public:
    explicit LFTProtocolException(const QString &reason)
        : LFTException(QStringLiteral("TProtocolException"), reason) {}
};

class LFTTransportException : public LFTException
{
public:
    explicit LFTTransportException(const QString &reason)
        : LFTException(QStringLiteral("TTransportException"), reason) {}
};
