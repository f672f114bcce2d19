#pragma once
// Colours from six hexadecimal digits ("f3f3f3"). The rule is narrow on purpose: only an
// optional "0x" prefix and surrounding white space are accepted; anything else is grey.
// Stateless; any thread.

#include <QColor>
#include <QString>

namespace UIColorAdd {

QColor colorWithHexString(const QString &color);
QColor colorWithHexString(const QString &color, qreal alpha);

// The platform's grey (white level 0.5), the fallback for text that is not a colour.
QColor grayColor();

} // namespace UIColorAdd
