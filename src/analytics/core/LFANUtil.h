#pragma once
// Text helpers of the analytics component. Stateless; any thread.

#include <QString>
#include <QVariant>

#include <cstdint>
#include <optional>

class LFANUtil
{
public:
    LFANUtil() = delete;

    // The longest prefix of `text` whose UTF-8 form fits in `bytesLength` bytes, cut between
    // characters, never inside one.
    static QString getString(const QString &text, int bytesLength);
    static int utf8Length(const QString &text);
    // Missing, empty, or only white space and line breaks.
    static bool isBlank(const QString &text);

    // A setting that is there counts even when it is not a number: it reads as its leading
    // number, or 0 without one. Nothing only when the setting is absent (a null text).
    static std::optional<double> presentNumber(const QString &text);
    static std::optional<double> presentNumber(const QVariant &value);
    // A number read as an unsigned 32-bit value, negative ones wrapping around.
    static uint32_t toUnsigned32(double number);
};
