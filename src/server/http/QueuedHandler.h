#pragma once
// Hands requests from the HTTP pool to the thread of a QObject (the main thread, where a
// server's database connection lives), in arrival order. Any thread.

#include "HttpServer.h"

#include <QObject>

namespace QueuedHandler {

// A handler that runs `handler` on `context`'s thread; nothing runs once `context` is gone
// (the client then gets the connection's answer time-out).
HttpServer::Handler onThreadOf(QObject *context, HttpServer::Handler handler);

} // namespace QueuedHandler
