#include "DetailViewController.h"

#include "BarButtonItem.h"
#include "FieldValue.h"
#include "FirstCell.h"
#include "ForumLog.h"
#include "ForumPayloads.h"
#include "HostDetailViewController.h"
#include "HttpRequest.h"
#include "ImageView.h"
#include "JsonChangDic.h"
#include "MainScreen.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "RecordSorting.h"
#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "ReleaseViewController.h"
#include "SecondCell.h"

#include <QJsonArray>

namespace {

const QString kPinnedCell = QStringLiteral("cell");
const QString kTopicCell = QStringLiteral("cell1");
const QString kGuideBadge = QStringLiteral("攻略");
const QString kPublishTitle = QStringLiteral("发布");

enum Section { kPinnedSection = 0, kGuideSection = 1, kTopicSection = 2, kSectionCount = 3 };

constexpr qreal kHeaderCardHeight = 185;
constexpr qreal kFooterHeight = 55;
constexpr qreal kFooterAboveBottom = 60;
constexpr qreal kShortRowHeight = 40;
// A topic row: its text's height plus room for title, poster and time, up to a fixed height.
constexpr qreal kTopicRowExtra = 80;
constexpr qreal kTopicTextLimit = 50;
constexpr qreal kTopicRowMaxHeight = 120;

QList<PostModel> topicsOf(const QJsonValue &answer)
{
    QList<PostModel> topics;
    for (const QJsonValue &element : answer.toArray()) {
        if (element.isObject())
            topics.append(PostModel::fromJson(element.toObject()));
    }
    return topics;
}

} // namespace

DetailViewController::DetailViewController() = default;
DetailViewController::~DetailViewController() = default;

std::shared_ptr<DetailViewController> DetailViewController::self()
{
    return std::static_pointer_cast<DetailViewController>(shared_from_this());
}

void DetailViewController::viewDidLoad()
{
    const qreal width = MainScreen::width();
    const qreal viewHeight = view()->frame().height();
    m_tempView = new View(QRectF(0, 0, width, viewHeight));
    m_tempView->setParent(this->view());
    m_tempView->hide();
    view()->setBackgroundColor(Qt::white);
    setTitle(FieldValue::displayText(model.sectionname()));

    m_tableView = new TableView(QRectF(0, 0, width, viewHeight));
    view()->addSubview(m_tableView);
    m_tableView->setDelegate(this);
    m_tableView->setDataSource(this);

    page = 1;
    jsonDiction(1);
    topTopic();

    m_tableView->setSeparatorStyle(TableView::SeparatorStyle::None);
    m_tableView->registerClass<FirstCell>(kPinnedCell);
    m_tableView->registerClass<SecondCell>(kTopicCell);
    navigationItem()->setRightBarButtonItem(
        new BarButtonItem(kPublishTitle, BarButtonItem::Style::Plain, [this] { submitAction(); }));
    m_tableView->setHeader(new RefreshHeader(this, &DetailViewController::handleRefresh));
    m_tableView->setFooter(new RefreshFooter([this] {
        page = page + 1;
        jsonDiction(page);
    }));
    greatUI();
}

void DetailViewController::viewWillAppear(bool)
{
    ViewController::viewWillAppear(true);
    if (NavigationController *navigation = navigationController())
        navigation->setNavigationBarHidden(false);
    // A publish from the composer opened by "发布" marked the list stale.
    if (value == ReleaseViewController::kPublishedValue)
        m_tableView->header()->beginRefreshing();
}

void DetailViewController::viewWillDisappear(bool)
{
    ViewController::viewWillDisappear(true);
    value = 0;
}

void DetailViewController::jsonDiction(int pageIndex)
{
    jsonDic = ForumPayloads::topics(model, pageIndex);
    jsonString = JsonChangDic::jsonWithDictionary(jsonDic);
    if (NavigationController *navigation = navigationController())
        navigation->navigationBar()->setTranslucent(false);
    requstData();
}

void DetailViewController::requstData()
{
    HttpRequest::GetTopicsSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (!controller->hasViews())
                return;
            // Page 1 replaces the list; later pages append, repeats included.
            if (controller->page == 1)
                controller->datasource.clear();
            controller->datasource.append(topicsOf(payload));
            controller->m_tableView->reloadData();
            controller->endRefresh();
        },
        {}, jsonString);
}

void DetailViewController::topTopic()
{
    topJson = JsonChangDic::jsonWithDictionary(ForumPayloads::topTopic(model));
    requstTopTopic();
}

void DetailViewController::requstTopTopic()
{
    HttpRequest::GetTopTopicSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (!controller->hasViews())
                return;
            // Sent once per screen, so appending never repeats.
            RecordSorting::TopTopics top = RecordSorting::splitTopTopics(payload);
            controller->mutableArray.append(top.guides);
            controller->stickArray.append(top.pinned);
            controller->m_tableView->reloadData();
        },
        {}, topJson);
}

void DetailViewController::handleRefresh()
{
    page = 1;
    jsonDiction(page);
}

void DetailViewController::endRefresh()
{
    if (hasViews())
        m_tableView->endRefreshing();
}

void DetailViewController::openComposer(bool asDelegate)
{
    NavigationController *navigation = navigationController();
    if (!navigation)
        return;
    auto composer = std::make_shared<ReleaseViewController>();
    if (asDelegate)
        composer->delegate = this;
    composer->model = model;
    composer->userID = userID;
    navigation->pushViewController(composer, true);
}

void DetailViewController::submitAction()
{
    openComposer(true);
}

void DetailViewController::back(int tag)
{
    // 101 only reaches for the navigation controller; 102 opens a composer that reports to
    // no one.
    if (tag == kSubmitTag)
        openComposer(false);
}

void DetailViewController::passValue(qint64 passed)
{
    value = passed;
}

void DetailViewController::handleAction()
{
    if (NavigationController *navigation = navigationController())
        navigation->dismissViewControllerAnimated(true);
}

void DetailViewController::greatUI()
{
    const qreal width = MainScreen::width();
    m_V = new DetailView(QRectF(0, 0, width, kHeaderCardHeight));
    m_V->setDelegate(this);
    m_V->getModel(model);
    m_tableView->setTableHeaderView(m_V);
    m_titleView = new View(QRectF(0, MainScreen::height() - kFooterAboveBottom, width, kFooterHeight));
    m_tableView->setTableFooterView(m_titleView);
}

const QList<PostModel> &DetailViewController::listOfSection(int section) const
{
    if (section == kPinnedSection)
        return stickArray;
    if (section == kGuideSection)
        return mutableArray;
    return datasource;
}

int DetailViewController::numberOfSectionsInTableView(TableView *)
{
    return kSectionCount;
}

int DetailViewController::numberOfRowsInSection(TableView *, int section)
{
    return section < kSectionCount ? int(listOfSection(section).size()) : 0;
}

TableViewCell *DetailViewController::cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    postModel = listOfSection(indexPath.section).at(indexPath.row);
    if (indexPath.section == kTopicSection) {
        auto *cell = static_cast<SecondCell *>(tableView->dequeueReusableCellWithIdentifier(kTopicCell, indexPath));
        cell->setSelectionStyle(TableViewCellSelectionStyle::None);
        cell->getModel(postModel);
        return cell;
    }
    auto *cell = static_cast<FirstCell *>(tableView->dequeueReusableCellWithIdentifier(kPinnedCell, indexPath));
    cell->setSelectionStyle(TableViewCellSelectionStyle::None);
    cell->getModel(postModel);
    if (indexPath.section == kGuideSection)
        cell->image()->setImageNamed(kGuideBadge);
    return cell;
}

qreal DetailViewController::heightForRowAtIndexPath(TableView *, const IndexPath &indexPath)
{
    if (indexPath.section != kTopicSection)
        return kShortRowHeight;
    // Measured from the record last handed to a cell, not the row's own. Kept on purpose.
    const qreal h = JsonChangDic::adaptiveWithText(FieldValue::optionalText(postModel.topiccontent()));
    return h < kTopicTextLimit ? h + kTopicRowExtra : kTopicRowMaxHeight;
}

void DetailViewController::didSelectRowAtIndexPath(TableView *, const IndexPath &indexPath)
{
    NavigationController *navigation = navigationController();
    if (!navigation)
        return;
    auto topic = std::make_shared<HostDetailViewController>();
    topic->model = model;
    topic->userID = userID;
    topic->postModel = listOfSection(indexPath.section).at(indexPath.row);
    navigation->pushViewController(topic, true);
}
