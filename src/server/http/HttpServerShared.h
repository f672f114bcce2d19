#pragma once
// What every connection of one HttpServer shares with it: the limits, the handler, the
// refusal log and the count of open connections. Outlives the server while connections do.
// Any thread.

#include "BodyBudget.h"
#include "HttpServer.h"
#include "RefusalLog.h"

#include <atomic>

struct HttpServerShared
{
    HttpServerShared(HttpLimits limits, HttpServer::Handler handler, HttpServer::Log log)
        : limits(limits)
        , handler(std::move(handler))
        , log(log)
        , refusals(std::move(log))
        , bodies(limits.maxBodyBytesInFlight)
    {
    }

    const HttpLimits limits;
    const HttpServer::Handler handler;
    const HttpServer::Log log;
    RefusalLog refusals;
    std::atomic<int> connections{0};
    BodyBudget bodies;  // room for the bodies being read
};
