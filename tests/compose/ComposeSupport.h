#pragma once
// Opens the new-topic screen the way a board screen does: pushed onto a navigation stack
// above its opener, with the board, the user and the opener as its delegate.

#include "Button.h"
#include "EventLoop.h"
#include "ForumServerSuite.h"
#include "KeyboardObserver.h"
#include "LocalForumServer.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "Pointer.h"
#include "Reachability.h"
#include "ReleaseViewController.h"
#include "ReleaseViewControllerDelegate.h"
#include "ServiceConfig.h"
#include "TextInputMode.h"
#include "Window.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QList>

namespace composetest {

using Demo = LocalForumServer::Demo;

// The screen under the composer; records what it is told, and whether the composer had
// already left the stack when it was told.
class Opener : public ViewController, public ReleaseViewControllerDelegate
{
public:
    void passValue(qint64 value) override
    {
        values.append(value);
        composerGoneWhenTold = navigationController() && navigationController()->topViewController() == this;
    }

    QList<qint64> values;
    bool composerGoneWhenTold = false;
};

using testsupport::demoBoard;

// A test suite sharing one forum server that takes posts without waiting time, with the
// client pointed at it, the system keyboard and the network restored after each test.
class ComposeSuite : public testsupport::ForumServerSuite
{
protected:
    void TearDown() override
    {
        TextInputMode::selectSystemKeyboard();
        Reachability::setForcedStatus(std::nullopt);
        ForumServerSuite::TearDown();
    }

    // Pushes a composer over an opener in `shown` and waits until it is on screen.
    std::shared_ptr<ReleaseViewController> open(Window &shown)
    {
        opener = std::make_shared<Opener>();
        navigation = std::make_shared<NavigationController>(opener);
        shown.setRootViewController(navigation);
        shown.makeKeyAndVisible();
        auto composer = std::make_shared<ReleaseViewController>();
        composer->model = demoBoard();
        composer->userID = 7;
        composer->delegate = opener.get();
        navigation->pushViewController(composer, true);
        EXPECT_TRUE(testsupport::waitUntil([&] { return composer->isOnScreen() && !navigation->isTransitioning(); }));
        return composer;
    }
    std::shared_ptr<ReleaseViewController> open() { return open(window); }

    // A person's tap on "发布".
    void tapPublish()
    {
        Button *publish = navigation->navigationBar()->rightButton();
        ASSERT_NE(publish, nullptr);
        ASSERT_EQ(publish->title(), QStringLiteral("发布"));
        testsupport::Pointer person(publish);
        person.tap(person.inWindow(publish->rect().center(), publish));
    }

    // Fills both boxes past the rules, as code may.
    static void fill(const std::shared_ptr<ReleaseViewController> &composer, const QString &title, const QString &body)
    {
        composer->titleText()->setText(title);
        composer->content()->setText(body);
    }

    std::shared_ptr<Opener> opener;
    std::shared_ptr<NavigationController> navigation;
};

} // namespace composetest
