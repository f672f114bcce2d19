// What assistive tools see of the kit's controls: roles, names taken from what they show or
// from accessibility labels, the actions they offer, and a tree walkable from the window.
#include "KitTestSupport.h"

#include "AccessibleTree.h"
#include "BarButtonItem.h"
#include "Button.h"
#include "EventLoop.h"
#include "ImageView.h"
#include "Label.h"
#include "NavigationBar.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "QStringPrinter.h"
#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "TextView.h"
#include "ViewController.h"
#include "ViewSupport.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QPlainTextEdit>
#include <QSet>

namespace {

const QString kPress = QAccessibleActionInterface::pressAction();
const QString kSetFocus = QAccessibleActionInterface::setFocusAction();
// The picture this test ships in its resources (see CMakeLists.txt).
const QString kPictureName = QStringLiteral("头像");
// A refresh action begun twice at once would have run twice by then: both were due together.
constexpr int kSecondActionWaitMs = 100;

QAccessibleInterface *accessibleOf(QObject *object)
{
    return QAccessible::queryAccessibleInterface(object);
}

QString nameOf(QObject *object)
{
    return accessibleOf(object)->text(QAccessible::Name);
}

// A row whose labels were added bottom-up and right to left, one of them inside a holder
// view, one hidden: reading order must come from where they lie.
class CardCell : public TableViewCell
{
public:
    explicit CardCell(const QString &identifier) : TableViewCell(identifier)
    {
        auto *holder = new View(QRectF(0, 30, 300, 30));
        holder->addSubview(body);
        contentView()->addSubview(holder);
        contentView()->addSubview(age);
        contentView()->addSubview(title);
        contentView()->addSubview(hidden);
        hidden->setText(QStringLiteral("不该读出"));
        hidden->setHidden(true);
    }

    Label *body = new Label(QRectF(15, 0, 280, 20));
    Label *age = new Label(QRectF(200, 10, 100, 15));
    Label *title = new Label(QRectF(15, 10, 150, 15));
    Label *hidden = new Label(QRectF(0, 0, 100, 10));
};

class Cards : public TableViewDataSource
{
public:
    int rows = 3;
    int numberOfRowsInSection(TableView *, int) override { return rows; }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &indexPath) override
    {
        auto *cell = static_cast<CardCell *>(table->dequeueReusableCellWithIdentifier("card"));
        const int n = indexPath.row + 1;
        cell->title->setText(QStringLiteral("第%1条").arg(n));
        cell->age->setText(QStringLiteral("%1分钟前").arg(n));
        cell->body->setText(QStringLiteral("内容%1").arg(n));
        return cell;
    }
};

class AccessibilityTest : public ::testing::Test
{
protected:
    void SetUp() override { window = kittest::shownWindow(); }

    TableView *addCardTable()
    {
        auto *table = new TableView(QRectF(0, 0, 375, 400));
        table->registerClass<CardCell>("card");
        table->setRowHeight(70);
        table->setDataSource(&cards);
        window->addSubview(table);
        table->reloadData();
        // Rows are laid out once control returns to the event loop.
        EXPECT_TRUE(testsupport::waitUntil([this, table] { return table->liveCellCount() == cards.rows; }));
        return table;
    }

    Cards cards;
    std::unique_ptr<Window> window;
};

TEST_F(AccessibilityTest, buttonReadsItsTitleAndItsPressIsOneTap)
{
    auto *button = new Button(QRectF(20, 100, 80, 30));
    button->setTitle(QStringLiteral("发送"));
    window->addSubview(button);
    int taps = 0;
    QObject::connect(button, &Button::touchUpInside, [&taps] { ++taps; });

    QAccessibleInterface *node = accessibleOf(button);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->role(), QAccessible::Button);
    EXPECT_EQ(node->text(QAccessible::Name), "发送");
    EXPECT_FALSE(node->state().disabled);
    ASSERT_NE(node->actionInterface(), nullptr);
    EXPECT_EQ(node->actionInterface()->actionNames(), QStringList{kPress});

    node->actionInterface()->doAction(kPress);
    EXPECT_EQ(taps, 1);
    node->actionInterface()->doAction(kSetFocus);
    EXPECT_EQ(taps, 1);

    button->setTitle(QStringLiteral("取消"));
    EXPECT_EQ(node->text(QAccessible::Name), "取消");
}

TEST_F(AccessibilityTest, controlsAFingerCannotReachCannotBePressed)
{
    auto *untouchable = new Button(QRectF(20, 100, 80, 30));
    untouchable->setUserInteractionEnabled(false);
    auto *holder = new View(QRectF(0, 200, 375, 50));
    holder->setUserInteractionEnabled(false);
    auto *held = new Button(QRectF(20, 10, 80, 30));
    holder->addSubview(held);
    auto *hidden = new Button(QRectF(20, 300, 80, 30));
    hidden->setHidden(true);
    for (QWidget *view : {static_cast<QWidget *>(untouchable), static_cast<QWidget *>(holder),
                          static_cast<QWidget *>(hidden)})
        window->addSubview(view);
    int taps = 0;
    for (Button *button : {untouchable, held, hidden})
        QObject::connect(button, &Button::touchUpInside, [&taps] { ++taps; });

    for (Button *button : {untouchable, held}) {
        QAccessibleInterface *node = accessibleOf(button);
        EXPECT_TRUE(node->state().disabled);
        EXPECT_TRUE(node->actionInterface()->actionNames().isEmpty());
        node->actionInterface()->doAction(kPress);
    }
    QAccessibleInterface *hiddenNode = accessibleOf(hidden);
    EXPECT_TRUE(hiddenNode->state().invisible);
    hiddenNode->actionInterface()->doAction(kPress);
    EXPECT_EQ(taps, 0);

    hidden->setHidden(false);
    EXPECT_FALSE(hiddenNode->state().invisible);
    hiddenNode->actionInterface()->doAction(kPress);
    EXPECT_EQ(taps, 1);
}

TEST_F(AccessibilityTest, labelsReadTheirTextUnlessGivenAnAccessibilityLabel)
{
    auto *label = new Label(QRectF(20, 100, 200, 20));
    label->setText(QStringLiteral("全部回复"));
    auto *closeButton = new Button(QRectF(20, 140, 30, 30));
    auto *panel = new View(QRectF(0, 200, 375, 100));
    for (View *view : {static_cast<View *>(label), static_cast<View *>(closeButton), panel})
        window->addSubview(view);

    EXPECT_EQ(accessibleOf(label)->role(), QAccessible::StaticText);
    EXPECT_EQ(nameOf(label), "全部回复");
    ViewSupport::setAccessibilityLabel(label, QStringLiteral("所有回复"));
    EXPECT_EQ(nameOf(label), "所有回复");
    ViewSupport::setAccessibilityLabel(label, QString());
    EXPECT_EQ(nameOf(label), "全部回复");

    // A button without a title (a picture only, say) has no name of its own.
    EXPECT_EQ(nameOf(closeButton), "");
    ViewSupport::setAccessibilityLabel(closeButton, QStringLiteral("关闭"));
    EXPECT_EQ(nameOf(closeButton), "关闭");

    ViewSupport::setAccessibilityLabel(panel, QStringLiteral("工具栏"));
    EXPECT_EQ(nameOf(panel), "工具栏");
}

TEST_F(AccessibilityTest, picturesAreGraphicsNamedByLabelOrByTheirPicturesName)
{
    auto *picture = new ImageView(QRectF(15, 600, 20, 20));
    window->addSubview(picture);
    QAccessibleInterface *node = accessibleOf(picture);
    EXPECT_EQ(node->role(), QAccessible::Graphic);
    EXPECT_EQ(node->text(QAccessible::Name), "");

    picture->setImageNamed(kPictureName);
    EXPECT_EQ(node->text(QAccessible::Name), kPictureName);
    ViewSupport::setAccessibilityLabel(picture, QStringLiteral("用户头像"));
    EXPECT_EQ(node->text(QAccessible::Name), "用户头像");
    ViewSupport::setAccessibilityLabel(picture, QString());

    // Any other image has no name to give.
    picture->setImage(QImage(20, 20, QImage::Format_ARGB32));
    EXPECT_EQ(node->text(QAccessible::Name), "");
}

TEST_F(AccessibilityTest, textBoxIsNamedByThePlaceholderThatShowsAndValuedByItsText)
{
    auto *box = new TextView(QRectF(45, 500, 265, 50));
    window->addSubview(box);
    auto *hint = new Button(QRectF(10, 5, 200, 15));
    hint->setTitle(QStringLiteral("写点什么"));
    box->addSubview(hint);

    QAccessibleInterface *node = accessibleOf(box);
    EXPECT_EQ(node->role(), QAccessible::EditableText);
    EXPECT_EQ(node->text(QAccessible::Name), "写点什么");
    EXPECT_EQ(node->text(QAccessible::Value), "");
    box->setText(QStringLiteral("第一行\n第二行"));
    EXPECT_EQ(node->text(QAccessible::Value), "第一行\n第二行");

    hint->setHidden(true);
    EXPECT_EQ(node->text(QAccessible::Name), "");
    auto *other = new Label(QRectF(10, 5, 200, 15));
    other->setText(QStringLiteral("说点什么"));
    box->addSubview(other);
    EXPECT_EQ(node->text(QAccessible::Name), "说点什么");
    ViewSupport::setAccessibilityLabel(box, QStringLiteral("回复内容"));
    EXPECT_EQ(node->text(QAccessible::Name), "回复内容");
}

TEST_F(AccessibilityTest, textBoxStandsForItsEditorAndItsFocusActionStartsEditing)
{
    auto *box = new TextView(QRectF(45, 500, 265, 50));
    window->addSubview(box);
    auto *hint = new Button(QRectF(10, 5, 200, 15));
    box->addSubview(hint);

    QAccessibleInterface *node = accessibleOf(box);
    ASSERT_EQ(node->childCount(), 1);
    EXPECT_EQ(node->child(0)->object(), hint);
    EXPECT_EQ(node->indexOfChild(node->child(0)), 0);
    EXPECT_EQ(node->indexOfChild(accessibleOf(box->inputWidget())), -1);

    EXPECT_TRUE(node->state().editable);
    EXPECT_TRUE(node->state().focusable);
    EXPECT_FALSE(node->state().focused);
    EXPECT_EQ(node->actionInterface()->actionNames(), QStringList{kSetFocus});
    node->actionInterface()->doAction(kSetFocus);
    EXPECT_TRUE(box->isFirstResponder());
    EXPECT_TRUE(node->state().focused);

    box->resignFirstResponder();
    box->setEditable(false);
    EXPECT_TRUE(node->state().readOnly);
    EXPECT_FALSE(node->state().focusable);
    EXPECT_TRUE(node->actionInterface()->actionNames().isEmpty());
    node->actionInterface()->doAction(kSetFocus);
    EXPECT_FALSE(box->isFirstResponder());
}

TEST_F(AccessibilityTest, rowsReadTheirShownLabelsInReadingOrder)
{
    TableView *table = addCardTable();
    EXPECT_EQ(accessibleOf(table)->role(), QAccessible::List);
    EXPECT_EQ(testsupport::shownAccessibleNames(window.get(), QAccessible::ListItem),
              (QStringList{"第1条, 1分钟前, 内容1", "第2条, 2分钟前, 内容2", "第3条, 3分钟前, 内容3"}));

    auto *second = static_cast<CardCell *>(table->cellForRowAtIndexPath({0, 1}));
    ViewSupport::setAccessibilityLabel(second->age, QStringLiteral("刚才"));
    EXPECT_EQ(nameOf(second), "第2条, 刚才, 内容2");
    second->body->setText(QString());
    EXPECT_EQ(nameOf(second), "第2条, 刚才");

    EXPECT_FALSE(accessibleOf(second)->state().selected);
    table->selectRowAtIndexPath({0, 1});
    EXPECT_TRUE(accessibleOf(second)->state().selected);
}

TEST_F(AccessibilityTest, refreshControlsReadTheirStateAndBeginRefreshingWhenPressed)
{
    TableView *table = addCardTable();
    int reloads = 0;
    int pages = 0;
    auto *header = new RefreshHeader([&reloads] { ++reloads; });
    auto *footer = new RefreshFooter([&pages] { ++pages; });
    table->setHeader(header);
    table->setFooter(footer);

    QAccessibleInterface *headerNode = accessibleOf(header);
    QAccessibleInterface *footerNode = accessibleOf(footer);
    EXPECT_EQ(headerNode->role(), QAccessible::Button);
    EXPECT_EQ(footerNode->role(), QAccessible::Button);
    EXPECT_EQ(headerNode->text(QAccessible::Name), "下拉可以刷新");
    EXPECT_EQ(footerNode->text(QAccessible::Name), "上拉可以加载更多");
    EXPECT_FALSE(headerNode->state().busy);

    headerNode->actionInterface()->doAction(kPress);
    EXPECT_EQ(headerNode->text(QAccessible::Name), "正在刷新数据中...");
    EXPECT_TRUE(headerNode->state().busy);
    headerNode->actionInterface()->doAction(kPress);
    EXPECT_TRUE(testsupport::waitUntil([&reloads] { return reloads == 1; }));
    testsupport::spinFor(kSecondActionWaitMs);
    EXPECT_EQ(reloads, 1);
    header->endRefreshing();
    EXPECT_EQ(headerNode->text(QAccessible::Name), "下拉可以刷新");

    footerNode->actionInterface()->doAction(kPress);
    EXPECT_EQ(footerNode->text(QAccessible::Name), "正在加载更多的数据...");
    EXPECT_TRUE(testsupport::waitUntil([&pages] { return pages == 1; }));
}

TEST_F(AccessibilityTest, navigationBarReadsTitleItemsAndBackWithoutItsArrow)
{
    auto home = std::make_shared<ViewController>();
    home->setTitle(QStringLiteral("首页"));
    auto navigation = std::make_shared<NavigationController>(home);
    window->setRootViewController(navigation);
    auto detail = std::make_shared<ViewController>();
    detail->setTitle(QStringLiteral("详情"));
    int published = 0;
    detail->navigationItem()->setRightBarButtonItem(
        new BarButtonItem(QStringLiteral("发布"), BarButtonItem::Style::Plain, [&published] { ++published; }));
    navigation->pushViewController(detail, false);
    ASSERT_TRUE(testsupport::waitUntil(
        [&] { return navigation->visibleViewController() == detail.get() && !navigation->isTransitioning(); }));

    EXPECT_EQ(testsupport::shownAccessibleNames(navigation->navigationBar(), QAccessible::StaticText),
              QStringList{"详情"});
    EXPECT_EQ(testsupport::shownAccessibleNames(navigation->navigationBar(), QAccessible::Button),
              (QStringList{"首页", "发布"}));

    const auto publish = testsupport::accessibleNamed(window.get(), QAccessible::Button, QStringLiteral("发布"));
    ASSERT_EQ(publish.size(), 1);
    publish.first()->actionInterface()->doAction(kPress);
    EXPECT_EQ(published, 1);

    const auto back = testsupport::accessibleNamed(window.get(), QAccessible::Button, QStringLiteral("首页"));
    ASSERT_EQ(back.size(), 1);
    back.first()->actionInterface()->doAction(kPress);
    EXPECT_TRUE(testsupport::waitUntil([&] { return navigation->visibleViewController() == home.get(); }));
}

TEST_F(AccessibilityTest, treeFromTheWindowReachesEveryControlAndEachNodeKnowsItsPlace)
{
    TableView *table = addCardTable();
    table->setHeader(new RefreshHeader());
    auto *box = new TextView(QRectF(45, 500, 265, 50));
    window->addSubview(box);
    auto *hint = new Label(QRectF(10, 5, 200, 15));
    box->addSubview(hint);
    auto *send = new Button(QRectF(320, 500, 50, 25));
    window->addSubview(send);

    const QList<QAccessibleInterface *> tree = testsupport::accessibleTree(window.get());
    QSet<QObject *> reached;
    for (QAccessibleInterface *node : tree) {
        reached << node->object();
        for (int i = 0; i < node->childCount(); ++i) {
            QAccessibleInterface *child = node->child(i);
            ASSERT_NE(child, nullptr);
            EXPECT_EQ(child->parent(), node) << child->object()->metaObject()->className();
            EXPECT_EQ(node->indexOfChild(child), i) << child->object()->metaObject()->className();
        }
    }
    for (QObject *control : {static_cast<QObject *>(table), static_cast<QObject *>(table->header()),
                             static_cast<QObject *>(table->cellForRowAtIndexPath({0, 2})),
                             static_cast<QObject *>(box), static_cast<QObject *>(hint), static_cast<QObject *>(send)})
        EXPECT_TRUE(reached.contains(control)) << control->metaObject()->className();
    EXPECT_FALSE(reached.contains(box->inputWidget()));
}

} // namespace
