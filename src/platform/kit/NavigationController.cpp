#include "NavigationController.h"

#include "MainScreen.h"
#include "NavigationBar.h"
#include "NavigationItem.h"
#include "ScrollView.h"
#include "View.h"

#include <QEvent>
#include <QTimer>
#include <QVariantAnimation>

namespace {
// How far the covered screen drifts left while the new one slides over it.
constexpr qreal kParallax = 0.3;

ScrollView *firstScrollSubview(View *view)
{
    for (QObject *child : view->children()) {
        if (auto *widget = qobject_cast<QWidget *>(child))
            return qobject_cast<ScrollView *>(widget);
    }
    return nullptr;
}

void detachView(ViewController *controller)
{
    if (controller->isViewLoaded()) {
        controller->view()->hide();
        controller->view()->setParent(nullptr);
    }
}
} // namespace

NavigationController::NavigationController(std::shared_ptr<ViewController> rootViewController)
{
    if (rootViewController)
        pushViewController(std::move(rootViewController), false);
}

NavigationController::~NavigationController()
{
    if (m_animation)
        m_animation->stop();
    for (const auto &controller : std::as_const(m_stack))
        controller->m_parent = nullptr;
    for (const auto *controller : {&m_shown, &m_leaving}) {
        if (*controller && (*controller)->m_parent == this)
            (*controller)->m_parent = nullptr;
    }
}

void NavigationController::loadView()
{
    auto *view = new View(QRectF(QPointF(0, 0), MainScreen::size()));
    view->setBackgroundColor(Qt::white);
    view->installEventFilter(this);
    setView(view);
    m_bar = new NavigationBar(view);
    m_bar->setFrame(QRectF(0, 0, view->width(), NavigationBar::kHeight));
    connect(m_bar, &NavigationBar::backRequested, this, [this] { popViewControllerAnimated(true); });
    connect(m_bar, &NavigationBar::translucencyChanged, this, &NavigationController::layoutShownViewController);
}

NavigationBar *NavigationController::navigationBar()
{
    view();
    return m_bar;
}

void NavigationController::pushViewController(std::shared_ptr<ViewController> controller, bool animated)
{
    if (!controller || m_stack.contains(controller) || controller->m_parent)
        return;
    controller->m_parent = this;
    m_stack.append(std::move(controller));
    scheduleTransition(animated);
}

std::shared_ptr<ViewController> NavigationController::popViewControllerAnimated(bool animated)
{
    if (m_stack.size() < 2)
        return nullptr;
    std::shared_ptr<ViewController> popped = m_stack.takeLast();
    releaseTakenOff(popped);
    scheduleTransition(animated);
    return popped;
}

QList<std::shared_ptr<ViewController>> NavigationController::popToRootViewControllerAnimated(bool animated)
{
    QList<std::shared_ptr<ViewController>> popped;
    while (m_stack.size() > 1) {
        popped.prepend(m_stack.takeLast());
        releaseTakenOff(popped.constFirst());
    }
    if (!popped.isEmpty())
        scheduleTransition(animated);
    return popped;
}

void NavigationController::releaseTakenOff(const std::shared_ptr<ViewController> &controller)
{
    if (controller != m_shown && controller != m_leaving && !m_stack.contains(controller))
        controller->m_parent = nullptr;
}

QList<ViewController *> NavigationController::viewControllers() const
{
    QList<ViewController *> controllers;
    for (const auto &controller : m_stack)
        controllers.append(controller.get());
    return controllers;
}

ViewController *NavigationController::topViewController() const
{
    return m_stack.isEmpty() ? nullptr : m_stack.constLast().get();
}

void NavigationController::setNavigationBarHidden(bool hidden, bool)
{
    if (m_barHidden == hidden)
        return;
    m_barHidden = hidden;
    navigationBar()->setVisible(!hidden);
    layoutShownViewController();
}

QRectF NavigationController::frameForViewController(const ViewController *controller) const
{
    const QRectF bounds = const_cast<NavigationController *>(this)->view()->bounds();
    if (m_barHidden || !m_bar)
        return bounds;
    const bool extendsUnderBar = (controller->edgesForExtendedLayout() & RectEdgeTop)
        && (m_bar->isTranslucent() || controller->extendedLayoutIncludesOpaqueBars());
    return extendsUnderBar ? bounds : bounds.adjusted(0, NavigationBar::kHeight, 0, 0);
}

qreal NavigationController::topInsetForViewController(const ViewController *controller) const
{
    if (!controller->automaticallyAdjustsScrollViewInsets())
        return 0;
    // A hidden bar still leaves the status bar above the view.
    const qreal covered = m_barHidden ? NavigationBar::kStatusBarHeight : NavigationBar::kHeight;
    return qMax<qreal>(0, covered - frameForViewController(controller).top());
}

void NavigationController::scheduleTransition(bool animated)
{
    m_pendingAnimated = animated;
    if (m_transitionScheduled)
        return;
    m_transitionScheduled = true;
    QTimer::singleShot(0, this, &NavigationController::runTransition);
}

void NavigationController::runTransition()
{
    m_transitionScheduled = false;
    if (m_transitioning)
        return; // finishTransition() looks again
    std::shared_ptr<ViewController> target = m_stack.isEmpty() ? nullptr : m_stack.constLast();
    if (target == m_shown)
        return;
    std::shared_ptr<ViewController> from = m_shown;
    const bool popping = from && !m_stack.contains(from);
    View *container = view();
    const bool animated = m_pendingAnimated && from && isOnScreen() && container->isVisible();

    View *targetView = target->view();
    targetView->setParent(container);
    m_shown = target;
    // The hooks see the screen in its place, with its table's inset under the bar.
    layoutShownViewController();
    updateBarItems();
    if (isOnScreen()) {
        if (from)
            from->beginAppearanceTransition(false, animated);
        target->beginAppearanceTransition(true, animated);
    }
    targetView->show();
    m_bar->raise();

    if (!animated) {
        finishTransition(from, false);
        return;
    }
    m_transitioning = true;
    m_leaving = from;
    View *fromView = from->view();
    if (popping)
        fromView->raise();
    else
        targetView->raise();
    m_bar->raise();
    const qreal width = container->width();
    const QPointF targetOrigin = targetView->pos();
    const QPointF fromOrigin = fromView->pos();
    m_animation = new QVariantAnimation(this);
    m_animation->setDuration(kTransitionMs);
    m_animation->setStartValue(0.0);
    m_animation->setEndValue(1.0);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QVariantAnimation::valueChanged, this,
            [=, targetView = QPointer<View>(targetView), fromView = QPointer<View>(fromView)](const QVariant &value) {
                const qreal t = value.toReal();
                const qreal incoming = popping ? -kParallax * width * (1 - t) : width * (1 - t);
                const qreal outgoing = popping ? width * t : -kParallax * width * t;
                if (targetView)
                    targetView->move(int(targetOrigin.x() + incoming), int(targetOrigin.y()));
                if (fromView)
                    fromView->move(int(fromOrigin.x() + outgoing), int(fromOrigin.y()));
            });
    connect(m_animation, &QVariantAnimation::finished, this, [this, from, targetView = QPointer<View>(targetView),
                                                              fromView = QPointer<View>(fromView), targetOrigin,
                                                              fromOrigin] {
        if (targetView)
            targetView->move(targetOrigin.toPoint());
        if (fromView)
            fromView->move(fromOrigin.toPoint());
        finishTransition(from, true);
    });
    m_animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void NavigationController::finishTransition(std::shared_ptr<ViewController> from, bool animated)
{
    m_transitioning = false;
    m_leaving.reset();
    if (from && from != m_shown) {
        detachView(from.get());
        if (isOnScreen())
            from->endAppearanceTransition(false, animated);
        releaseTakenOff(from);
    }
    if (m_shown && isOnScreen())
        m_shown->endAppearanceTransition(true, animated);
    if (!m_stack.isEmpty() && m_stack.constLast() != m_shown)
        scheduleTransition(m_pendingAnimated);
}

void NavigationController::layoutShownViewController()
{
    if (!m_shown || !isViewLoaded())
        return;
    View *shownView = m_shown->view();
    shownView->setFrame(frameForViewController(m_shown.get()));
    if (ScrollView *scrollView = firstScrollSubview(shownView))
        scrollView->setAutomaticTopInset(topInsetForViewController(m_shown.get()));
}

void NavigationController::updateBarItems()
{
    const int shownIndex = m_stack.indexOf(m_shown);
    NavigationItem *back = shownIndex > 0 ? m_stack.at(shownIndex - 1)->navigationItem() : nullptr;
    m_bar->setItems(m_shown ? m_shown->navigationItem() : nullptr, back);
}

bool NavigationController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == view() && event->type() == QEvent::Resize) {
        m_bar->setFrame(QRectF(0, 0, view()->width(), NavigationBar::kHeight));
        if (!m_transitioning)
            layoutShownViewController();
    }
    return ViewController::eventFilter(watched, event);
}

void NavigationController::installTopWithoutTransition()
{
    m_shown = m_stack.constLast();
    View *shownView = m_shown->view();
    shownView->setParent(view());
    layoutShownViewController();
    updateBarItems();
    shownView->show();
    m_bar->raise();
}

void NavigationController::viewWillAppear(bool animated)
{
    ViewController::viewWillAppear(animated);
    // Coming on screen with a first screen waiting: it appears together with this controller.
    if (!m_shown && !m_stack.isEmpty())
        installTopWithoutTransition();
    if (m_shown && !m_transitioning)
        m_shown->beginAppearanceTransition(true, animated);
}

void NavigationController::viewDidAppear(bool animated)
{
    ViewController::viewDidAppear(animated);
    if (m_shown && !m_transitioning)
        m_shown->endAppearanceTransition(true, animated);
}

void NavigationController::viewWillDisappear(bool animated)
{
    ViewController::viewWillDisappear(animated);
    if (m_shown && !m_transitioning)
        m_shown->beginAppearanceTransition(false, animated);
}

void NavigationController::viewDidDisappear(bool animated)
{
    ViewController::viewDidDisappear(animated);
    if (m_shown && !m_transitioning)
        m_shown->endAppearanceTransition(false, animated);
}
