// Push, pop, modal presentation, the bar's items and the phone's screen geometry.
#include "KitTestSupport.h"

#include "BarButtonItem.h"
#include "Button.h"
#include "EventLoop.h"
#include "Label.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "TextView.h"
#include "View.h"
#include "ViewController.h"

#include <gtest/gtest.h>

namespace {

using Log = std::vector<std::string>;

class Screen : public ViewController
{
public:
    Screen(std::string name, Log *log) : name(std::move(name)), log(log) { setTitle(QString::fromStdString(this->name)); }

    void viewDidLoad() override
    {
        log->push_back(name + ".viewDidLoad(" + property + ")");
        table = new TableView(QRectF(0, 0, 375, 600));
        view()->addSubview(table);
    }
    void viewWillAppear(bool animated) override
    {
        ViewController::viewWillAppear(animated);
        log->push_back(name + ".willAppear");
    }
    void viewDidAppear(bool animated) override
    {
        ViewController::viewDidAppear(animated);
        log->push_back(name + ".didAppear");
    }
    void viewWillDisappear(bool animated) override
    {
        ViewController::viewWillDisappear(animated);
        log->push_back(name + ".willDisappear");
    }
    void viewDidDisappear(bool animated) override
    {
        ViewController::viewDidDisappear(animated);
        log->push_back(name + ".didDisappear");
    }

    std::string name;
    Log *log;
    std::string property = "unset";
    TableView *table = nullptr;
};

// Like a detail screen: a full-height table under the bar that starts refreshing as it appears.
class RefreshingScreen : public ViewController
{
public:
    void viewDidLoad() override
    {
        setExtendedLayoutIncludesOpaqueBars(true);
        table = new TableView(QRectF(0, 0, 375, 600));
        view()->addSubview(table);
        table->setHeader(new RefreshHeader());
    }
    void viewWillAppear(bool animated) override
    {
        ViewController::viewWillAppear(animated);
        insetSeenWhenAppearing = table->adjustedContentInset().top;
        table->header()->beginRefreshing();
    }

    TableView *table = nullptr;
    qreal insetSeenWhenAppearing = -1;
};

class NavigationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window = kittest::shownWindow();
        home = std::make_shared<Screen>("home", &log);
        navigation = std::make_shared<NavigationController>(home);
        window->setRootViewController(navigation);
        ASSERT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() == home.get(); }));
        log.clear();
    }

    bool shows(ViewController *controller)
    {
        return testsupport::waitUntil([&] { return navigation->visibleViewController() == controller; });
    }

    Log log;
    std::unique_ptr<Window> window;
    std::shared_ptr<Screen> home;
    std::shared_ptr<NavigationController> navigation;
};

TEST_F(NavigationTest, pushedScreenLoadsAfterTheOpenerHasSetItsProperties)
{
    auto detail = std::make_shared<Screen>("detail", &log);
    navigation->pushViewController(detail, true);
    EXPECT_EQ(navigation->topViewController(), detail.get());
    EXPECT_EQ(detail->navigationController(), navigation.get());
    EXPECT_FALSE(detail->isViewLoaded());
    detail->property = "set";
    ASSERT_TRUE(shows(detail.get()));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning(); }));
    EXPECT_EQ(log, (Log{"detail.viewDidLoad(set)", "home.willDisappear", "detail.willAppear", "home.didDisappear",
                        "detail.didAppear"}));
    EXPECT_EQ(Window::of(home->view()), nullptr);
    EXPECT_EQ(Window::of(detail->view()), window.get());
}

TEST_F(NavigationTest, barShowsTitleBackButtonAndItems)
{
    auto detail = std::make_shared<Screen>("detail", &log);
    navigation->pushViewController(detail, false);
    ASSERT_TRUE(shows(detail.get()));
    NavigationBar *bar = navigation->navigationBar();
    EXPECT_EQ(bar->titleLabel()->text(), "detail");
    EXPECT_TRUE(bar->backButton()->isVisible());
    EXPECT_TRUE(bar->backButton()->title().contains("home"));

    detail->navigationItem()->setHidesBackButton(true);
    EXPECT_FALSE(bar->backButton()->isVisible());
    detail->navigationItem()->setHidesBackButton(false);

    int published = 0;
    detail->navigationItem()->setRightBarButtonItem(
        new BarButtonItem("发布", BarButtonItem::Style::Plain, [&] { ++published; }));
    EXPECT_EQ(bar->rightButton()->title(), "发布");
    QTest::mouseClick(bar->rightButton(), Qt::LeftButton);
    EXPECT_EQ(published, 1);

    // A left item, even a blank one without action, takes the back button's place.
    detail->navigationItem()->setLeftBarButtonItem(new BarButtonItem(""));
    EXPECT_FALSE(bar->backButton()->isVisible());
    EXPECT_TRUE(bar->leftButton()->isVisible());
    QTest::mouseClick(bar->leftButton(), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_EQ(navigation->topViewController(), detail.get());
}

TEST_F(NavigationTest, backButtonPopsAndReleasesTheScreen)
{
    auto detail = std::make_shared<Screen>("detail", &log);
    std::weak_ptr<Screen> watcher = detail;
    navigation->pushViewController(std::move(detail), false);
    ASSERT_TRUE(shows(watcher.lock().get()));
    log.clear();
    QTest::mouseClick(navigation->navigationBar()->backButton(), Qt::LeftButton);
    EXPECT_EQ(navigation->topViewController(), home.get());
    ASSERT_TRUE(shows(home.get()));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning(); }));
    EXPECT_EQ(log, (Log{"detail.willDisappear", "home.willAppear", "detail.didDisappear", "home.didAppear"}));
    EXPECT_TRUE(testsupport::waitUntil([&] { return watcher.expired(); }));
}

TEST_F(NavigationTest, poppedScreenHeldElsewhereLivesOnWithoutAWindow)
{
    auto composer = std::make_shared<Screen>("composer", &log);
    navigation->pushViewController(composer, false);
    ASSERT_TRUE(shows(composer.get()));
    EXPECT_EQ(navigation->popViewControllerAnimated(false), composer);
    ASSERT_TRUE(shows(home.get()));
    EXPECT_EQ(composer->navigationController(), nullptr);
    EXPECT_EQ(Window::of(composer->view()), nullptr);
}

TEST_F(NavigationTest, everyScreenTakenOffTheStackLetsGoOfItsNavigationController)
{
    auto middle = std::make_shared<Screen>("middle", &log);
    auto top = std::make_shared<Screen>("top", &log);
    navigation->pushViewController(middle, false);
    navigation->pushViewController(top, false);
    ASSERT_TRUE(shows(top.get()));

    // The middle one goes at once; the one sliding out keeps its controller until it is gone.
    EXPECT_EQ(navigation->popToRootViewControllerAnimated(true).size(), 2);
    EXPECT_EQ(middle->navigationController(), nullptr);
    EXPECT_EQ(top->navigationController(), navigation.get());
    ASSERT_TRUE(shows(home.get()));
    ASSERT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning(); }));
    EXPECT_EQ(top->navigationController(), nullptr);

    // Pushed and popped before it was ever shown, and two pops before the transition runs.
    auto never = std::make_shared<Screen>("never", &log);
    navigation->pushViewController(middle, false);
    navigation->pushViewController(never, false);
    navigation->popViewControllerAnimated(false);
    EXPECT_EQ(never->navigationController(), nullptr);
    navigation->popViewControllerAnimated(false);
    EXPECT_EQ(middle->navigationController(), nullptr);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning(); }));

    // Each can join another stack, and outlives a navigation controller it was on.
    auto other = std::make_shared<NavigationController>(never);
    other->pushViewController(middle, false);
    EXPECT_EQ(other->viewControllers(), (QList<ViewController *>{never.get(), middle.get()}));
    EXPECT_EQ(middle->navigationController(), other.get());
    auto lone = std::make_shared<Screen>("lone", &log);
    auto doomed = std::make_shared<NavigationController>(std::make_shared<Screen>("root", &log));
    doomed->pushViewController(lone, false);
    doomed->pushViewController(std::make_shared<Screen>("above", &log), false);
    doomed.reset();
    EXPECT_EQ(lone->navigationController(), nullptr);
}

TEST_F(NavigationTest, presentedScreenOutlivingItsPresenterDismissesSafely)
{
    auto presenter = std::make_shared<Screen>("presenter", &log);
    auto modal = std::make_shared<Screen>("modal", &log);
    presenter->presentViewController(modal, false);
    ASSERT_TRUE(testsupport::waitUntil([&] { return modal->isOnScreen(); }));
    EXPECT_EQ(modal->presentingViewController(), presenter.get());
    presenter.reset();
    EXPECT_EQ(modal->presentingViewController(), nullptr);
    modal->dismissViewControllerAnimated(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(modal->presentingViewController(), nullptr);
}

TEST_F(NavigationTest, framesAndInsetsFollowTheBar)
{
    // Translucent (the default): the view fills the screen, its table starts under the bar.
    EXPECT_EQ(home->view()->geometry(), QRect(0, 0, 375, 667));
    EXPECT_EQ(home->table->adjustedContentInset().top, 64);
    EXPECT_EQ(home->table->contentOffset().y(), -64);

    navigation->navigationBar()->setTranslucent(false);
    EXPECT_EQ(home->view()->geometry(), QRect(0, 64, 375, 603));
    EXPECT_EQ(home->table->adjustedContentInset().top, 0);
    EXPECT_EQ(home->table->contentOffset().y(), 0);

    auto extended = std::make_shared<Screen>("extended", &log);
    extended->setExtendedLayoutIncludesOpaqueBars(true);
    navigation->pushViewController(extended, false);
    ASSERT_TRUE(shows(extended.get()));
    EXPECT_EQ(extended->view()->geometry(), QRect(0, 0, 375, 667));
    EXPECT_EQ(extended->table->adjustedContentInset().top, 64);

    navigation->setNavigationBarHidden(true);
    EXPECT_FALSE(navigation->navigationBar()->isVisible());
    EXPECT_EQ(extended->view()->geometry(), QRect(0, 0, 375, 667));
    EXPECT_EQ(extended->table->adjustedContentInset().top, 20);
}

TEST_F(NavigationTest, screenRefreshingAsItAppearsShowsItsHeaderBelowTheBar)
{
    auto detail = std::make_shared<RefreshingScreen>();
    navigation->pushViewController(detail, true);
    ASSERT_TRUE(shows(detail.get()));
    EXPECT_EQ(detail->insetSeenWhenAppearing, 64);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning(); }));
    // Content starts below the bar and the refreshing header's room.
    EXPECT_TRUE(testsupport::waitUntil([&] { return detail->table->contentOffset().y() == -64 - RefreshHeader::kHeight; }))
        << detail->table->contentOffset().y();
    EXPECT_EQ(detail->table->header()->geometry().top(), 64);

    detail->table->header()->endRefreshing();
    EXPECT_TRUE(testsupport::waitUntil([&] { return detail->table->contentOffset().y() == -64; }))
        << detail->table->contentOffset().y();
}

TEST_F(NavigationTest, keyboardGoesWithTheScreenItWasRaisedOn)
{
    auto typeInto = [&](ViewController *screen) {
        auto *field = new TextView(QRectF(0, 100, 375, 40));
        screen->view()->addSubview(field);
        EXPECT_TRUE(field->becomeFirstResponder());
        EXPECT_TRUE(window->keyboardView()->isVisible());
        return QPointer<TextView>(field);
    };
    auto keyboardIsDown = [&](const QPointer<TextView> &field) {
        return (!field || !field->isFirstResponder()) && !window->keyboardView()->isVisible();
    };

    // Popped.
    auto composer = std::make_shared<Screen>("composer", &log);
    navigation->pushViewController(composer, false);
    ASSERT_TRUE(shows(composer.get()));
    QPointer<TextView> field = typeInto(composer.get());
    navigation->popViewControllerAnimated(true);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !navigation->isTransitioning() && shows(home.get()); }));
    EXPECT_TRUE(keyboardIsDown(field));

    // Covered by a presentation.
    field = typeInto(home.get());
    auto modal = std::make_shared<Screen>("modal", &log);
    bool presented = false;
    navigation->presentViewController(modal, true, [&] { presented = true; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return presented; }));
    EXPECT_TRUE(keyboardIsDown(field));

    // Dismissed.
    field = typeInto(modal.get());
    bool dismissed = false;
    modal->dismissViewControllerAnimated(true, [&] { dismissed = true; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return dismissed; }));
    EXPECT_TRUE(keyboardIsDown(field));
}

TEST_F(NavigationTest, dismissedWhileSlidingInItArrivesThenLeaves)
{
    auto modal = std::make_shared<Screen>("modal", &log);
    bool presented = false;
    bool dismissed = false;
    navigation->presentViewController(modal, true, [&] { presented = true; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return modal->isOnScreen(); }));
    ASSERT_FALSE(presented);
    modal->dismissViewControllerAnimated(true, [&] { dismissed = true; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return dismissed; }));
    EXPECT_TRUE(presented);
    EXPECT_TRUE(home->view()->isVisible());
    EXPECT_TRUE(home->isOnScreen());
    EXPECT_FALSE(modal->isOnScreen());
    EXPECT_EQ(Window::of(modal->view()), nullptr);
    EXPECT_EQ(window->topmostViewController(), navigation.get());
    EXPECT_EQ(log, (Log{"modal.viewDidLoad(unset)", "home.willDisappear", "modal.willAppear", "home.didDisappear",
                        "modal.didAppear", "modal.willDisappear", "home.willAppear", "modal.didDisappear",
                        "home.didAppear"}));
}

TEST_F(NavigationTest, presentAndDismissAWholeNavigationController)
{
    auto modal = std::make_shared<Screen>("modal", &log);
    auto modalNavigation = std::make_shared<NavigationController>(modal);
    bool presented = false;
    window->rootViewController()->presentViewController(modalNavigation, true, [&] { presented = true; });
    EXPECT_EQ(navigation->presentedViewController(), modalNavigation.get());
    ASSERT_TRUE(testsupport::waitUntil([&] { return presented; }));
    EXPECT_TRUE(testsupport::waitUntil([&] { return modalNavigation->visibleViewController() == modal.get(); }));
    EXPECT_EQ(modalNavigation->view()->geometry(), QRect(0, 0, 375, 667));
    EXPECT_EQ(window->topmostViewController(), modalNavigation.get());
    EXPECT_EQ(log, (Log{"modal.viewDidLoad(unset)", "home.willDisappear", "modal.willAppear", "home.didDisappear",
                        "modal.didAppear"}));

    // A second presentation from the root stacks on top of the first.
    auto second = std::make_shared<NavigationController>(std::make_shared<Screen>("second", &log));
    window->rootViewController()->presentViewController(second, false);
    EXPECT_EQ(modalNavigation->presentedViewController(), second.get());
    ASSERT_TRUE(testsupport::waitUntil([&] { return window->topmostViewController() == second.get(); }));

    // A screen whose navigation controller presents something dismisses that first...
    bool dismissed = false;
    modal->dismissViewControllerAnimated(false, [&] { dismissed = true; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return dismissed; }));
    EXPECT_EQ(modalNavigation->presentedViewController(), nullptr);
    EXPECT_EQ(window->topmostViewController(), modalNavigation.get());

    // ...and then the presentation it belongs to.
    log.clear();
    dismissed = false;
    modal->dismissViewControllerAnimated(true, [&] { dismissed = true; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return dismissed; }));
    EXPECT_EQ(navigation->presentedViewController(), nullptr);
    EXPECT_EQ(window->topmostViewController(), navigation.get());
    EXPECT_TRUE(home->view()->isVisible());
    EXPECT_EQ(Window::of(modal->view()), nullptr);
    EXPECT_EQ(log, (Log{"modal.willDisappear", "home.willAppear", "modal.didDisappear", "home.didAppear"}));
}

} // namespace
