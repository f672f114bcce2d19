#pragma once
// Base of every screen: owns its view (made on first access by loadView(), then viewDidLoad()),
// a navigation item, appearance hooks, and modal presentation. Controllers are shared: the
// navigation stack and presentations hold them, and so may a pending request's callback (as
// an ObjC block holds its controller), so create them with std::make_shared. Main thread.

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class NavigationController;
class NavigationItem;
class View;

enum RectEdge : unsigned { RectEdgeNone = 0, RectEdgeTop = 1, RectEdgeLeft = 2, RectEdgeBottom = 4,
                           RectEdgeRight = 8, RectEdgeAll = 15 };

class ViewController : public QObject, public std::enable_shared_from_this<ViewController>
{
    Q_OBJECT
public:
    ViewController();
    ~ViewController() override;

    View *view();
    bool isViewLoaded() const { return !m_view.isNull(); }

    void setTitle(const QString &title);
    QString title() const;
    NavigationItem *navigationItem() const { return m_navigationItem; }

    // The navigation controller whose stack holds this controller (or an ancestor of it).
    NavigationController *navigationController() const;
    ViewController *parentViewController() const { return m_parent; }

    // Transitions run once control returns to the event loop, after the current event, so an
    // opener may still set properties on the presented controller. A controller that already
    // presents one hands the new presentation to it: modals stack.
    void presentViewController(std::shared_ptr<ViewController> controller, bool animated,
                               std::function<void()> completion = {});
    // Dismisses what this controller presents, or else the presentation this controller (or
    // its navigation controller) belongs to.
    void dismissViewControllerAnimated(bool animated, std::function<void()> completion = {});
    ViewController *presentedViewController() const { return m_presented.get(); }
    ViewController *presentingViewController() const { return m_presenting; }

    // Screen geometry: whether the view extends under a translucent bar (default: all edges),
    // also under an opaque one, and whether its first scroll view gets the bar's inset.
    void setEdgesForExtendedLayout(unsigned edges) { m_edges = edges; }
    unsigned edgesForExtendedLayout() const { return m_edges; }
    void setExtendedLayoutIncludesOpaqueBars(bool includes) { m_includesOpaqueBars = includes; }
    bool extendedLayoutIncludesOpaqueBars() const { return m_includesOpaqueBars; }
    void setAutomaticallyAdjustsScrollViewInsets(bool adjusts) { m_adjustsInsets = adjusts; }
    bool automaticallyAdjustsScrollViewInsets() const { return m_adjustsInsets; }

    // Appearance hooks; overriders call the base.
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(bool animated);
    virtual void viewDidAppear(bool animated);
    virtual void viewWillDisappear(bool animated);
    virtual void viewDidDisappear(bool animated);

    // Drive the hooks above; containers and transitions call these.
    void beginAppearanceTransition(bool appearing, bool animated);
    void endAppearanceTransition(bool appearing, bool animated);
    bool isOnScreen() const { return m_onScreen; }

protected:
    // Makes the view; the default is a white view of the main screen's size.
    virtual void loadView();
    void setView(View *view);

private:
    friend class NavigationController;
    friend class ModalTransition;

    QPointer<View> m_view;
    NavigationItem *m_navigationItem;
    // Both may outlive the controller they point at.
    QPointer<ViewController> m_parent;
    QPointer<ViewController> m_presenting;
    std::shared_ptr<ViewController> m_presented;
    bool m_dismissing = false;
    // While what this controller presents is still sliding in, a dismissal waits here.
    bool m_presentationRunning = false;
    std::function<void()> m_afterPresentation;
    bool m_onScreen = false;
    unsigned m_edges = RectEdgeAll;
    bool m_includesOpaqueBars = false;
    bool m_adjustsInsets = true;
};
