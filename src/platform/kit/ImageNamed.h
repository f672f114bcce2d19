#pragma once
// Pictures shipped with the app, by name, as the phone's imageNamed: the SVG file
// ":/images/<name>.svg" in the app's resources (a program links the resource library that holds
// them), drawn once per pixel ratio and kept. Main thread (the cache is not locked).

#include <QImage>
#include <QString>

namespace ImageNamed {

// The picture drawn at the application's device pixel ratio: its devicePixelRatio() says so, and
// deviceIndependentSize() is its size in points. A name the app ships no picture for (empty, or
// reaching outside the pictures folder, too) gives a null image and one line in the kit's log.
QImage image(const QString &name);

// The same at the given pixel ratio, kept between 1 and kMaxPixelRatio (anything else counts as
// the nearest of the two, not a number as 1).
QImage image(const QString &name, qreal pixelRatio);

inline constexpr qreal kMaxPixelRatio = 4;

} // namespace ImageNamed
