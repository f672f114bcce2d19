#pragma once
// The new-topic screen: a title box, a body box with a counter of the characters left, and
// "发布" in the navigation bar. Publishing sends the topic, leaves the screen at once and tells
// the opener; the server's answer is shown over whatever is on screen by then. Main thread.

#include "Label.h"
#include "ListModel.h"
#include "NoticeOverlay.h"
#include "TextView.h"
#include "TextViewDelegate.h"
#include "ViewController.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QPointer>

#include <memory>

struct KeyboardNotification;

class ReleaseViewController : public ViewController, public TextViewDelegate
{
    Q_OBJECT

public:
    // Handed to the delegate after a publish.
    static constexpr qint64 kPublishedValue = 119;
    // Limits in UTF-16 units.
    static constexpr int kTitleMaxLength = 30;
    static constexpr int kBodyCountFrom = 800;

    ReleaseViewController();
    ~ReleaseViewController() override;

    // Set by the opener before the screen is shown. The delegate is not kept alive by the
    // screen; it is told of a publish only when it implements ReleaseViewControllerDelegate.
    ListModel model;
    QJsonValue userID;
    QPointer<QObject> delegate;

    // What the screen holds.
    qreal height = 0; // the keyboard's height last shown
    QJsonObject jsonDic;
    QString jsonString;

    // The views live in the screen's view, which may go before this object.
    TextView *titleText() const { return m_titleText; }
    TextView *content() const { return m_content; }
    Label *textLabel() const { return m_textLabel; }
    Label *promptLabel() const { return m_promptLabel; }
    Label *count() const { return m_count; }
    NoticeOverlay *hu() const { return m_hu; }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;

    // Validates, sends, leaves and tells the delegate.
    void submitAction();
    void jsonDiction();
    void requstData();

    bool isConnectionAvailable() const;
    void alterView();

    // Text rules.
    bool shouldChangeTextInRange(TextView *textView, const Range &range, const QString &text) override;
    void textViewDidChange(TextView *textView) override;
    void textViewDidEndEditing(TextView *textView) override;

    void keyboardWillShow(const KeyboardNotification &notification);
    void keyboardWillHide(const KeyboardNotification &notification);

    // Whether any composed character of `string` looks like an emoji (by code point ranges).
    static bool stringContainsEmoji(const QString &string);

private:
    std::shared_ptr<ReleaseViewController> self();
    void greatUI();
    // The keyboard can come and go while the screen's views are being taken down.
    bool hasViews() const;
    void showNotice(const QString &text);
    void titleDidChange();
    void bodyDidChange();

    QPointer<TextView> m_titleText;
    QPointer<TextView> m_content;
    QPointer<Label> m_textLabel;
    QPointer<Label> m_promptLabel;
    QPointer<Label> m_count;
    QPointer<NoticeOverlay> m_hu;
};
