#pragma once
// Measures wrapped text at the app's body font, with a per-width cache: list views ask for
// the same texts' heights many times while scrolling. Main thread.

#include <QFont>
#include <QString>

#include <optional>

namespace TextMeasure {

// Height of `text` at system font 17 across the main screen's width less `margin`, with a
// limit of 10000 points; absent text measures 0 without measuring.
qreal bodyTextHeight(const std::optional<QString> &text, qreal margin);

// Height of `text` wrapped in `width` at `font`: by word, an over-long word at a character.
qreal wrappedHeight(const QString &text, const QFont &font, qreal width, qreal limit);

} // namespace TextMeasure
