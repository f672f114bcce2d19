#pragma once
// Insets of a scroll view's content from its edges, in points.

#include <QtGlobal>

struct EdgeInsets
{
    qreal top = 0;
    qreal left = 0;
    qreal bottom = 0;
    qreal right = 0;

    friend bool operator==(const EdgeInsets &, const EdgeInsets &) = default;
};
