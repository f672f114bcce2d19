#include "HomeViewController.h"

#include "BarButtonItem.h"
#include "CircleView.h"
#include "DetailViewController.h"
#include "DeviceInfo.h"
#include "FieldValue.h"
#include "ForumPayloads.h"
#include "HostDetailViewController.h"
#include "HomeStyle.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "LFAnalytics.h"
#include "MainCell.h"
#include "MainScreen.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "UserDefaults.h"
#include "UserIdStore.h"
#include "View.h"
#include "WebViewController.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Home {

namespace {

const QString kCell = QStringLiteral("cell");

} // namespace

ViewController::ViewController() = default;
ViewController::~ViewController() = default;

std::shared_ptr<ViewController> ViewController::self()
{
    return std::static_pointer_cast<ViewController>(shared_from_this());
}

void ViewController::viewDidLoad()
{
    setTitle(QString::fromUtf8(kTitle));
    myUserID = &UserDefaults::standardUserDefaults();

    m_tableView = new TableView(view()->frame());
    m_tableView->setRowHeight(HomeStyle::kRowFrame.height());
    m_tableView->setSeparatorStyle(TableView::SeparatorStyle::None);
    m_tableView->setDataSource(this);
    m_tableView->setDelegate(this);
    view()->addSubview(m_tableView);
    m_tableView->registerClass<MainCell>(kCell);

    requstData();
    jsonDictionary();
}

void ViewController::viewWillAppear(bool)
{
    ::ViewController::viewWillAppear(true);
    if (NavigationController *navigation = navigationController()) {
        // The container's own item, not this screen's: kept as the app has always done it.
        navigation->navigationItem()->setHidesBackButton(true);
        navigation->setNavigationBarHidden(false);
    }
    // A blank spacer where a back button would stand.
    navigationItem()->setLeftBarButtonItem(new BarButtonItem(QString(), BarButtonItem::Style::Plain, {}));
    count = HostDetailViewController::kOpenedFromBanner;
    num = kBannerCount;
    listDictionary();
}

void ViewController::requstData()
{
    HttpRequest::GetAdRecomSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (!controller->hasViews())
                return;
            // Appended, never cleared: the ads are asked for once per screen load.
            for (const QJsonValue &element : payload.toArray()) {
                const QJsonObject item = element.toObject();
                controller->pModel = PostModel::fromJson(item);
                controller->mutableArray.append(controller->pModel);
                controller->headerArray.append(FieldValue::displayText(item.value(QLatin1String("adico"))));
                controller->modelArray.append(item.value(QLatin1String("tid")));
            }
            controller->m_tableView->reloadData();
            controller->greatUI();
        },
        {});
}

void ViewController::jsonDictionary()
{
    jsonSting = JsonChangDic::jsonWithDictionary(ForumPayloads::devicePair());
    string = myUserID->stringForKey(QString::fromLatin1(UserIdStore::kKey));
    myUserID->synchronize();
    if (FieldValue::integerValue(string) == 0)
        requstUserID();
    // On a first run this stays 0 until the next launch: the temporary user's answer is stored
    // for later and does not change what this screen sends.
    number = FieldValue::integerValue(string);
    listDictionary();

    auto *header = new RefreshHeader(this, &ViewController::listDictionary);
    m_tableView->setHeader(header);
    header->setAutomaticallyChangeAlpha(true);
    header->beginRefreshing();
}

void ViewController::requstUserID()
{
    HttpRequest::GetTempUserInfoSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            controller->listModel = UserIdStore::userOfTempUserAnswer(payload);
            controller->userID = controller->listModel.userid();
            controller->userIDStr = UserIdStore(*controller->myUserID).storeUser(controller->listModel);
        },
        {}, jsonSting);
}

void ViewController::listDictionary()
{
    listString = JsonChangDic::jsonWithDictionary(ForumPayloads::section(number));
    listRequst();
}

void ViewController::listRequst()
{
    HttpRequest::GetSectionSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (!controller->hasViews())
                return;
            // Each answer replaces the whole list, in whatever order the answers come.
            controller->listArray.clear();
            for (const QJsonValue &element : payload.toArray())
                controller->listArray.append(ListModel::fromJson(element));
            controller->m_tableView->reloadData();
            controller->endRefresh();
        },
        {}, listString);
}

void ViewController::greatUI()
{
    const qreal width = MainScreen::width();
    auto *carousel = new CircleView(QRectF(0, 0, width, kBannerHeight), static_cast<int>(headerArray.size()));
    carousel->getDataFromArray(headerArray);
    m_tableView->setTableHeaderView(carousel);
    m_tableView->setTableFooterView(new View(QRectF(0, 0, width, kFooterHeight)));
    carousel->setDelegate(this);
    m_circleView = carousel;
}

void ViewController::endRefresh()
{
    if (hasViews() && m_tableView->header())
        m_tableView->header()->endRefreshing();
}

int ViewController::numberOfRowsInSection(TableView *, int)
{
    return static_cast<int>(listArray.size());
}

TableViewCell *ViewController::cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    auto *cell = static_cast<MainCell *>(tableView->dequeueReusableCellWithIdentifier(kCell, indexPath));
    cell->setSelectionStyle(TableViewCellSelectionStyle::None);
    listModel = listArray.value(indexPath.row);
    idStr = FieldValue::describe(listModel.sectionid());
    tagStr = FieldValue::describe(listModel.sectiontag());
    cell->getModel(listModel);
    return cell;
}

void ViewController::didSelectRowAtIndexPath(TableView *, const IndexPath &indexPath)
{
    NavigationController *navigation = navigationController();
    if (!navigation || indexPath.row >= listArray.size())
        return;
    // Pushed first, filled after: the board screen loads on the next turn of the event loop.
    // `str` and `tagStr` come from the last configured cell, `model` from the selected row.
    auto board = std::make_shared<DetailViewController>();
    navigation->pushViewController(board, true);
    board->str = idStr;
    board->tagStr = tagStr;
    listModel = listArray.at(indexPath.row);
    board->model = listModel;
    board->userID = number;
}

void ViewController::cycleScrollView(CircleView *, int didSelectItemAtIndex)
{
    LFAnalytics::event(QString::fromLatin1(kAdvertisingClickEvent));
    NavigationController *navigation = navigationController();
    if (!navigation || didSelectItemAtIndex < 0 || didSelectItemAtIndex >= mutableArray.size())
        return;
    const int index = didSelectItemAtIndex;
    const PostModel &item = mutableArray.at(index);
    urlType = item.urltype();
    if (FieldValue::integerValue(urlType) != 0) {
        auto page = std::make_shared<WebViewController>();
        page->url = FieldValue::displayText(item.adurl());
        navigation->pushViewController(page, true);
        return;
    }
    auto topic = std::make_shared<HostDetailViewController>();
    topic->userID = number;
    pModel = mutableArray.at(index);
    topic->tid = modelArray.value(index);
    topic->model = listModel;
    topic->postModel = pModel;
    topic->result = count;
    topic->count = num;
    navigation->pushViewController(topic, true);
}

} // namespace Home
