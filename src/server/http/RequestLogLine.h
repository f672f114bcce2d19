#pragma once
// The one-line record of an answered request that the server's components log:
// "GET /api/GetTopics 200 0.4 ms (cached)". The method and path are cut short, and nothing in it is
// taken as formatting. Any thread.

#include "HttpRequest.h"

#include <QString>

#include <optional>

namespace RequestLogLine {

constexpr qsizetype kMaxPathCharacters = 200;
constexpr qsizetype kMaxMethodCharacters = 16;

// `milliseconds` is how long the answer took, when the component measures it; `note` says
// why a request failed, or how it was answered.
QString of(const HttpRequest &request, int status, const QString &note = {},
           std::optional<double> milliseconds = std::nullopt);

} // namespace RequestLogLine
