#include "HttpServer.h"

#include "HttpConnection.h"
#include "HttpServerShared.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/strand.hpp>

#include <sys/resource.h>

#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace net = boost::asio;
using tcp = net::ip::tcp;
using boost::system::error_code;

namespace {
// After a failed accept (out of file descriptors, say) wait before the next, rather than spin.
constexpr std::chrono::milliseconds kAcceptPause{100};
constexpr qint64 kAcceptFailureLogMs = 60'000;
// Files the process needs besides its client sockets (database, logs, pictures, listeners).
constexpr rlim_t kSpareFiles = 256;
} // namespace

struct HttpServer::Impl
{
    explicit Impl(std::shared_ptr<HttpServerShared> sharedState)
        : shared(std::move(sharedState))
    {
    }

    void accept();
    void onAccept(error_code error, tcp::socket socket);

    // Declared first so it goes last: destroying it destroys the connections it still holds.
    net::io_context context;
    std::shared_ptr<HttpServerShared> shared;
    tcp::acceptor acceptor{net::make_strand(context)};
    net::steady_timer acceptPause{acceptor.get_executor()};
    std::optional<qint64> lastAcceptFailureLog;
    std::optional<net::executor_work_guard<net::io_context::executor_type>> work;
    std::vector<std::thread> threads;
};

void HttpServer::Impl::accept()
{
    acceptor.async_accept(net::make_strand(context), [this](error_code error, tcp::socket socket) {
        onAccept(error, std::move(socket));
    });
}

void HttpServer::Impl::onAccept(error_code error, tcp::socket socket)
{
    if (error == net::error::operation_aborted || !acceptor.is_open())
        return;
    if (error) {
        const qint64 now = std::chrono::duration_cast<std::chrono::milliseconds>(
                               std::chrono::steady_clock::now().time_since_epoch()).count();
        if (!lastAcceptFailureLog || now - *lastAcceptFailureLog >= kAcceptFailureLogMs) {
            lastAcceptFailureLog = now;
            shared->log(QStringLiteral("cannot accept a connection: %1").arg(QString::fromStdString(error.message())));
        }
        acceptPause.expires_after(kAcceptPause);
        acceptPause.async_wait([this](error_code waitError) {
            if (!waitError)
                accept();
        });
        return;
    }
    if (shared->connections.load() >= shared->limits.maxConnections) {
        error_code ignored;
        const tcp::endpoint peer = socket.remote_endpoint(ignored);
        shared->refusals.refused(QByteArray::fromStdString(peer.address().to_string()), "connections",
                                 QStringLiteral("over %1 connections (closed)").arg(shared->limits.maxConnections));
        socket.close(ignored);
    } else {
        shared->connections.fetch_add(1);
        std::make_shared<HttpConnection>(std::move(socket), shared)->start();
    }
    accept();
}

HttpServer::HttpServer(HttpLimits limits, Handler handler, Log log)
    : m_impl(std::make_unique<Impl>(std::make_shared<HttpServerShared>(limits, std::move(handler), std::move(log))))
{
}

HttpServer::~HttpServer()
{
    stop();
}

quint16 HttpServer::listen(const QString &address, quint16 port, QString *error)
{
    error_code failure;
    const net::ip::address ip = net::ip::make_address(address.toStdString(), failure);
    const tcp::endpoint endpoint(ip, port);
    tcp::acceptor &acceptor = m_impl->acceptor;
    if (!failure)
        acceptor.open(endpoint.protocol(), failure);
    if (!failure)
        acceptor.set_option(net::socket_base::reuse_address(true), failure);
    if (!failure)
        acceptor.bind(endpoint, failure);
    if (!failure)
        acceptor.listen(net::socket_base::max_listen_connections, failure);
    if (failure) {
        *error = QStringLiteral("cannot listen on %1:%2: %3").arg(address).arg(port).arg(QString::fromStdString(failure.message()));
        error_code ignored;
        acceptor.close(ignored);
        return 0;
    }
    return acceptor.local_endpoint().port();
}

void HttpServer::start(int threads)
{
    if (!m_impl->threads.empty() || !m_impl->acceptor.is_open())
        return;
    m_impl->work.emplace(m_impl->context.get_executor());
    m_impl->accept();
    for (int i = 0; i < std::max(1, threads); ++i) {
        m_impl->threads.emplace_back([impl = m_impl.get()] {
            for (;;) {
                try {
                    impl->context.run();
                    return;
                } catch (const std::exception &failure) {
                    impl->shared->log(QStringLiteral("HTTP thread: %1").arg(QString::fromLocal8Bit(failure.what())));
                }
            }
        });
    }
}

void HttpServer::stop()
{
    m_impl->work.reset();
    m_impl->context.stop();
    for (std::thread &thread : m_impl->threads)
        thread.join();
    m_impl->threads.clear();
    error_code ignored;
    m_impl->acceptor.close(ignored);
}

int HttpServer::connectionCount() const
{
    return m_impl->shared->connections.load();
}

bool HttpServer::raiseOpenFileLimit(int connections)
{
    const rlim_t wanted = rlim_t(connections) + kSpareFiles;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return false;
    if (limit.rlim_cur >= wanted)
        return true;
    limit.rlim_cur = limit.rlim_max == RLIM_INFINITY ? wanted : std::min(wanted, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_cur >= wanted;
}
