#pragma once
// A stack of screens with a navigation bar on top; one screen is visible. Push and pop change
// the stack at once; the visible screen follows on the next turn of the event loop (its view
// is loaded then, so an opener may push first and set properties after), sliding in when
// animated. Frames follow the phone's geometry: the bar ends at 64; a screen's view fills the
// whole controller under a translucent bar, starts at 64 under an opaque one (unless it
// extends under opaque bars), and fills everything when the bar is hidden; a scroll view that
// is the view's first subview gets the covered height as its top inset. Main thread.

#include "ViewController.h"

#include <QList>
#include <QPointer>

class NavigationBar;
class QVariantAnimation;

class NavigationController : public ViewController
{
    Q_OBJECT
public:
    static constexpr int kTransitionMs = 300;

    explicit NavigationController(std::shared_ptr<ViewController> rootViewController = nullptr);
    ~NavigationController() override;

    void pushViewController(std::shared_ptr<ViewController> controller, bool animated);
    // Returns the popped controller; none when only the root is left.
    std::shared_ptr<ViewController> popViewControllerAnimated(bool animated);
    QList<std::shared_ptr<ViewController>> popToRootViewControllerAnimated(bool animated);

    QList<ViewController *> viewControllers() const;
    ViewController *topViewController() const;
    // The screen whose view is shown now (the top one once its transition has run).
    ViewController *visibleViewController() const { return m_shown.get(); }
    bool isTransitioning() const { return m_transitioning || m_transitionScheduled; }

    NavigationBar *navigationBar();
    void setNavigationBarHidden(bool hidden, bool animated = false);
    bool isNavigationBarHidden() const { return m_barHidden; }

    // Where a child's view goes, and the top inset its first scroll view gets.
    QRectF frameForViewController(const ViewController *controller) const;
    qreal topInsetForViewController(const ViewController *controller) const;

    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;
    void viewDidDisappear(bool animated) override;

protected:
    void loadView() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void scheduleTransition(bool animated);
    void runTransition();
    void installTopWithoutTransition();
    void finishTransition(std::shared_ptr<ViewController> from, bool animated);
    void layoutShownViewController();
    void updateBarItems();
    // A controller taken off the stack stops belonging here unless its view is still shown
    // or sliding out; finishTransition() lets go of that one.
    void releaseTakenOff(const std::shared_ptr<ViewController> &controller);

    QList<std::shared_ptr<ViewController>> m_stack;
    std::shared_ptr<ViewController> m_shown;
    std::shared_ptr<ViewController> m_leaving;
    NavigationBar *m_bar = nullptr;
    QPointer<QVariantAnimation> m_animation;
    bool m_barHidden = false;
    bool m_transitionScheduled = false;
    bool m_transitioning = false;
    bool m_pendingAnimated = false;
};
