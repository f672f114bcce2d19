#pragma once
// One topic: the topic as the table's header, its highlighted and ordinary replies in
// sections, and the reply bar at the bottom. Reloads on every appearance. Opened from a
// board list (pushed), the home banner (pushed, `result` 120) or a notification (presented
// modally, `result` 110). Main thread.

#include "Button.h"
#include "HeadView.h"
#include "ImageView.h"
#include "Label.h"
#include "ListModel.h"
#include "NoticeOverlay.h"
#include "PostModel.h"
#include "ReplyListModel.h"
#include "TableView.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "TextView.h"
#include "TextViewDelegate.h"
#include "ViewController.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QPointer>
#include <QStringList>

struct KeyboardNotification;

class HostDetailViewController : public ViewController,
                                 public TableViewDataSource,
                                 public TableViewDelegate,
                                 public TextViewDelegate
{
    Q_OBJECT

public:
    // Opener codes carried in `result`.
    static constexpr qint64 kOpenedFromNotification = 110;
    static constexpr qint64 kOpenedFromBanner = 120;
    // The bar's left item when a notification opened the screen; it dismisses the presentation.
    static inline const char *const kNotificationBackTitle = "返回";

    HostDetailViewController();
    ~HostDetailViewController() override;

    // Set by the opener before the screen is shown.
    ListModel model;
    PostModel postModel;
    QJsonValue tid;
    QJsonValue userID;
    qint64 result = 0;
    qint64 count = 0;

    // What the screen holds.
    qint64 page = 0;
    QString jsonString;
    QString replyString;
    QList<ReplyListModel> titels;     // highlighted replies (istop 1)
    QList<ReplyListModel> dataSource; // ordinary replies (istop 0)
    QStringList array;                // only its count, the number of sections, is used
    ReplyListModel replyListModel;    // the record last parsed or handed to a cell
    qreal height = 0;                 // topic body height, then the keyboard's height
    qreal titleH = 0;

    // The views live in the screen's view, which its navigation controller may take down
    // before this object; hence the guarded pointers.
    HeadView *headV() const { return m_headV; }
    TableView *tableView() const { return m_tableView; }
    Label *label() const { return m_label; }
    ImageView *replyImage() const { return m_replyImage; }
    TextView *replyTextView() const { return m_replyTextView; }
    Button *textlabel() const { return m_textlabel; }
    Button *sender() const { return m_sender; }
    NoticeOverlay *hu() const { return m_hu; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;

    void backAction();
    void backC();
    void backController();

    // Loading: builds the shared request text and asks for the topic and its replies.
    void jsonDiction();
    void requstData();
    void replyRequst();
    void endRefresh();

    // Replying.
    void textlabelAction();
    void handleAction();
    void replyJson();
    void reply();
    void replyTopic();

    bool isConnectionAvailable() const;
    void alterView();

    // Table.
    int numberOfSectionsInTableView(TableView *tableView) override;
    int numberOfRowsInSection(TableView *tableView, int section) override;
    TableViewCell *cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;
    qreal heightForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;
    qreal heightForHeaderInSection(TableView *tableView, int section) override;
    qreal heightForFooterInSection(TableView *tableView, int section) override;
    QWidget *viewForHeaderInSection(TableView *tableView, int section) override;
    void scrollViewDidEndDragging(ScrollView *scrollView, bool willDecelerate) override;

    // Reply text rules.
    void textViewDidBeginEditing(TextView *textView) override;
    bool shouldChangeTextInRange(TextView *textView, const Range &range, const QString &text) override;
    void textViewDidChange(TextView *textView) override;

    void keyboardWillShow(const KeyboardNotification &notification);
    void keyboardWillHide(const KeyboardNotification &notification);

private:
    std::shared_ptr<HostDetailViewController> self();
    // Whether the screen's views still exist: an answer can arrive after the screen's
    // navigation controller has gone and taken the views with it.
    bool hasViews() const;
    void buildReplyBar();
    void replaceHeadView(const QJsonObject &topic);
    void resetPlaceholder();
    // The keyboard can come and go while the screen's views are being taken down.
    bool barIsAlive() const;
    void showNotice(const QString &text);
    // The board-path and banner-path reply requests differ only in `tid` and `title`.
    void buildReply(const QJsonValue &replyTid, const QJsonValue &title);

    QPointer<HeadView> m_headV;
    QPointer<TableView> m_tableView;
    QPointer<Label> m_label;
    QPointer<ImageView> m_replyImage;
    QPointer<TextView> m_replyTextView;
    QPointer<Button> m_textlabel;
    QPointer<Button> m_sender;
    QPointer<NoticeOverlay> m_hu;
};
