#pragma once
// The desktop's simulated phone keyboard: it "shows" when a text input becomes first
// responder and "hides" when the last one resigns, posting will-show and will-hide with the
// keyboard's frames (258 points high, rising from the bottom of the input's window). Moving
// from one input to another posts will-show again and no will-hide. Main thread.

#include <QObject>
#include <QPointer>
#include <QRectF>

class QWidget;

struct KeyboardNotification
{
    QRectF frameBegin;
    QRectF frameEnd;
    double animationDuration = 0;
};

class KeyboardObserver : public QObject
{
    Q_OBJECT
public:
    static constexpr qreal kKeyboardHeight = 258;
    static constexpr double kAnimationDuration = 0.25;

    static KeyboardObserver &shared();

    QWidget *firstResponder() const { return m_firstResponder; }
    bool isKeyboardVisible() const { return m_keyboardVisible; }
    // Where the keyboard is (when visible) or would be, for the given window height.
    static QRectF keyboardFrame(bool visible, const QSizeF &windowSize);

    // Called by text inputs.
    void inputDidBecomeFirstResponder(QWidget *input);
    void inputDidResignFirstResponder(QWidget *input, bool handingOver);

signals:
    void keyboardWillShow(const KeyboardNotification &notification);
    void keyboardWillHide(const KeyboardNotification &notification);

private:
    KeyboardObserver() = default;
    QSizeF windowSizeOf(const QWidget *input) const;

    QPointer<QWidget> m_firstResponder;
    // Stays set while one input hands the keyboard to the next.
    bool m_keyboardVisible = false;
};
