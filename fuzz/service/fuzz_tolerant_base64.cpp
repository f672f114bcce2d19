// The tolerant Base64 helpers: any text decodes without crashing, and the output never
// exceeds the sized buffer's promise.
#include "Base64.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QByteArray> decoded = Base64::dataWithBase64EncodedString(text);
    if (decoded && decoded->size() > text.size() / 4 * 3 + 3)
        std::abort();
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QString> wrapped = Base64::base64EncodedStringWithWrapWidth(bytes, int(size % 80));
    if (!bytes.isEmpty() && Base64::dataWithBase64EncodedString(*wrapped) != bytes)
        std::abort();
    return 0;
}
