#pragma once
// The answer envelope: {"Data": Base64(DES(JSON {"RData": payload}))}. Stateless; any thread.

#include <QByteArray>
#include <QJsonValue>

#include <optional>

namespace AnswerEnvelope {

// The HTTP body carrying `rdata`.
QByteArray wrap(const QJsonValue &rdata);

// The `RData` value carried by an HTTP body; absent when the body is no such envelope.
std::optional<QJsonValue> unwrap(const QByteArray &body);

} // namespace AnswerEnvelope
