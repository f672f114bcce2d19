#include "ViewController.h"

#include "MainScreen.h"
#include "ModalTransition.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "View.h"

#include <QTimer>

ViewController::ViewController() : m_navigationItem(new NavigationItem(this)) {}

ViewController::~ViewController()
{
    // What this controller presents may be held elsewhere and outlive it.
    if (m_presented)
        m_presented->m_presenting = nullptr;
    delete m_view.data();
}

View *ViewController::view()
{
    if (!m_view) {
        loadView();
        if (!m_view)
            setView(new View(QRectF(QPointF(0, 0), MainScreen::size())));
        viewDidLoad();
    }
    return m_view;
}

void ViewController::loadView()
{
    auto *view = new View(QRectF(QPointF(0, 0), MainScreen::size()));
    view->setBackgroundColor(Qt::white);
    setView(view);
}

void ViewController::setView(View *view)
{
    m_view = view;
}

void ViewController::setTitle(const QString &title)
{
    m_navigationItem->setTitle(title);
}

QString ViewController::title() const
{
    return m_navigationItem->title();
}

NavigationController *ViewController::navigationController() const
{
    for (ViewController *ancestor = m_parent; ancestor; ancestor = ancestor->m_parent) {
        if (auto *navigation = qobject_cast<NavigationController *>(ancestor))
            return navigation;
    }
    return nullptr;
}

void ViewController::presentViewController(std::shared_ptr<ViewController> controller, bool animated,
                                           std::function<void()> completion)
{
    if (!controller || controller->m_presenting || controller.get() == this)
        return;
    ViewController *presenter = this;
    while (presenter->m_parent)
        presenter = presenter->m_parent;
    while (presenter->m_presented)
        presenter = presenter->m_presented.get();
    presenter->m_presented = controller;
    controller->m_presenting = presenter;
    QTimer::singleShot(0, presenter, [presenter, controller, animated, completion = std::move(completion)] {
        ModalTransition::present(presenter, controller.get(), animated, completion);
    });
}

void ViewController::dismissViewControllerAnimated(bool animated, std::function<void()> completion)
{
    ViewController *owner = this;
    while (owner && !owner->m_presented && !owner->m_presenting)
        owner = owner->m_parent;
    if (!owner)
        return;
    ViewController *presenter = owner->m_presented ? owner : owner->m_presenting.data();
    if (presenter->m_dismissing)
        return;
    presenter->m_dismissing = true;
    QTimer::singleShot(0, presenter, [presenter, animated, completion = std::move(completion)] {
        ModalTransition::dismiss(presenter, animated, completion);
    });
}

void ViewController::viewWillAppear(bool) {}
void ViewController::viewDidAppear(bool) {}
void ViewController::viewWillDisappear(bool) {}
void ViewController::viewDidDisappear(bool) {}

void ViewController::beginAppearanceTransition(bool appearing, bool animated)
{
    if (appearing) {
        m_onScreen = true;
        viewWillAppear(animated);
    } else {
        viewWillDisappear(animated);
    }
}

void ViewController::endAppearanceTransition(bool appearing, bool animated)
{
    if (appearing) {
        viewDidAppear(animated);
    } else {
        m_onScreen = false;
        viewDidDisappear(animated);
    }
}
