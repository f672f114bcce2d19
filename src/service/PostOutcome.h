#pragma once
// How a posting answer reads to the user: the server's success text for the post, or any
// other description (absent included), which is shown as a rate limit. Stateless; any thread.

#include <QJsonValue>
#include <QString>

namespace PostOutcome {

enum class Kind { Topic, Reply };

// Whether the answer's `description` is exactly the success text for that kind of post.
bool succeeded(Kind kind, const QJsonValue &answer);

// "发表成功" / "回复成功" on success, else "操作太频繁请稍后再试".
QString notice(Kind kind, const QJsonValue &answer);

} // namespace PostOutcome
