#pragma once
// The keyboard the user has selected, as the platform's current text input mode: its primary
// language is a tag such as "en-US", "zh-Hans" or "emoji". Main thread.

#include <QString>

class TextInputMode
{
public:
    // The mode in use now.
    static TextInputMode currentInputMode();

    // Selects the keyboard whose primary language is `language` (the desktop has no keyboard
    // picker, so the choice is made here; tests select "emoji" this way).
    static void selectPrimaryLanguage(const QString &language);
    // Back to the system's own keyboard language.
    static void selectSystemKeyboard();

    QString primaryLanguage() const { return m_primaryLanguage; }
    // Whether this is the emoji keyboard, on which the app's text boxes refuse every change.
    bool isEmoji() const { return m_primaryLanguage == u"emoji"; }

private:
    explicit TextInputMode(QString primaryLanguage) : m_primaryLanguage(std::move(primaryLanguage)) {}

    QString m_primaryLanguage;
};
