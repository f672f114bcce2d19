// The answer path: any Data text deciphers to a text, an empty text or absent, never a
// crash; and the JSON helper then yields a value or nothing.
#include "DesCryptUtil.h"
#include "JsonChangDic.h"

#include "../support/QuietForumLog.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    silenceForumLog();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QString> plain = DesCryptUtil::DesDecode(text, DesCryptUtil::kKey, DesCryptUtil::kIV);
    JsonChangDic::dictionaryWithJsonString(plain);
    return 0;
}
