#pragma once
// What one HTTP server lets a client do before it refuses or closes: sizes checked while the
// request is read, the time a request may take to arrive and a connection may sit idle, and
// how many connections are served at once. Plain data; any thread.

#include <QtGlobal>

#include <algorithm>
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
    // Bodies are read whole before they are handled; this many bytes of them at once, across
    // the server's connections, and a further one is turned away (503) rather than held.
    // At least a few of the largest bodies must fit.
    static constexpr qint64 kDefaultMaxBodyBytesInFlight = 16 * 1024 * 1024;
    static constexpr qint64 kLargestBodiesInFlight = 4;

    int maxBodyBytes = kDefaultMaxBodyBytes;      // larger bodies: 413
    int maxHeaderBytes = kDefaultMaxHeaderBytes;  // request line and headers: 431 (414 for the line alone)
    // From a request's first byte to its last; a slower request is cut off.
    std::chrono::seconds readTimeout{kDefaultReadTimeoutSeconds};
    // Between requests on a kept-alive connection, and before the first one.
    std::chrono::seconds idleTimeout{kDefaultIdleTimeoutSeconds};
    int maxConnections = kDefaultMaxConnections;  // beyond: closed at once
    qint64 maxBodyBytesInFlight = kDefaultMaxBodyBytesInFlight;

    // These limits with another body limit, and room for at least a few such bodies at once.
    HttpLimits withMaxBody(int bytes) const
    {
        HttpLimits changed = *this;
        changed.maxBodyBytes = bytes;
        changed.maxBodyBytesInFlight = std::max(kDefaultMaxBodyBytesInFlight, kLargestBodiesInFlight * bytes);
        return changed;
    }
};
