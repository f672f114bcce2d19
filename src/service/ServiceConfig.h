#pragma once
// Where the forum server is: the API root every request URL starts with. Compiled-in
// default is the project's local server; QUORVEL_API_ROOT in the environment or a
// program's --api-root option overrides it. Main thread (set once at start-up).

#include <QString>

class ServiceConfig
{
public:
    ServiceConfig() = delete;

    static constexpr const char *kDefaultApiRoot = "http://127.0.0.1:8080/api/";
    static constexpr const char *kApiRootVariable = "QUORVEL_API_ROOT";

    // The API root, always ending in "/".
    static QString apiRoot();
    // Overrides the root for this process; an empty text restores the default.
    static void setApiRoot(const QString &root);
};
