#include "Fonts.h"

QFont Fonts::systemFontOfSize(int pixelSize)
{
    QFont font(QString::fromLatin1(kSystemFamily));
    font.setPixelSize(pixelSize > 0 ? pixelSize : 1);
    return font;
}
