#pragma once
// The app's one window, of the phone screen's size: it shows the root view controller, the
// views of modal presentations above it, notices above those, and the simulated keyboard,
// which rises from the bottom while a text input is first responder. Main thread.

#include "View.h"

#include <memory>

class ViewController;

class Window : public View
{
    Q_OBJECT
public:
    explicit Window(const QSize &screenSize = QSize(375, 667));
    ~Window() override;

    void setRootViewController(std::shared_ptr<ViewController> controller);
    ViewController *rootViewController() const { return m_root.get(); }
    // The controller whose view is on top: the last one presented, else the root.
    ViewController *topmostViewController() const;

    // Shows the window and makes it the one presentations and notices use by default.
    void makeKeyAndVisible();
    static Window *keyWindow();
    // The window that shows `view`, or null when the view is not in one.
    static Window *of(const QWidget *view);

    void addPresentedView(View *view);
    // Marks a view to be kept above presented views (notices).
    void addOverlayView(QWidget *view);

    QWidget *keyboardView() const { return m_keyboard; }
    bool grabToPng(const QString &path);

private:
    void raiseOverlays();
    void showKeyboard(bool shown, const QRectF &frame);

    std::shared_ptr<ViewController> m_root;
    View *m_keyboard;
};
