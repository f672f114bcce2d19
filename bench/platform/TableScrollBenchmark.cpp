// Scrolls a 100,000-row table of reply-like cells (multi-line Chinese labels of varying
// height) from top to bottom, one frame per step: each frame moves the offset, lays out and
// reuses cells, paints the window and handles the events it posted. Two speeds: 240 points a
// frame (a brisk fling) and 2400 (every frame a screenful of new rows). Reports median and worst frame time, the cells alive
// and the process's resident memory.
#include "Fonts.h"
#include "Label.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "Window.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <vector>

namespace {

constexpr int kRows = 100000;
constexpr int kDistinctTexts = 64;
constexpr qreal kScreenWidth = 375;
constexpr qreal kScreenHeight = 667;

const QString kPhrase = QStringLiteral("今天更新以后角色的技能平衡有了明显变化，副本掉落也比以前合理，大家觉得新版本怎么样？");

double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return 0;
}

class ReplyCell : public TableViewCell
{
public:
    explicit ReplyCell(const QString &identifier)
        : TableViewCell(identifier), user(new Label(QRectF(35, 18, 80, 12), contentView())),
          time(new Label(QRectF(119, 18, kScreenWidth - 119, 11), contentView())),
          content(new Label(QRectF(35, 44, kScreenWidth - 70, 40), contentView()))
    {
        user->setFont(Fonts::systemFontOfSize(12));
        time->setFont(Fonts::systemFontOfSize(11));
        content->setFont(Fonts::systemFontOfSize(14));
        content->setLineBreakMode(LineBreakMode::ByCharWrapping);
        content->setNumberOfLines(2);
    }
    Label *user;
    Label *time;
    Label *content;
};

// Replies whose texts repeat every kDistinctTexts rows; heights are measured once per text,
// as the app's height helper caches them.
class Replies : public TableViewDataSource, public TableViewDelegate
{
public:
    Replies()
    {
        const QFontMetricsF metrics(Fonts::systemFontOfSize(17));
        for (int i = 0; i < kDistinctTexts; ++i) {
            const QString text = kPhrase.repeated(1 + i % 5).left(12 + (i * 37) % 200);
            texts.push_back(text);
            heights.push_back(
                metrics.boundingRect(QRectF(0, 0, kScreenWidth - 20, 10000), Qt::TextWordWrap, text).height());
        }
    }

    int numberOfRowsInSection(TableView *, int) override { return kRows; }
    qreal heightForRowAtIndexPath(TableView *, const IndexPath &path) override
    {
        return heights[path.row % kDistinctTexts] + 50;
    }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &path) override
    {
        auto *cell = static_cast<ReplyCell *>(table->dequeueReusableCellWithIdentifier(QStringLiteral("cell1"), path));
        const int text = path.row % kDistinctTexts;
        cell->content->setFrame(QRectF(35, 44, kScreenWidth - 70, heights[text]));
        cell->user->setText(QStringLiteral("玩家%1").arg(path.row));
        cell->time->setText(QStringLiteral("%1分钟前").arg(path.row % 60));
        cell->content->setText(texts[text]);
        return cell;
    }

private:
    std::vector<QString> texts;
    std::vector<qreal> heights;
};

// The argument is the points moved per frame (240: a brisk fling at 60 frames a second).
void BM_ScrollHundredThousandRows(benchmark::State &state)
{
    const qreal step = qreal(state.range(0));
    for (auto _ : state) {
        Window window{QSize(int(kScreenWidth), int(kScreenHeight))};
        Replies replies;
        const double rssBefore = residentMegabytes();
        auto *table = new TableView(QRectF(0, 0, kScreenWidth, kScreenHeight));
        window.addSubview(table);
        table->registerClass<ReplyCell>(QStringLiteral("cell1"));
        table->setDataSource(&replies);
        table->setDelegate(&replies);
        window.show();
        table->reloadData();
        QImage frame(window.size(), QImage::Format_ARGB32_Premultiplied);

        std::vector<double> frameMs;
        int mostLiveCells = 0;
        const qreal bottom = table->maximumContentOffset().y();
        QElapsedTimer timer;
        for (qreal y = 0;; y = qMin(y + step, bottom)) {
            timer.start();
            table->setContentOffset(QPointF(0, y));
            QPainter painter(&frame);
            window.render(&painter);
            painter.end();
            QCoreApplication::processEvents(); // what the frame posted (updates, deferred deletes)
            frameMs.push_back(timer.nsecsElapsed() / 1e6);
            mostLiveCells = std::max(mostLiveCells, table->liveCellCount());
            // Resident memory a tenth of the way down: the same at the bottom means no growth
            // with the rows scrolled past.
            if (frameMs.size() == size_t(bottom / step / 10))
                state.counters["rss_at_tenth_mb"] = residentMegabytes();
            if (y >= bottom)
                break;
        }
        std::sort(frameMs.begin(), frameMs.end());
        state.counters["frames"] = double(frameMs.size());
        state.counters["median_frame_ms"] = frameMs[frameMs.size() / 2];
        state.counters["p99_frame_ms"] = frameMs[frameMs.size() * 99 / 100];
        state.counters["worst_frame_ms"] = frameMs.back();
        state.counters["live_cells_max"] = mostLiveCells;
        state.counters["content_height_pt"] = table->contentSize().height();
        state.counters["rss_mb"] = residentMegabytes();
        state.counters["rss_growth_mb"] = residentMegabytes() - rssBefore;
    }
}
BENCHMARK(BM_ScrollHundredThousandRows)->Arg(240)->Arg(2400)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
