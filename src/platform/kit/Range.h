#pragma once
// A span of text in UTF-16 code units, as the platform counts text: where it starts and how
// many units it covers.

#include <QtGlobal>

struct Range
{
    qsizetype location = 0;
    qsizetype length = 0;

    friend bool operator==(const Range &, const Range &) = default;
};
