// The new-topic screen's views and how they follow the keyboard.

#include "ReleaseViewController.h"

#include "BarButtonItem.h"
#include "Fonts.h"
#include "KeyboardObserver.h"
#include "NavigationController.h"
#include "NavigationItem.h"
#include "ReleaseLayout.h"
#include "View.h"

using namespace ReleaseLayout;

namespace {

const QString kScreenTitle = QStringLiteral("新话题");
const QString kPublishTitle = QStringLiteral("发布");
const QString kTitlePlaceholder = QStringLiteral("标题(最多30个字)");
const QString kBodyPlaceholder = QStringLiteral("请填写正文");

} // namespace

ReleaseViewController::ReleaseViewController() = default;

ReleaseViewController::~ReleaseViewController()
{
    // The base class deletes the view after this object's members; a box going with it
    // posts a keyboard will-hide that must not reach this screen any more.
    disconnect(&KeyboardObserver::shared(), nullptr, this, nullptr);
}

std::shared_ptr<ReleaseViewController> ReleaseViewController::self()
{
    return std::static_pointer_cast<ReleaseViewController>(shared_from_this());
}

bool ReleaseViewController::hasViews() const
{
    return isViewLoaded() && m_titleText && m_content && m_textLabel && m_promptLabel && m_count;
}

void ReleaseViewController::viewDidLoad()
{
    view()->setBackgroundColor(color(kBackground));
    setTitle(kScreenTitle);
    greatUI();
    KeyboardObserver &keyboard = KeyboardObserver::shared();
    connect(&keyboard, &KeyboardObserver::keyboardWillShow, this, &ReleaseViewController::keyboardWillShow);
    connect(&keyboard, &KeyboardObserver::keyboardWillHide, this, &ReleaseViewController::keyboardWillHide);
}

void ReleaseViewController::greatUI()
{
    navigationItem()->setRightBarButtonItem(
        new BarButtonItem(kPublishTitle, BarButtonItem::Style::Plain, [this] { submitAction(); }));

    m_titleText = new TextView(titleFrame(kTitleHeight));
    m_titleText->setBackgroundColor(Qt::white);
    m_titleText->setFont(Fonts::systemFontOfSize(kTitleFont));
    m_titleText->setDelegate(this);
    view()->addSubview(m_titleText);

    m_textLabel = new Label(kTitlePlaceholderFrame);
    m_textLabel->setText(kTitlePlaceholder);
    m_textLabel->setTextColor(color(kPlaceholderColor));
    m_titleText->addSubview(m_textLabel);

    m_content = new TextView(contentFrame(height));
    m_content->setDelegate(this);
    view()->addSubview(m_content);

    m_promptLabel = new Label(kBodyPlaceholderFrame);
    m_promptLabel->setText(kBodyPlaceholder);
    m_promptLabel->setTextColor(color(kPlaceholderColor));
    m_content->addSubview(m_promptLabel);

    m_count = new Label(countFrame(0));
    m_count->setText(QStringLiteral("%1字").arg(kBodyCountFrom));
    m_count->setTextColor(color(kPlaceholderColor));
    view()->addSubview(m_count);
}

void ReleaseViewController::viewWillAppear(bool animated)
{
    ViewController::viewWillAppear(animated);
    m_titleText->becomeFirstResponder();
    if (NavigationController *navigation = navigationController())
        navigation->setNavigationBarHidden(false, animated);
}

void ReleaseViewController::keyboardWillShow(const KeyboardNotification &notification)
{
    if (!hasViews())
        return;
    height = notification.frameEnd.height();
    m_content->setFrame(contentFrame(height + kContentKeyboardGap));
    m_count->setFrame(countFrame(height));
}

void ReleaseViewController::keyboardWillHide(const KeyboardNotification &)
{
    if (!hasViews())
        return;
    m_content->setFrame(contentFrame(0));
    m_count->setFrame(countFrame(0));
}
