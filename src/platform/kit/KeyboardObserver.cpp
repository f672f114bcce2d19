#include "KeyboardObserver.h"

#include "MainScreen.h"
#include "Window.h"

KeyboardObserver &KeyboardObserver::shared()
{
    static KeyboardObserver *observer = new KeyboardObserver();
    return *observer;
}

QRectF KeyboardObserver::keyboardFrame(bool visible, const QSizeF &windowSize)
{
    const qreal top = visible ? windowSize.height() - kKeyboardHeight : windowSize.height();
    return QRectF(0, top, windowSize.width(), kKeyboardHeight);
}

QSizeF KeyboardObserver::windowSizeOf(const QWidget *input) const
{
    if (const Window *window = Window::of(input))
        return QSizeF(window->size());
    return MainScreen::size();
}

void KeyboardObserver::inputDidBecomeFirstResponder(QWidget *input)
{
    const bool wasVisible = m_keyboardVisible;
    m_firstResponder = input;
    m_keyboardVisible = true;
    const QSizeF size = windowSizeOf(input);
    emit keyboardWillShow(
        KeyboardNotification{keyboardFrame(wasVisible, size), keyboardFrame(true, size), kAnimationDuration});
}

void KeyboardObserver::inputDidResignFirstResponder(QWidget *input, bool handingOver)
{
    if (m_firstResponder != input)
        return;
    const QSizeF size = windowSizeOf(input);
    m_firstResponder = nullptr;
    m_keyboardVisible = handingOver;
    if (!handingOver)
        emit keyboardWillHide(KeyboardNotification{keyboardFrame(true, size), keyboardFrame(false, size),
                                                   kAnimationDuration});
}
