#pragma once
// The 20 x 20 point reply icon beside the reply box, drawn once. Main thread.

#include <QImage>

namespace ReplyIcon {

// A speech bubble with a pen stroke, at twice the point size for sharp drawing.
QImage image();

} // namespace ReplyIcon
