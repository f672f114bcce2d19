#include "BoardLink.h"

#include "DetailViewController.h"
#include "FieldValue.h"
#include "FirstLoad.h"
#include "NavigationController.h"
#include "UserIdStore.h"
#include "Window.h"

#include <QJsonArray>
#include <QPointer>

void BoardLink::open(Window &window, qint64 sectionId, std::function<void(bool opened)> done)
{
    FirstLoad::Handlers handlers;
    handlers.sections = [window = QPointer<Window>(&window), sectionId, done](const QJsonValue &boards) {
        if (!window)
            return;
        for (const QJsonValue &element : boards.toArray()) {
            const ListModel board = ListModel::fromJson(element);
            if (FieldValue::integerValue(board.sectionid()) != sectionId)
                continue;
            auto screen = std::make_shared<DetailViewController>();
            screen->model = board;
            screen->userID = UserIdStore().userId();
            window->setRootViewController(std::make_shared<NavigationController>(screen));
            done(true);
            return;
        }
        done(false);
    };
    FirstLoad::start(UserIdStore(), handlers);
}
