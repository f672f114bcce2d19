#pragma once
// Notes the path of every request the client puts out, in the order it puts them out: the
// network access manager asks its proxy factory once per request, as it starts it. Installed
// on the client's shared manager for the object's lifetime. Main thread.

#include "HttpSessionManager.h"

#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QStringList>

namespace testsupport {

class RequestOrder
{
public:
    RequestOrder() { HttpSessionManager::network().setProxyFactory(new Recorder(m_paths)); }
    ~RequestOrder() { HttpSessionManager::network().setProxy(QNetworkProxy(QNetworkProxy::DefaultProxy)); }
    RequestOrder(const RequestOrder &) = delete;
    RequestOrder &operator=(const RequestOrder &) = delete;

    const QStringList &paths() const { return m_paths; }

private:
    class Recorder : public QNetworkProxyFactory
    {
    public:
        explicit Recorder(QStringList &paths) : m_paths(paths) {}
        QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
        {
            m_paths.append(query.url().path());
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        }

    private:
        QStringList &m_paths;
    };

    QStringList m_paths;
};

} // namespace testsupport
