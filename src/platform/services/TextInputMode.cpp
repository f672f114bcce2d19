#include "TextInputMode.h"

#include <QLocale>

namespace {
QString g_selectedLanguage;

QString systemKeyboardLanguage()
{
    return QLocale::system().name().replace(QLatin1Char('_'), QLatin1Char('-'));
}
} // namespace

TextInputMode TextInputMode::currentInputMode()
{
    return TextInputMode(g_selectedLanguage.isEmpty() ? systemKeyboardLanguage() : g_selectedLanguage);
}

void TextInputMode::selectPrimaryLanguage(const QString &language)
{
    g_selectedLanguage = language;
}

void TextInputMode::selectSystemKeyboard()
{
    g_selectedLanguage.clear();
}
