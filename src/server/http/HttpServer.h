#pragma once
// An HTTP/1.1 server on Boost.Beast: accepts on one address, reads each request under its
// HttpLimits while it arrives (so an over-size body or header is refused before it is held
// in memory), keeps connections alive, and hands every request to the handler on one of its
// own threads. The handler answers through the HttpResponder from any thread. Created,
// started and stopped on one thread (the main thread); its pool threads do the rest.

#include "HttpLimits.h"
#include "HttpRequest.h"
#include "HttpResponder.h"

#include <QString>

#include <functional>
#include <memory>

class HttpServer
{
public:
    // Called on a pool thread, once per request.
    using Handler = std::function<void(HttpRequest request, HttpResponder responder)>;
    // The owning component's logging routine, for refusals and accept failures; any thread.
    using Log = std::function<void(const QString &line)>;

    HttpServer(HttpLimits limits, Handler handler, Log log);
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    // Binds and listens; the port (the one picked, for 0), or 0 with `error` set.
    quint16 listen(const QString &address, quint16 port, QString *error);
    // Runs `threads` pool threads until stop() or destruction.
    void start(int threads);
    // Stops accepting and serving; open connections are dropped.
    void stop();

    // Connections open now.
    int connectionCount() const;

    // Raises this process's open-file limit as far as it may go, so that `connections`
    // sockets fit; false (nothing changed beyond what was possible) when they do not.
    static bool raiseOpenFileLimit(int connections);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
