#include "HostCell.h"

#include "FieldValue.h"
#include "Fonts.h"
#include "ForumLog.h"
#include "JsonChangDic.h"
#include "Label.h"
#include "MainScreen.h"
#include "TopicStyle.h"

namespace {

constexpr qreal kTextLeft = 35;
constexpr qreal kContentTop = 44;
constexpr qreal kContentInitialHeight = 40;
constexpr qreal kTimeLeft = 119;
constexpr int kContentLines = 2;

} // namespace

HostCell::HostCell(const QString &reuseIdentifier, QWidget *parent)
    : TableViewCell(reuseIdentifier, parent)
{
    contentView()->addSubview(content());
    contentView()->addSubview(time());
    contentView()->addSubview(user());
}

Label *HostCell::user()
{
    if (!m_user) {
        m_user = new Label(QRectF(kTextLeft, 18, 80, 12));
        m_user->setFont(Fonts::systemFontOfSize(TopicStyle::kReplyUserFont));
    }
    return m_user;
}

Label *HostCell::time()
{
    if (!m_time) {
        m_time = new Label(QRectF(kTimeLeft, 18, MainScreen::width() - kTimeLeft, 11));
        m_time->setFont(Fonts::systemFontOfSize(TopicStyle::kMetaFont));
    }
    return m_time;
}

Label *HostCell::content()
{
    if (!m_content) {
        m_content = new Label(QRectF(kTextLeft, kContentTop, MainScreen::width() - 2 * kTextLeft,
                                     kContentInitialHeight));
        m_content->setFont(Fonts::systemFontOfSize(TopicStyle::kBodyFont));
        m_content->setLineBreakMode(LineBreakMode::ByCharWrapping);
        m_content->setNumberOfLines(kContentLines);
    }
    return m_content;
}

void HostCell::getModel(const ReplyListModel &model)
{
    const qreal height = JsonChangDic::adaptiveWithText(FieldValue::optionalText(model.content()));
    forumLog(QStringLiteral("++++++%1").arg(height, 0, 'f', 6));
    content()->setFrame(QRectF(kTextLeft, kContentTop, MainScreen::width() - 2 * kTextLeft, height));
    user()->setText(FieldValue::displayText(model.username()));
    time()->setText(FieldValue::displayText(model.timeformat()));
    content()->setText(FieldValue::displayText(model.content()));
}
