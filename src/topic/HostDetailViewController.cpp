#include "HostDetailViewController.h"

#include "BarButtonItem.h"
#include "FieldValue.h"
#include "ForumLog.h"
#include "ForumPayloads.h"
#include "HeadView.h"
#include "HostCell.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "KeyboardObserver.h"
#include "Label.h"
#include "MainScreen.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "RecordSorting.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "TextView.h"
#include "TopicStyle.h"
#include "UserIdStore.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

const QString kCellIdentifier = QStringLiteral("cell1");
constexpr int kHighlightedSection = 0;
constexpr int kAllRepliesSection = 1;
constexpr qreal kInitialTableBottomRoom = 114;

} // namespace

HostDetailViewController::HostDetailViewController() = default;

HostDetailViewController::~HostDetailViewController()
{
    // The base class deletes the view after this object's members are gone; the reply box
    // going with it posts a keyboard will-hide that must not reach this screen any more.
    disconnect(&KeyboardObserver::shared(), nullptr, this, nullptr);
}

std::shared_ptr<HostDetailViewController> HostDetailViewController::self()
{
    return std::static_pointer_cast<HostDetailViewController>(shared_from_this());
}

bool HostDetailViewController::hasViews() const
{
    return isViewLoaded() && m_tableView;
}

void HostDetailViewController::viewDidLoad()
{
    setExtendedLayoutIncludesOpaqueBars(true);
    page = 1;
    setTitle(QStringLiteral("详情"));
    view()->setBackgroundColor(Qt::white);

    const qreal width = MainScreen::width();
    const qreal viewHeight = view()->frame().height();
    m_tableView = new TableView(QRectF(0, 0, width, viewHeight - kInitialTableBottomRoom));
    m_tableView->setDelegate(this);
    m_tableView->setDataSource(this);
    view()->addSubview(m_tableView);
    m_tableView->registerClass<HostCell>(kCellIdentifier);
    auto *header = new RefreshHeader(this, &HostDetailViewController::jsonDiction);
    // At rest the idle header lies under the translucent bar; it fades in only when pulled.
    header->setAutomaticallyChangeAlpha(true);
    m_tableView->setHeader(header);

    height = JsonChangDic::adaptiveWithText(FieldValue::optionalText(postModel.topiccontent()));
    titleH = JsonChangDic::adaptiveWithText(FieldValue::optionalText(postModel.title()));
    m_headV = new HeadView(QRectF(0, 0, width, height + TopicStyle::kHeadExtraHeight + titleH));
    m_headV->setBackgroundColor(Qt::white);
    m_tableView->setTableHeaderView(m_headV);

    array = {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")};

    buildReplyBar();

    m_tableView->setBackgroundColor(TopicStyle::color(TopicStyle::kListBackground));
    m_tableView->setFrame(QRectF(0, 0, width, viewHeight - TopicStyle::kReplyBarHeight));
}

void HostDetailViewController::viewWillAppear(bool animated)
{
    ViewController::viewWillAppear(animated);
    if (NavigationController *navigation = navigationController())
        navigation->setNavigationBarHidden(false, animated);
    if (result == kOpenedFromNotification) {
        navigationItem()->setLeftBarButtonItem(
            new BarButtonItem(QString::fromUtf8(kNotificationBackTitle), BarButtonItem::Style::Plain, [this] { backAction(); }));
    }
    m_tableView->header()->beginRefreshing();
}

void HostDetailViewController::backAction()
{
    dismissViewControllerAnimated(true);
}

void HostDetailViewController::backC()
{
    if (NavigationController *navigation = navigationController())
        navigation->popViewControllerAnimated(true);
}

void HostDetailViewController::backController()
{
    backC();
}

void HostDetailViewController::jsonDiction()
{
    ++page;
    const QString idText = UserIdStore().text();
    forumLog(QStringLiteral("+++++++++ %1").arg(idText.isNull() ? QStringLiteral("(null)") : idText));
    // Always page 1 of 50, whatever `page` holds: the screen shows the first 50 replies.
    jsonString = JsonChangDic::jsonWithDictionary(
        ForumPayloads::topicDetail(model, postModel, FieldValue::integerValue(idText)));
    requstData();
    replyRequst();
}

void HostDetailViewController::requstData()
{
    HttpRequest::GetTopicDetailSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (payload.isNull() || !controller->hasViews())
                return;
            controller->endRefresh();
            controller->replaceHeadView(payload.toObject());
        },
        {}, jsonString);
    if (hasViews())
        m_tableView->reloadData();
}

void HostDetailViewController::replaceHeadView(const QJsonObject &topic)
{
    const QJsonValue title = topic.value(QStringLiteral("title"));
    const QJsonValue content = topic.value(QStringLiteral("topiccontent"));
    height = JsonChangDic::adaptiveWithText(FieldValue::optionalText(content));
    titleH = JsonChangDic::adaptiveWithText(FieldValue::optionalText(title));
    m_headV = new HeadView(QRectF(0, 0, MainScreen::width(), height + TopicStyle::kHeadExtraHeight + titleH));
    m_headV->setBackgroundColor(Qt::white);
    m_tableView->setTableHeaderView(m_headV);
    m_headV->title()->setText(FieldValue::displayText(title));
    m_headV->time()->setText(FieldValue::displayText(topic.value(QStringLiteral("time"))));
    m_headV->content()->setText(FieldValue::displayText(content));
    // The poster comes from the record the opener handed over, not from the answer.
    m_headV->user()->setText(FieldValue::displayText(postModel.username()));
}

void HostDetailViewController::replyRequst()
{
    HttpRequest::GetRepliesLogSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (!controller->hasViews())
                return;
            if (!payload.isNull()) {
                RecordSorting::Replies replies = RecordSorting::splitReplies(payload);
                controller->titels = std::move(replies.highlighted);
                controller->dataSource = std::move(replies.all);
                if (replies.lastParsed)
                    controller->replyListModel = *replies.lastParsed;
            }
            controller->endRefresh();
            controller->m_tableView->reloadData();
        },
        {}, jsonString);
}

void HostDetailViewController::endRefresh()
{
    if (hasViews())
        m_tableView->endRefreshing();
}

int HostDetailViewController::numberOfSectionsInTableView(TableView *)
{
    return int(array.size());
}

int HostDetailViewController::numberOfRowsInSection(TableView *, int section)
{
    if (section == kHighlightedSection)
        return int(titels.size());
    if (section == kAllRepliesSection)
        return int(dataSource.size());
    return 0;
}

TableViewCell *HostDetailViewController::cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    auto *cell = static_cast<HostCell *>(tableView->dequeueReusableCellWithIdentifier(kCellIdentifier, indexPath));
    cell->setSelectionStyle(TableViewCellSelectionStyle::None);
    replyListModel = indexPath.section == kHighlightedSection ? titels.at(indexPath.row) : dataSource.at(indexPath.row);
    cell->getModel(replyListModel);
    return cell;
}

qreal HostDetailViewController::heightForRowAtIndexPath(TableView *, const IndexPath &)
{
    // Measured from the record last parsed or handed to a cell, not the row's own: rows laid
    // out before their cells are built share the last record's height. Kept on purpose.
    return JsonChangDic::adaptiveWithText(FieldValue::optionalText(replyListModel.content()))
           + TopicStyle::kReplyRowExtraHeight;
}

qreal HostDetailViewController::heightForHeaderInSection(TableView *, int)
{
    return TopicStyle::kSectionHeaderHeight;
}

qreal HostDetailViewController::heightForFooterInSection(TableView *, int)
{
    return TopicStyle::kSectionFooterHeight;
}

QWidget *HostDetailViewController::viewForHeaderInSection(TableView *, int section)
{
    const qreal width = MainScreen::width();
    auto *header = new View(QRectF(0, 0, width, TopicStyle::kSectionHeaderHeight));
    header->setBackgroundColor(Qt::white);
    m_label = new Label(QRectF(15, 15, 200, 15));
    header->addSubview(m_label);
    if (section == kHighlightedSection) {
        m_label->setText(QStringLiteral("精彩回复"));
    } else if (section == kAllRepliesSection) {
        m_label->setText(QStringLiteral("全部回复(%1)").arg(dataSource.size()));
    } else {
        m_label->setFrame(QRectF((width - 40) * 0.5, 15, 40, 15));
        m_label->setText(QStringLiteral("END"));
        m_label->setTextColor(TopicStyle::color(TopicStyle::kEndMarkerColor));
        header->setBackgroundColor(TopicStyle::color(TopicStyle::kListBackground));
    }
    return header;
}

void HostDetailViewController::scrollViewDidEndDragging(ScrollView *, bool)
{
    resetPlaceholder();
    m_replyTextView->resignFirstResponder();
}
