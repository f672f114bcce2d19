// The new-topic screen's text rules: the title's length limit and its refused return key,
// the body's counter, and the placeholders.

#include "ReleaseViewController.h"

#include "JsonChangDic.h"
#include "ReleaseLayout.h"
#include "TextInputMode.h"

using namespace ReleaseLayout;

bool ReleaseViewController::shouldChangeTextInRange(TextView *textView, const Range &range, const QString &text)
{
    // The emoji keyboard can change nothing, deletions included.
    if (TextInputMode::currentInputMode().isEmoji())
        return false;
    if (textView != m_titleText || text.isEmpty())
        return true;
    if (text.size() + textView->text().size() - range.length > kTitleMaxLength)
        return false;
    // The return key does nothing in the title; the keyboard stays.
    return text != u"\n";
}

void ReleaseViewController::textViewDidChange(TextView *textView)
{
    if (textView == m_titleText)
        titleDidChange();
    else if (textView == m_content)
        bodyDidChange();
}

void ReleaseViewController::titleDidChange()
{
    m_textLabel->setHidden(true);
    // Pasted text arrives whole, past the limit.
    if (m_titleText->text().size() > kTitleMaxLength)
        m_titleText->setText(m_titleText->text().left(kTitleMaxLength));
    const qreal h = JsonChangDic::adaptiveWithText(m_titleText->text());
    // A title taller than the largest box falls back to one line's height.
    const bool grows = h > kTitleGrowsAbove && h < kTitleGrowsBelow;
    m_titleText->setFrame(titleFrame(grows ? h : kTitleHeight));
}

void ReleaseViewController::bodyDidChange()
{
    m_promptLabel->setHidden(true);
    // The body is not cut: past the limit the counter goes negative.
    m_count->setText(QStringLiteral("%1字").arg(kBodyCountFrom - m_content->text().size()));
}

void ReleaseViewController::textViewDidEndEditing(TextView *)
{
    // Once either box has been left, the body's placeholder stays blank.
    if (m_promptLabel)
        m_promptLabel->setText(QString());
}
