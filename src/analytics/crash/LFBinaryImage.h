#pragma once
// Facts about the main executable's image for crash records, read from the loaded ELF image:
// name, load address, slide, GNU build id and architecture. Stateless; any thread.

#include <QString>
#include <QVariantMap>

#include <functional>

class LFBinaryImage
{
public:
    LFBinaryImage() = delete;

    // "image_name", "image_base_address", "slide_address", "binary_uuid" and "cpu_arch"; the
    // keys that could not be read are missing, and why is handed to `log`.
    static QVariantMap mainImageInfo(const std::function<void(const QString &)> &log);
    // The architecture name of an ELF machine number ("x86_64", "arm64", ..., else "???").
    static QString cpuArchitecture(int machine, bool is64Bit);
    // The first 16 bytes in the 8-4-4-4-12 pattern, upper-case hex.
    static QString uuidText(const QByteArray &buildId);
};
