#pragma once
// One board: its header card, then its pinned topics, its guide topics and its paged topic
// list. Pulling down reloads page 1, pulling up asks for the next page (there is no last
// page); "发布" opens the composer, whose publish (`passValue` 119) makes the list reload when
// the screen shows again; a row opens the topic. Main thread.

#include "DetailView.h"
#include "DetailViewDelegate.h"
#include "ListModel.h"
#include "PostModel.h"
#include "ReleaseViewControllerDelegate.h"
#include "TableView.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "View.h"
#include "ViewController.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QPointer>

class DetailViewController : public ViewController,
                             public TableViewDataSource,
                             public TableViewDelegate,
                             public DetailViewDelegate,
                             public ReleaseViewControllerDelegate
{
    Q_OBJECT

public:
    // The header card's tappable areas.
    static constexpr int kBackTag = 101;
    static constexpr int kSubmitTag = 102;

    DetailViewController();
    ~DetailViewController() override;

    // Set by the opener.
    ListModel model;
    QJsonValue userID;
    QString str;
    QString tagStr;

    // What the screen holds.
    QList<PostModel> stickArray;   // pinned topics (topictype 1, 3)
    QList<PostModel> mutableArray; // guide topics (topictype 2, 4)
    QList<PostModel> datasource;   // the paged topic list
    int page = 0;
    QJsonObject jsonDic;
    QString jsonString;
    QString topJson;
    PostModel postModel; // the record last handed to a cell; row heights read it
    qint64 value = 0;

    TableView *tableView() const { return m_tableView; }
    DetailView *V() const { return m_V; }
    View *titleView() const { return m_titleView; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    void jsonDiction(int pageIndex);
    void requstData();
    void topTopic();
    void requstTopTopic();
    void handleRefresh();
    void endRefresh();
    void submitAction();
    void handleAction();
    void rightAction() {}
    void greatUI();

    void back(int tag) override;
    void passValue(qint64 passed) override;

    int numberOfSectionsInTableView(TableView *tableView) override;
    int numberOfRowsInSection(TableView *tableView, int section) override;
    TableViewCell *cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;
    qreal heightForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;
    void didSelectRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) override;

private:
    std::shared_ptr<DetailViewController> self();
    bool hasViews() const { return isViewLoaded() && m_tableView; }
    const QList<PostModel> &listOfSection(int section) const;
    void openComposer(bool asDelegate);

    QPointer<TableView> m_tableView;
    QPointer<DetailView> m_V;
    QPointer<View> m_titleView;
    QPointer<View> m_tempView;
};
