#pragma once
// Text helpers of the analytics component. Stateless; any thread.

#include <QString>

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
};
