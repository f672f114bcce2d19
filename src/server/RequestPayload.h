#pragma once
// Reads a request's payload: the `data` query parameter, Base64 of the DES-enciphered JSON
// text, into a JSON object. "+" in the raw query stays "+". Stateless; any thread.

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace RequestPayload {

// The `data` parameter of a raw (still percent-escaped) query string with its escapes
// undone, or absent when the query has none. The first `data` parameter wins.
std::optional<QByteArray> dataParameter(const QByteArray &rawQuery);

struct Decoded
{
    std::optional<QJsonObject> object;
    QString error;  // why there is no object: short, for the error answer and the log
};

// Base64 text → bytes → deciphered UTF-8 JSON text → object.
Decoded decode(const QByteArray &base64);

// The reverse, for callers that build requests: compact JSON text enciphered and in Base64.
QByteArray encode(const QJsonObject &payload);

} // namespace RequestPayload
