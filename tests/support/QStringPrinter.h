#pragma once
// Lets GoogleTest show QString values (and lists of them) as text in failure messages.

#include <QString>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}
