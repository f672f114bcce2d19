#include "Window.h"

#include "KeyboardObserver.h"
#include "KitAccessibility.h"
#include "MainScreen.h"
#include "ViewController.h"

#include <QPixmap>
#include <QPointer>

namespace {
QPointer<Window> g_keyWindow;
const QColor kKeyboardColor(209, 213, 219);
constexpr const char *kOverlayProperty = "quorvelOverlay";
} // namespace

Window::Window(const QSize &screenSize) : m_keyboard(new View(this))
{
    KitAccessibility::install();
    MainScreen::setSize(QSizeF(screenSize));
    setFixedSize(screenSize);
    setFrame(QRectF(QPointF(0, 0), QSizeF(screenSize)));
    setBackgroundColor(Qt::white);
    setWindowTitle(QStringLiteral("Quorvel"));
    m_keyboard->setBackgroundColor(kKeyboardColor);
    m_keyboard->hide();
    if (!g_keyWindow)
        g_keyWindow = this;
    KeyboardObserver &keyboard = KeyboardObserver::shared();
    connect(&keyboard, &KeyboardObserver::keyboardWillShow, this, [this](const KeyboardNotification &note) {
        if (of(KeyboardObserver::shared().firstResponder()) == this)
            showKeyboard(true, note.frameEnd);
    });
    connect(&keyboard, &KeyboardObserver::keyboardWillHide, this,
            [this](const KeyboardNotification &note) { showKeyboard(false, note.frameEnd); });
}

Window::~Window()
{
    // Text views going down with the window lower the keyboard; this window no longer shows it.
    disconnect(&KeyboardObserver::shared(), nullptr, this, nullptr);
    // The root's view is a child of this window: let the controller go first so it deletes it.
    m_root.reset();
}

void Window::setRootViewController(std::shared_ptr<ViewController> controller)
{
    if (m_root) {
        m_root->beginAppearanceTransition(false, false);
        m_root->view()->hide();
        m_root->view()->setParent(nullptr);
        m_root->endAppearanceTransition(false, false);
    }
    m_root = std::move(controller);
    if (!m_root)
        return;
    View *view = m_root->view();
    view->setParent(this);
    view->setFrame(bounds());
    view->lower();
    view->show();
    m_root->beginAppearanceTransition(true, false);
    m_root->endAppearanceTransition(true, false);
}

ViewController *Window::topmostViewController() const
{
    ViewController *top = m_root.get();
    while (top && top->presentedViewController())
        top = top->presentedViewController();
    return top;
}

void Window::makeKeyAndVisible()
{
    g_keyWindow = this;
    show();
}

Window *Window::keyWindow()
{
    return g_keyWindow;
}

Window *Window::of(const QWidget *view)
{
    return view ? qobject_cast<Window *>(view->window()) : nullptr;
}

void Window::addPresentedView(View *view)
{
    addSubview(view);
    raiseOverlays();
}

void Window::addOverlayView(QWidget *view)
{
    view->setProperty(kOverlayProperty, true);
    addSubview(view);
    raiseOverlays();
}

void Window::raiseOverlays()
{
    for (QObject *child : children()) {
        auto *widget = qobject_cast<QWidget *>(child);
        if (widget && widget->property(kOverlayProperty).toBool())
            widget->raise();
    }
    m_keyboard->raise();
}

void Window::showKeyboard(bool shown, const QRectF &frame)
{
    m_keyboard->setFrame(frame);
    m_keyboard->setVisible(shown);
    m_keyboard->raise();
}

bool Window::grabToPng(const QString &path)
{
    return grab().save(path, "PNG");
}
