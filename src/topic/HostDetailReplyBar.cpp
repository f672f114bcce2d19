// The reply bar of HostDetailViewController: its views, its text rules, how it follows the
// keyboard, and sending a reply.

#include "HostDetailViewController.h"

#include "Button.h"
#include "ConnectionCheck.h"
#include "Fonts.h"
#include "ForumPayloads.h"
#include "HttpRequest.h"
#include "ImageView.h"
#include "JsonChangDic.h"
#include "KeyboardObserver.h"
#include "MainScreen.h"
#include "NoticeOverlay.h"
#include "PostOutcome.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "TextInputMode.h"
#include "TextView.h"
#include "TopicStyle.h"
#include "UserIdStore.h"
#include "ViewSupport.h"
#include "Window.h"

#include <QJsonObject>

namespace {

const QString kPlaceholder = QStringLiteral("来一条高能回帖");
const QString kOfflineNotice = QStringLiteral("网络连接失败");

// The bar's frames, in points; "above" counts up from the bottom of the screen.
constexpr int kReplyFont = 14;
constexpr qreal kIconLeft = 15;
constexpr qreal kIconSize = 20;
constexpr qreal kIconFirstAbove = 96;
constexpr qreal kIconRestAbove = 38;
constexpr qreal kIconAfterKeyboardAbove = 36;
constexpr qreal kBoxLeft = 45;
constexpr qreal kBoxRightRoom = 110;
constexpr qreal kBoxHeight = 50;
constexpr qreal kBoxFirstAbove = 100;
constexpr qreal kBoxRestAbove = 40;
constexpr qreal kBoxMaxGrowth = 41;
constexpr qreal kSendRightRoom = 55;
constexpr qreal kSendRestAbove = 102;
constexpr QSizeF kSendSize(50, 25);
// Over the keyboard, the icon, box and send button share one top.
constexpr qreal kAboveKeyboard = 37;
const QRectF kPlaceholderFrame(10, 5, 200, 15);

qreal screenW() { return MainScreen::width(); }
qreal screenH() { return MainScreen::height(); }

} // namespace

void HostDetailViewController::buildReplyBar()
{
    const qreal W = screenW();
    const qreal H = screenH();

    m_replyImage = new ImageView(QRectF(kIconLeft, H - kIconFirstAbove, kIconSize, kIconSize));
    m_replyImage->setImageNamed(QStringLiteral("回帖"));
    view()->addSubview(m_replyImage);

    m_replyTextView = new TextView(QRectF(kBoxLeft, H - kBoxFirstAbove, W - kBoxRightRoom, kBoxHeight));
    m_replyTextView->setFont(Fonts::systemFontOfSize(kReplyFont));
    m_replyTextView->setDelegate(this);
    // Named by its placeholder also while editing, when the placeholder is hidden.
    ViewSupport::setAccessibilityLabel(m_replyTextView, kPlaceholder);
    m_replyTextView->setContentOffset(QPointF(0, 0));
    view()->addSubview(m_replyTextView);

    m_textlabel = new Button(kPlaceholderFrame);
    m_textlabel->setTitle(kPlaceholder);
    m_textlabel->setTitleColor(TopicStyle::color(TopicStyle::kMutedColor));
    m_textlabel->setContentHorizontalAlignment(ContentHorizontalAlignment::Left);
    connect(m_textlabel, &Button::touchUpInside, this, &HostDetailViewController::textlabelAction);
    m_replyTextView->addSubview(m_textlabel);

    m_sender = new Button(QRectF(QPointF(W - kSendRightRoom, H - kSendRestAbove), kSendSize));
    m_sender->setTitle(QStringLiteral("发送"));
    m_sender->setTitleColor(Qt::black);
    m_sender->setContentHorizontalAlignment(ContentHorizontalAlignment::Left);
    m_sender->setHidden(true);
    connect(m_sender, &Button::touchUpInside, this, &HostDetailViewController::handleAction);
    view()->addSubview(m_sender);

    m_replyImage->setFrame(QRectF(kIconLeft, H - kIconRestAbove, kIconSize, kIconSize));
    m_replyTextView->setFrame(QRectF(kBoxLeft, H - kBoxRestAbove, W - kBoxRightRoom, kBoxHeight));

    KeyboardObserver &keyboard = KeyboardObserver::shared();
    connect(&keyboard, &KeyboardObserver::keyboardWillShow, this, &HostDetailViewController::keyboardWillShow);
    connect(&keyboard, &KeyboardObserver::keyboardWillHide, this, &HostDetailViewController::keyboardWillHide);
}

bool HostDetailViewController::barIsAlive() const
{
    return hasViews() && m_replyTextView && m_replyImage && m_sender && m_textlabel;
}

void HostDetailViewController::resetPlaceholder()
{
    m_textlabel->setFrame(kPlaceholderFrame);
}

void HostDetailViewController::textlabelAction()
{
    m_replyTextView->becomeFirstResponder();
}

void HostDetailViewController::textViewDidBeginEditing(TextView *)
{
    m_textlabel->setHidden(true);
}

bool HostDetailViewController::shouldChangeTextInRange(TextView *textView, const Range &range, const QString &text)
{
    // The emoji keyboard can change nothing, deletions included.
    if (TextInputMode::currentInputMode().isEmoji())
        return false;
    if (textView != m_replyTextView || text.isEmpty())
        return true;
    if (textView->text().size() - range.length + text.size() > TopicStyle::kReplyMaxLength)
        return false;
    if (text == u"\n") {
        textView->resignFirstResponder();
        resetPlaceholder();
        return false;
    }
    return true;
}

void HostDetailViewController::textViewDidChange(TextView *textView)
{
    const qreal h = JsonChangDic::adaptHeight(textView->text());
    // Pasted text may arrive longer than the limit.
    if (textView->text().size() > TopicStyle::kReplyMaxLength)
        textView->setText(textView->text().left(TopicStyle::kReplyMaxLength));
    if (h < kBoxMaxGrowth)
        m_replyTextView->setFrame(QRectF(kBoxLeft, screenH() - kAboveKeyboard - height, screenW() - kBoxRightRoom, h));
}

void HostDetailViewController::keyboardWillShow(const KeyboardNotification &notification)
{
    if (!barIsAlive())
        return;
    const qreal W = screenW();
    const qreal top = screenH() - kAboveKeyboard - notification.frameEnd.height();
    height = notification.frameEnd.height();
    m_tableView->setFrame(QRectF(0, 0, W, view()->frame().height() - TopicStyle::kReplyBarHeight - height));
    m_sender->setHidden(false);
    m_replyTextView->setFrame(QRectF(kBoxLeft, top, W - kBoxRightRoom, kBoxHeight));
    m_replyImage->setFrame(QRectF(kIconLeft, top, kIconSize, kIconSize));
    m_sender->setFrame(QRectF(QPointF(W - kSendRightRoom, top), kSendSize));
}

void HostDetailViewController::keyboardWillHide(const KeyboardNotification &)
{
    if (!barIsAlive())
        return;
    const qreal W = screenW();
    const qreal H = screenH();
    m_tableView->setFrame(QRectF(0, 0, W, view()->frame().height() - TopicStyle::kReplyBarHeight));
    m_sender->setFrame(QRectF(QPointF(W - kSendRightRoom, H - kSendRestAbove), kSendSize));
    m_sender->setHidden(true);
    if (m_replyTextView->text().isEmpty())
        m_textlabel->setHidden(false);
    m_replyTextView->setFrame(QRectF(kBoxLeft, H - kBoxRestAbove, W - kBoxRightRoom, kBoxHeight));
    m_replyImage->setFrame(QRectF(kIconLeft, H - kIconAfterKeyboardAbove, kIconSize, kIconSize));
}

bool HostDetailViewController::isConnectionAvailable() const
{
    return ConnectionCheck::isConnectionAvailable();
}

void HostDetailViewController::alterView()
{
    QWidget *host = Window::of(view());
    if (!host)
        host = view()->window();
    m_hu = NoticeOverlay::showHUDAddedTo(host, true);
    m_hu->hideAfterDelay(NoticeOverlay::kDefaultDuration);
}

void HostDetailViewController::showNotice(const QString &text)
{
    alterView();
    m_hu->setLabelText(text);
}

void HostDetailViewController::handleAction()
{
    resetPlaceholder();
    const bool reachable = isConnectionAvailable();
    if (m_replyTextView->text().isEmpty()) {
        // Nothing turns the button back on during this visit: an empty send kills it.
        m_sender->setUserInteractionEnabled(false);
        return;
    }
    if (!reachable) {
        showNotice(kOfflineNotice);
        return;
    }
    m_sender->setUserInteractionEnabled(true);
    // Its reload runs after the header's slide-in, behind the reply sent below.
    m_tableView->header()->beginRefreshing();
    titels.clear();
    dataSource.clear();
    m_replyTextView->resignFirstResponder();
    if (result == kOpenedFromBanner)
        reply();
    else
        replyJson();
    jsonDiction();
    m_replyTextView->setText(QString());
}

void HostDetailViewController::buildReply(const QJsonValue &replyTid, const QJsonValue &title)
{
    const QJsonObject payload =
        ForumPayloads::reply(model, replyTid, title, UserIdStore().userId(), m_replyTextView->text());
    replyString = JsonChangDic::jsonWithDictionary(payload);
    replyTopic();
}

void HostDetailViewController::replyJson()
{
    buildReply(postModel.tid(), postModel.title());
}

void HostDetailViewController::reply()
{
    // The banner path sends the screen's own topic id and, as its title, the poster's name.
    buildReply(tid, postModel.username());
}

void HostDetailViewController::replyTopic()
{
    HttpRequest::GetRepliesleTopicSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            if (!controller->hasViews())
                return;
            controller->m_textlabel->setHidden(false);
            controller->showNotice(PostOutcome::notice(PostOutcome::Kind::Reply, payload));
            controller->m_tableView->reloadData();
            controller->endRefresh();
        },
        {}, replyString);
}
