#pragma once
// Where the push message service lives: set by the app (its --push-url option), else the
// QUORVEL_PUSH_URL environment variable, else the local server's gateway. Any thread.

#include <QString>

class LFPushEndpoint
{
public:
    LFPushEndpoint() = delete;

    static constexpr const char *kDefaultUrl = "http://127.0.0.1:8080/push";
    static constexpr const char *kEnvironmentVariable = "QUORVEL_PUSH_URL";

    // Takes effect for components created afterwards; an empty text restores the default rule.
    static void setUrl(const QString &url);
    static QString url();
};
