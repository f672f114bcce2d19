#pragma once
// The home screen, the root of the navigation stack: a banner carousel of promoted items as the
// table's header (built once the ads answer arrives) over one row per forum board. A row opens
// the board; a banner item opens its topic (`urltype` 0, absent or not a number) or its web
// page (any other integer). On first run it asks for a temporary user; the board list is asked
// for again on every appearance and by pulling down. Main thread.
//
// The class keeps the name the rest of the app knows the home screen by, in its own namespace
// beside the kit's base class of the same name.

#include "CircleView.h"
#include "CircleViewDelegate.h"
#include "ListModel.h"
#include "PostModel.h"
#include "TableView.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "ViewController.h"

#include <QJsonValue>
#include <QList>
#include <QPointer>
#include <QStringList>

class UserDefaults;

namespace Home {

class ViewController : public ::ViewController,
                       public TableViewDataSource,
                       public TableViewDelegate,
                       public CircleViewDelegate
{
    Q_OBJECT

public:
    static constexpr qreal kBannerHeight = 195;
    static constexpr qreal kFooterHeight = 60;
    // Handed to a topic opened from the banner as its `count` (its `result` is the topic
    // screen's banner mark).
    static constexpr qint64 kBannerCount = 100;
    static inline const char *const kTitle = "Quorvel";
    static inline const char *const kAdvertisingClickEvent = "advertisingClick";

    ViewController();
    ~ViewController() override;

    // The banner items, three lists in answer order: index i of each describes item i.
    QStringList headerArray;      // picture addresses (`adico`)
    QList<PostModel> mutableArray; // the items
    QList<QJsonValue> modelArray;  // their `tid`
    QList<ListModel> listArray;    // the boards shown

    QString jsonSting;  // the temporary-user request's text
    QString listString; // the board-list request's text
    QString string;     // the stored user id text
    qint64 number = 0;  // its integer value, sent with requests and handed on
    QJsonValue userID;  // from the temporary-user answer
    QString userIDStr;
    UserDefaults *myUserID = nullptr;
    ListModel listModel; // the board last handed to a cell (or selected, or the temporary user)
    PostModel pModel;
    QString idStr;  // `sectionid` of the last configured cell's board
    QString tagStr; // its `sectiontag`
    QJsonValue urlType;
    qint64 count = 0;
    qint64 num = 0;

    TableView *tableView() const { return m_tableView; }
    // The carousel, once the ads answer built it.
    CircleView *circleView() const { return m_circleView; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;

    void requstData();
    void jsonDictionary();
    void requstUserID();
    void saveUserID() {}
    void listDictionary();
    void listRequst();
    void greatUI();
    void endRefresh();

    int numberOfRowsInSection(TableView *tableView, int section) override;
    TableViewCell *cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;
    void didSelectRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;
    void cycleScrollView(CircleView *view, int didSelectItemAtIndex) override;

private:
    std::shared_ptr<ViewController> self();
    bool hasViews() const { return isViewLoaded() && m_tableView; }

    QPointer<TableView> m_tableView;
    QPointer<CircleView> m_circleView;
};

} // namespace Home
