#include "ModalTransition.h"

#include "KitLog.h"
#include "View.h"
#include "ViewController.h"
#include "Window.h"

#include <QPointer>
#include <QTimer>
#include <QVariantAnimation>

#include <utility>

namespace {
// Slides `view` vertically from `fromY` to `toY`, then runs `done` (at once when not animated).
void slide(View *view, qreal fromY, qreal toY, bool animated, std::function<void()> done)
{
    if (!animated) {
        view->move(0, int(toY));
        done();
        return;
    }
    auto *animation = new QVariantAnimation(view);
    animation->setDuration(ModalTransition::kDurationMs);
    animation->setStartValue(fromY);
    animation->setEndValue(toY);
    animation->setEasingCurve(QEasingCurve::OutCubic);
    QObject::connect(animation, &QVariantAnimation::valueChanged, view,
                     [view](const QVariant &value) { view->move(0, int(value.toReal())); });
    QObject::connect(animation, &QVariantAnimation::finished, view, std::move(done));
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}
} // namespace

void ModalTransition::present(ViewController *presenter, ViewController *presented, bool animated,
                              const std::function<void()> &completion)
{
    Window *window = presenter->isViewLoaded() ? Window::of(presenter->view()) : nullptr;
    if (!window)
        window = Window::keyWindow();
    if (!window) {
        KitLog::warning("ModalTransition", QStringLiteral("no window to present in"));
        return;
    }
    View *view = presented->view();
    window->addPresentedView(view);
    view->setFrame(window->bounds());
    presenter->m_presentationRunning = true;
    presenter->beginAppearanceTransition(false, animated);
    presented->beginAppearanceTransition(true, animated);
    QPointer<ViewController> presenterGuard(presenter);
    QPointer<ViewController> presentedGuard(presented);
    slide(view, window->height(), 0, animated, [=] {
        if (!presenterGuard)
            return;
        presenter->m_presentationRunning = false;
        if (presentedGuard) {
            if (presenter->isViewLoaded())
                presenter->view()->hide();
            presenter->endAppearanceTransition(false, animated);
            presented->endAppearanceTransition(true, animated);
            if (completion)
                completion();
        }
        if (std::function<void()> waiting = std::exchange(presenter->m_afterPresentation, {}))
            waiting();
    });
}

void ModalTransition::dismiss(ViewController *presenter, bool animated, const std::function<void()> &completion)
{
    ViewController *presented = presenter->m_presented.get();
    if (!presented) {
        presenter->m_dismissing = false;
        return;
    }
    // Dismissed while still sliding in: it finishes arriving first, so that its end does not
    // hide the presenter again once the dismissal has shown it.
    if (presenter->m_presentationRunning) {
        presenter->m_afterPresentation = [presenter, animated, completion] { dismiss(presenter, animated, completion); };
        return;
    }
    // Whatever the dismissed controller presents goes with it.
    for (ViewController *above = presented->m_presented.get(); above; above = above->m_presented.get()) {
        if (above->isViewLoaded()) {
            above->view()->hide();
            above->view()->setParent(nullptr);
        }
    }
    presented->m_presented.reset();
    if (presenter->isViewLoaded())
        presenter->view()->show();
    presented->beginAppearanceTransition(false, animated);
    presenter->beginAppearanceTransition(true, animated);
    View *view = presented->view();
    const qreal bottom = view->parentWidget() ? view->parentWidget()->height() : view->height();
    QPointer<ViewController> presenterGuard(presenter);
    QPointer<ViewController> presentedGuard(presented);
    slide(view, view->y(), bottom, animated, [=] {
        if (!presenterGuard || !presentedGuard)
            return;
        view->hide();
        view->setParent(nullptr);
        presented->endAppearanceTransition(false, animated);
        presented->m_presenting = nullptr;
        presenter->endAppearanceTransition(true, animated);
        presenter->m_dismissing = false;
        // The dismissed controller (and with it the view whose animation is calling us) is
        // released once this call has returned.
        QTimer::singleShot(0, [released = std::move(presenter->m_presented)] {});
        if (completion)
            completion();
    });
}
