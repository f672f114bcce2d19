#include "MainScreen.h"

namespace {
QSizeF g_size = MainScreen::kDefaultSize;
}

QSizeF MainScreen::size()
{
    return g_size;
}

void MainScreen::setSize(const QSizeF &size)
{
    g_size = size;
}
