// Publishing a new topic: the checks in their order, the request, leaving the screen, and
// the answer's notice.

#include "ReleaseViewController.h"

#include "ConnectionCheck.h"
#include "FieldValue.h"
#include "ForumLog.h"
#include "ForumPayloads.h"
#include "HttpRequest.h"
#include "JsonChangDic.h"
#include "NavigationController.h"
#include "PostOutcome.h"
#include "ReleaseViewControllerDelegate.h"
#include "UserIdStore.h"
#include "Window.h"

#include <algorithm>

namespace {

const QString kNoTitleNotice = QStringLiteral("请输入标题");
const QString kNoBodyNotice = QStringLiteral("请输入正文");
const QString kOfflineNotice = QStringLiteral("网络连接失败");
const QString kLineBreak = QStringLiteral("\n");

bool onlyLineBreaks(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit == u'\n'; });
}

} // namespace

void ReleaseViewController::submitAction()
{
    if (!hasViews())
        return;
    const QString title = m_titleText->text();
    const QString body = m_content->text();
    const bool bodyIsBreaks = onlyLineBreaks(body);
    const bool reachable = isConnectionAvailable();
    if (title.isEmpty() || title == kLineBreak) {
        showNotice(kNoTitleNotice);
        return;
    }
    if (body.isEmpty() || bodyIsBreaks) {
        showNotice(kNoBodyNotice);
        return;
    }
    if (!reachable) {
        showNotice(kOfflineNotice);
        return;
    }
    jsonDiction();
    if (NavigationController *navigation = navigationController())
        navigation->popViewControllerAnimated(true);
    if (auto *opener = dynamic_cast<ReleaseViewControllerDelegate *>(delegate.data()))
        opener->passValue(kPublishedValue);
}

void ReleaseViewController::jsonDiction()
{
    const QString idText = UserIdStore().text();
    forumLog(QStringLiteral("+++++++++ %1").arg(idText.isNull() ? QStringLiteral("(null)") : idText));
    jsonDic = ForumPayloads::writeTopic(model, FieldValue::integerValue(idText), m_titleText->text(),
                                        m_content->text());
    jsonString = JsonChangDic::jsonWithDictionary(jsonDic);
    requstData();
}

void ReleaseViewController::requstData()
{
    // The screen is gone by the time the answer comes; the answer keeps it alive until then.
    HttpRequest::GetWriteTopicSuccessBlock(
        [controller = self()](const HttpTask &, const QJsonValue &payload) {
            controller->showNotice(PostOutcome::notice(PostOutcome::Kind::Topic, payload));
        },
        {}, jsonString);
}

bool ReleaseViewController::isConnectionAvailable() const
{
    return ConnectionCheck::isConnectionAvailable();
}

void ReleaseViewController::alterView()
{
    // Over the screen's window while it shows, else over whatever the key window shows now.
    QWidget *host = isViewLoaded() ? Window::of(view()) : nullptr;
    if (!host)
        host = Window::keyWindow();
    m_hu = host ? NoticeOverlay::showHUDAddedTo(host, true) : nullptr;
    if (m_hu)
        m_hu->hideAfterDelay(NoticeOverlay::kDefaultDuration);
}

void ReleaseViewController::showNotice(const QString &text)
{
    alterView();
    if (m_hu)
        m_hu->setLabelText(text);
}
