#include "PromoPages.h"

#include <QString>

namespace {

struct Page
{
    const char *title;
    const char *body;  // HTML paragraphs
};

const Page kPages[] = {
    {"夏日庆典 · 登录领限定坐骑",
     "<p>活动时间：七月一日至七月三十一日。</p>"
     "<p>活动期间每日登录即可领取庆典礼包，累计登录七天可获得限定坐骑「海风鲸」。</p>"
     "<ul><li>第一天：钻石 × 100</li><li>第三天：体力药水 × 5</li><li>第七天：限定坐骑</li></ul>"
     "<p>奖励通过邮件发放，请在七天内领取。</p>"},
    {"组队招募季：寻找你的伙伴",
     "<p>一个人打副本太孤单？来组队交友版块发帖，找到志同道合的伙伴！</p>"
     "<p>活动期间组队完成周常团本，全队成员额外获得一次宝箱奖励。</p>"
     "<p>祝大家游戏愉快。</p>"},
};

} // namespace

std::optional<QByteArray> PromoPages::page(int number)
{
    if (number < 1 || number > int(std::size(kPages)))
        return std::nullopt;
    const Page &page = kPages[number - 1];
    const QString html = QStringLiteral(
        "<!DOCTYPE html>\n<html lang=\"zh-CN\"><head><meta charset=\"utf-8\">"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
        "<title>%1</title><style>body{font-family:sans-serif;margin:16px;color:#2e3339}"
        "h1{font-size:20px}p,li{font-size:15px;line-height:1.6}</style></head>"
        "<body><h1>%1</h1>%2</body></html>\n")
                             .arg(QString::fromUtf8(page.title), QString::fromUtf8(page.body));
    return html.toUtf8();
}
