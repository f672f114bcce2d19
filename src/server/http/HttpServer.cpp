#include "HttpServer.h"

#include "HttpConnection.h"
#include "HttpServerShared.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <sys/resource.h>

#include <chrono>
#include <thread>
#include <vector>

namespace net = boost::asio;
using tcp = net::ip::tcp;
using boost::system::error_code;

namespace {
// After a failed accept (out of file descriptors, say) wait before the next, rather than spin.
constexpr std::chrono::milliseconds kAcceptPause{100};
// Files the process needs besides its client sockets (database, logs, pictures, listeners).
constexpr rlim_t kSpareFiles = 256;
constexpr int kOneThread = 1;  // the concurrency hint of a loop run by one thread
} // namespace

struct HttpServer::Impl
{
    explicit Impl(std::shared_ptr<HttpServerShared> sharedState)
        : contexts(firstContext())
        , shared(std::move(sharedState))
    {
    }

    // The loop the acceptor lives on; start() adds one per further thread.
    static std::vector<std::unique_ptr<net::io_context>> firstContext()
    {
        std::vector<std::unique_ptr<net::io_context>> first;
        first.push_back(std::make_unique<net::io_context>(kOneThread));
        return first;
    }

    void accept();
    void onAccept(error_code error, tcp::socket socket);

    // One event loop per thread, each serving the connections it was given whole: no lock is
    // shared between threads on the way from a socket to its answer. Declared first so they go
    // last: destroying one destroys the connections it still holds.
    std::vector<std::unique_ptr<net::io_context>> contexts;
    std::shared_ptr<HttpServerShared> shared;
    tcp::acceptor acceptor{*contexts.front()};
    net::steady_timer acceptPause{*contexts.front()};
    std::size_t nextContext = 0;
    std::vector<net::executor_work_guard<net::io_context::executor_type>> work;
    std::vector<std::thread> threads;
};

void HttpServer::Impl::accept()
{
    // Connections are dealt out to the loops in turn.
    net::io_context &context = *contexts[nextContext++ % contexts.size()];
    acceptor.async_accept(context, [this](error_code error, tcp::socket socket) { onAccept(error, std::move(socket)); });
}

void HttpServer::Impl::onAccept(error_code error, tcp::socket socket)
{
    if (error == net::error::operation_aborted || !acceptor.is_open())
        return;
    if (error) {
        shared->refusals.once("accept", QStringLiteral("cannot accept a connection: %1")
                                            .arg(QString::fromStdString(error.message())));
        acceptPause.expires_after(kAcceptPause);
        acceptPause.async_wait([this](error_code waitError) {
            if (!waitError)
                accept();
        });
        return;
    }
    if (shared->connections.load() >= shared->limits.maxConnections) {
        shared->refusals.refused(HttpConnection::peerAddressOf(socket), "connections",
                                 QStringLiteral("over %1 connections (closed)").arg(shared->limits.maxConnections));
        error_code ignored;
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
    while (int(m_impl->contexts.size()) < threads)
        m_impl->contexts.push_back(std::make_unique<net::io_context>(kOneThread));
    m_impl->accept();
    for (const std::unique_ptr<net::io_context> &context : m_impl->contexts) {
        m_impl->work.emplace_back(context->get_executor());
        m_impl->threads.emplace_back([impl = m_impl.get(), context = context.get()] {
            for (;;) {
                try {
                    context->run();
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
    m_impl->work.clear();
    for (const std::unique_ptr<net::io_context> &context : m_impl->contexts)
        context->stop();
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
