#pragma once
// What one HTTP server lets a client do before it refuses or closes: sizes checked while the
// request is read, the time a request may take to arrive and a connection may sit idle, and
// how many connections are served at once. Plain data; any thread.

#include <chrono>

struct HttpLimits
{
    static constexpr int kDefaultMaxBodyBytes = 64 * 1024;
    // Holds the request line, whose query carries a post's whole payload (about 9 KB for the
    // longest post at the forum's default limits, under 20 KB however it is escaped), while
    // a thousand stalled clients holding this much stay within tens of megabytes.
    static constexpr int kDefaultMaxHeaderBytes = 32 * 1024;
    static constexpr int kDefaultReadTimeoutSeconds = 10;
    static constexpr int kDefaultIdleTimeoutSeconds = 30;
    static constexpr int kDefaultMaxConnections = 4096;

    int maxBodyBytes = kDefaultMaxBodyBytes;      // larger bodies: 413
    int maxHeaderBytes = kDefaultMaxHeaderBytes;  // request line and headers: 431 (414 for the line alone)
    // From a request's first byte to its last; a slower request is cut off.
    std::chrono::seconds readTimeout{kDefaultReadTimeoutSeconds};
    // Between requests on a kept-alive connection, and before the first one.
    std::chrono::seconds idleTimeout{kDefaultIdleTimeoutSeconds};
    int maxConnections = kDefaultMaxConnections;  // beyond: closed at once
};
