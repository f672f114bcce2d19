// Scrolls 100,000 reply-like rows (multi-line Chinese texts of varying height) from top to
// bottom, one frame per step, first in the kit's TableView, then in the same run in Qt's own
// answer for long lists: a QListView (item sizes not uniform) over a model of the same texts,
// with a QStyledItemDelegate that draws them in the same fonts, wrapping and places, at the
// same row heights. Each frame moves the offset, lays out the rows now in view, paints the
// whole view into an offscreen image and handles the events the frame posted. Reports median, p99 and worst frame, the
// rise of peak resident memory of each half, and the kit-to-QListView ratios.
#include "BenchMeasures.h"
#include "Fonts.h"
#include "Label.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TableViewDataSource.h"
#include "TableViewDelegate.h"
#include "TextWrapping.h"
#include "Window.h"

#include <benchmark/benchmark.h>

#include <QAbstractListModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFontMetricsF>
#include <QImage>
#include <QListView>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using benchmeasures::Spread;
using benchmeasures::spreadOf;
using benchmeasures::statusMegabytes;

constexpr int kRows = 100000;
constexpr int kDistinctTexts = 64;
constexpr qreal kScreenWidth = 375;
constexpr qreal kScreenHeight = 667;

// Row heights as the app sizes reply rows: the text at the body font across the screen less
// the list margin, plus room for the name and time line.
constexpr int kBodyFontSize = 17;
constexpr qreal kListMargin = 20;
constexpr int kRowExtraHeight = 50;

// The reply cell's three texts.
constexpr int kUserFontSize = 12;
constexpr int kTimeFontSize = 11;
constexpr int kContentFontSize = 14;
constexpr int kContentLines = 2;
const QRectF kUserFrame(35, 18, 80, 12);
const QRectF kTimeFrame(119, 18, kScreenWidth - 119, 11);
constexpr qreal kContentLeft = 35;
constexpr qreal kContentTop = 44;
constexpr qreal kContentWidth = kScreenWidth - 70;

// The kit cell's look, for the delegate.
const QColor kSeparatorColor(200, 199, 204);
constexpr qreal kSeparatorInset = 15;
constexpr qreal kSeparatorThickness = 0.5;

const QString kPhrase = QStringLiteral("今天更新以后角色的技能平衡有了明显变化，副本掉落也比以前合理，大家觉得新版本怎么样？");
const QString kCellIdentifier = QStringLiteral("cell1");

// Brings the resident high-water mark (VmHWM) down to the present resident size, so the
// second half's peak is its own; false where the kernel does not allow it.
bool resetPeakResident()
{
    QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
    return clearRefs.open(QIODevice::WriteOnly) && clearRefs.write("5") == 1;
}

// The rows both views show: texts repeat every kDistinctTexts rows and are measured once
// each, as the app's height helper caches them.
class ReplyTexts
{
public:
    ReplyTexts()
    {
        const QFont body = Fonts::systemFontOfSize(kBodyFontSize);
        for (int i = 0; i < kDistinctTexts; ++i) {
            const QString text = kPhrase.repeated(1 + i % 5).left(12 + (i * 37) % 200);
            m_texts.push_back(text);
            // Whole points: a list view's item sizes are integers, and both views must lay
            // out exactly the same rows.
            m_textHeights.push_back(int(std::ceil(TextWrapping::height(
                text, body, kScreenWidth - kListMargin, TextWrapping::Mode::WordsThenCharacters))));
        }
    }

    QString content(int row) const { return m_texts[row % kDistinctTexts]; }
    QString user(int row) const { return QStringLiteral("玩家%1").arg(row); }
    QString time(int row) const { return QStringLiteral("%1分钟前").arg(row % 60); }
    int textHeight(int row) const { return m_textHeights[row % kDistinctTexts]; }
    int rowHeight(int row) const { return textHeight(row) + kRowExtraHeight; }
    QRectF contentFrame(int row) const { return QRectF(kContentLeft, kContentTop, kContentWidth, textHeight(row)); }

private:
    std::vector<QString> m_texts;
    std::vector<int> m_textHeights;
};

struct HalfResult
{
    Spread frames;
    qreal contentHeight = 0;
    double peakRiseMb = 0;
};

// One frame per `step` points from the top to `bottom`: scroll, paint the whole `view` into an
// offscreen image, then handle what the frame posted (updates, deferred deletes).
Spread scrollFrames(QWidget &view, qreal bottom, qreal step, const std::function<void(qreal)> &scrollTo,
                        const std::function<void()> &afterFrame)
{
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> frameMs;
    QElapsedTimer timer;
    for (qreal y = 0;; y = qMin(y + step, bottom)) {
        timer.start();
        scrollTo(y);
        QPainter painter(&image);
        view.render(&painter);
        painter.end();
        QCoreApplication::processEvents();
        frameMs.push_back(timer.nsecsElapsed() / 1e6);
        afterFrame();
        if (y >= bottom)
            break;
    }
    return spreadOf(std::move(frameMs));
}

// Runs one half with the peak resident mark reset first; records how far the peak rose
// above the resident size at the start.
HalfResult measureHalf(const std::function<HalfResult()> &half)
{
    resetPeakResident();
    const double residentBefore = statusMegabytes("VmRSS");
    HalfResult result = half();
    result.peakRiseMb = statusMegabytes("VmHWM") - residentBefore;
    return result;
}

// --- The kit half ---

class ReplyCell : public TableViewCell
{
public:
    explicit ReplyCell(const QString &identifier)
        : TableViewCell(identifier), user(new Label(kUserFrame, contentView())),
          time(new Label(kTimeFrame, contentView())), content(new Label(contentView()))
    {
        user->setFont(Fonts::systemFontOfSize(kUserFontSize));
        time->setFont(Fonts::systemFontOfSize(kTimeFontSize));
        content->setFont(Fonts::systemFontOfSize(kContentFontSize));
        content->setLineBreakMode(LineBreakMode::ByCharWrapping);
        content->setNumberOfLines(kContentLines);
    }
    Label *user;
    Label *time;
    Label *content;
};

class KitReplies : public TableViewDataSource, public TableViewDelegate
{
public:
    explicit KitReplies(const ReplyTexts &replies) : m_replies(replies) {}

    int numberOfRowsInSection(TableView *, int) override { return kRows; }
    qreal heightForRowAtIndexPath(TableView *, const IndexPath &path) override { return m_replies.rowHeight(path.row); }
    TableViewCell *cellForRowAtIndexPath(TableView *table, const IndexPath &path) override
    {
        auto *cell = static_cast<ReplyCell *>(table->dequeueReusableCellWithIdentifier(kCellIdentifier, path));
        cell->content->setFrame(m_replies.contentFrame(path.row));
        cell->user->setText(m_replies.user(path.row));
        cell->time->setText(m_replies.time(path.row));
        cell->content->setText(m_replies.content(path.row));
        return cell;
    }

private:
    const ReplyTexts &m_replies;
};

HalfResult scrollKitTable(const ReplyTexts &replies, qreal step, int &mostLiveCells)
{
    Window window{QSize(int(kScreenWidth), int(kScreenHeight))};
    KitReplies source(replies);
    auto *table = new TableView(QRectF(0, 0, kScreenWidth, kScreenHeight));
    window.addSubview(table);
    table->registerClass<ReplyCell>(kCellIdentifier);
    table->setDataSource(&source);
    table->setDelegate(&source);
    window.show();
    table->reloadData();
    const Spread frames = scrollFrames(
        window, table->maximumContentOffset().y(), step,
        [table](qreal y) {
            table->setContentOffset(QPointF(0, y));
            table->layoutIfNeeded(); // the rows of the new offset, before they are painted
        },
        [&] { mostLiveCells = std::max(mostLiveCells, table->liveCellCount()); });
    return {frames, table->contentSize().height(), 0};
}

// --- The QListView half ---

class ReplyModel : public QAbstractListModel
{
public:
    enum Role { NameRole = Qt::UserRole, TimeRole };

    explicit ReplyModel(const ReplyTexts &replies) : m_replies(replies) {}

    int rowCount(const QModelIndex &parent) const override { return parent.isValid() ? 0 : kRows; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        switch (role) {
        case Qt::DisplayRole:
            return m_replies.content(index.row());
        case NameRole:
            return m_replies.user(index.row());
        case TimeRole:
            return m_replies.time(index.row());
        default:
            return {};
        }
    }

private:
    const ReplyTexts &m_replies;
};

// Draws a row as the kit's reply cell looks. Like QStyledItemDelegate itself, it lays the
// text out on every paint; the kit's labels keep their lines until their text changes.
class ReplyDelegate : public QStyledItemDelegate
{
public:
    explicit ReplyDelegate(const ReplyTexts &replies) : m_replies(replies) {}

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const override
    {
        return QSize(int(kScreenWidth), m_replies.rowHeight(index.row()));
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QRectF row = option.rect;
        painter->save();
        painter->fillRect(row, Qt::white);
        painter->fillRect(QRectF(row.left() + kSeparatorInset, row.bottom() - kSeparatorThickness,
                                 row.width() - kSeparatorInset, kSeparatorThickness),
                          kSeparatorColor);
        painter->setPen(Qt::black);
        const QPointF origin = row.topLeft();
        drawLabelText(painter, kUserFrame.translated(origin), m_userFont,
                      index.data(ReplyModel::NameRole).toString(), 1, TextWrapping::Mode::WordsThenCharacters);
        drawLabelText(painter, kTimeFrame.translated(origin), m_timeFont,
                      index.data(ReplyModel::TimeRole).toString(), 1, TextWrapping::Mode::WordsThenCharacters);
        drawLabelText(painter, m_replies.contentFrame(index.row()).translated(origin), m_contentFont,
                      index.data(Qt::DisplayRole).toString(), kContentLines, TextWrapping::Mode::Characters);
        painter->restore();
    }

private:
    // As a kit Label draws: wrapped by the shared rule, no more lines than asked or than fit
    // the frame, the block centred vertically.
    static void drawLabelText(QPainter *painter, const QRectF &frame, const QFont &font, const QString &text,
                              int maxLines, TextWrapping::Mode mode)
    {
        const qreal lineHeight = QFontMetricsF(font).lineSpacing();
        const int fitting = qMax(1, int(std::floor(frame.height() / lineHeight)));
        const QList<TextWrapping::Line> lines = TextWrapping::wrap(text, font, frame.width(), mode, qMin(maxLines, fitting));
        qreal y = frame.top() + (frame.height() - lines.size() * lineHeight) / 2;
        painter->setFont(font);
        for (const TextWrapping::Line &line : lines) {
            painter->drawText(QRectF(frame.left(), y, frame.width(), lineHeight),
                              Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, line.text);
            y += lineHeight;
        }
    }

    const ReplyTexts &m_replies;
    const QFont m_userFont = Fonts::systemFontOfSize(kUserFontSize);
    const QFont m_timeFont = Fonts::systemFontOfSize(kTimeFontSize);
    const QFont m_contentFont = Fonts::systemFontOfSize(kContentFontSize);
};

HalfResult scrollListView(const ReplyTexts &replies, qreal step)
{
    ReplyModel model(replies);
    ReplyDelegate delegate(replies);
    QListView list;
    list.setUniformItemSizes(false);
    list.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list.setFrameShape(QFrame::NoFrame);
    list.setItemDelegate(&delegate);
    list.setModel(&model);
    list.resize(int(kScreenWidth), int(kScreenHeight));
    list.show();
    list.doItemsLayout();
    QScrollBar *scrollBar = list.verticalScrollBar();
    const Spread frames = scrollFrames(
        list, scrollBar->maximum(), step, [scrollBar](qreal y) { scrollBar->setValue(int(y)); }, [] {});
    return {frames, qreal(scrollBar->maximum() + list.viewport()->height()), 0};
}

// --- Both halves, one step size ---

struct Comparison
{
    int step = 0;
    HalfResult kit;
    HalfResult list;
};

std::vector<Comparison> g_comparisons;

// The argument is the points moved per frame: 2400, every frame a screenful of new rows (a
// slower step would take minutes over 100,000 rows).
void BM_ScrollHundredThousandRows_KitVersusQListView(benchmark::State &state)
{
    if (!resetPeakResident()) {
        state.SkipWithError("cannot reset the peak resident mark (/proc/self/clear_refs)");
        return;
    }
    const ReplyTexts replies;
    const int step = int(state.range(0));
    for (auto _ : state) {
        int mostLiveCells = 0;
        const HalfResult kit = measureHalf([&] { return scrollKitTable(replies, step, mostLiveCells); });
        const HalfResult list = measureHalf([&] { return scrollListView(replies, step); });
        if (kit.contentHeight != list.contentHeight || kit.frames.count != list.frames.count) {
            state.SkipWithError("the two views did not lay out the same rows");
            return;
        }
        g_comparisons.push_back({step, kit, list});
        state.counters["frames"] = kit.frames.count;
        state.counters["live_cells_max"] = mostLiveCells;
        state.counters["kit_median_ms"] = kit.frames.medianMs;
        state.counters["kit_p99_ms"] = kit.frames.p99Ms;
        state.counters["kit_worst_ms"] = kit.frames.worstMs;
        state.counters["kit_peak_rise_mb"] = kit.peakRiseMb;
        state.counters["qlistview_median_ms"] = list.frames.medianMs;
        state.counters["qlistview_p99_ms"] = list.frames.p99Ms;
        state.counters["qlistview_worst_ms"] = list.frames.worstMs;
        state.counters["qlistview_peak_rise_mb"] = list.peakRiseMb;
        state.counters["median_ratio"] = kit.frames.medianMs / list.frames.medianMs;
        state.counters["worst_ratio"] = kit.frames.worstMs / list.frames.worstMs;
    }
}
BENCHMARK(BM_ScrollHundredThousandRows_KitVersusQListView)->Arg(2400)->Iterations(1)->Unit(benchmark::kSecond);

void printComparisons()
{
    std::printf("\nKit TableView against QListView + QStyledItemDelegate: %d rows, %dx%d viewport.\n", kRows,
                int(kScreenWidth), int(kScreenHeight));
    std::printf("A frame: one scroll step, the whole view painted into an offscreen image, the posted events.\n");
    std::printf("Peak memory: both run in this one process, the kit first and QListView second; each figure\n"
                "is how far the resident high-water mark (VmHWM, reset before each half) rose above the\n"
                "resident size at the start of that half.\n");
    for (const Comparison &c : g_comparisons) {
        std::printf("\n%d points a frame, %d frames each, content %.0f points\n", c.step, c.kit.frames.count,
                    c.kit.contentHeight);
        std::printf("  %-12s %10s %10s %10s %14s\n", "", "median ms", "p99 ms", "worst ms", "peak rise MB");
        for (const auto &[name, half] : {std::pair{"kit", &c.kit}, std::pair{"QListView", &c.list}}) {
            std::printf("  %-12s %10.3f %10.3f %10.3f %14.1f\n", name, half->frames.medianMs, half->frames.p99Ms,
                        half->frames.worstMs, half->peakRiseMb);
        }
        std::printf("  kit / QListView: median %.2fx, worst %.2fx\n", c.kit.frames.medianMs / c.list.frames.medianMs,
                    c.kit.frames.worstMs / c.list.frames.worstMs);
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printComparisons();
    return 0;
}
