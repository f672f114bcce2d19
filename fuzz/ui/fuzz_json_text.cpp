// The JSON text helper on arbitrary bytes: a value or nothing, never a crash; whatever
// parses as an object writes back to text that parses to the same object.
#include "JsonChangDic.h"

#include "../support/QuietForumLog.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    silenceForumLog();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QJsonValue value = JsonChangDic::dictionaryWithJsonString(text);
    if (value.isObject()) {
        const QString written = JsonChangDic::jsonWithDictionary(value.toObject());
        if (JsonChangDic::dictionaryWithJsonString(written) != value)
            std::abort();
    }
    return 0;
}
