// The board screen (DetailViewController) against the project's own forum server, on a board
// of 10,000 topics (quorvel-server --bulk-board-topics): page 1 loads as the screen opens, then
// every further page of 10 through the pull-up footer, one pull at a time from the bottom of
// the list, until all 1,000 pages are in; then the grown list is scrolled from top to bottom.
//
// A page is timed from the footer's beginRefreshing() to the table reloaded with the page's
// rows and laid out. The footer runs its action RefreshControl::kSlideInMs (250 ms) after
// beginRefreshing(), so the time is also given from the moment that action ran (the page
// number went up and the request went out) to the same end: the same pull without the fixed
// slide-in wait. A scroll frame is one scroll step, the table's layout of the rows now in
// view, the whole window painted into an offscreen image and the events the frame posted.
// Reports median, p99 and worst of both, first against last 100 pulls, and the peak resident
// memory (VmHWM). 1,000 pulls wait 250 ms each, so the run takes a little over four minutes.
#include "BenchMeasures.h"
#include "DetailViewController.h"
#include "HttpSessionManager.h"
#include "LocalForumServer.h"
#include "NavigationController.h"
#include "RefreshFooter.h"
#include "RefreshHeader.h"
#include "ServiceConfig.h"
#include "TableView.h"
#include "Window.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

using benchmeasures::Spread;
using benchmeasures::spreadOf;
using benchmeasures::statusMegabytes;

constexpr int kPageSize = 10;  // the screen's GetTopics page size
constexpr int kPages = 1000;
constexpr int kTopics = kPages * kPageSize;
// quorvel-server's bulk board (--bulk-board-topics): the board after the six demo boards.
constexpr int kBulkBoardId = 7;
constexpr int kBulkBoardTagId = 107;
const QString kBulkBoardName = QStringLiteral("压力测试");
// The pulls compared to see whether a page costs more as the list grows.
constexpr int kComparedPulls = 100;
// Points scrolled per frame: a little less than the 667-point screen, so every frame brings
// a screenful of rows, some of them reused.
constexpr qreal kScrollStep = 600;
constexpr int kOpenTimeoutMs = 20000;
constexpr int kPageTimeoutMs = 10000;
constexpr double kNanosPerMs = 1e6;

// Everything one run measured. Plain data; main thread.
struct BoardRun
{
    std::vector<double> pullMs;        // beginRefreshing() to the reloaded table
    std::vector<double> afterSlideMs;  // the footer's action to the reloaded table
    std::vector<double> slideMs;       // beginRefreshing() to the footer's action
    std::vector<double> frameMs;
    int rows = 0;
    qreal contentHeight = 0;
    double residentBeforeMb = 0;
    double peakAfterPagesMb = 0;
    double peakAfterScrollMb = 0;
};

BoardRun g_run;
bool g_ran = false;

// Runs the event loop until `done` holds; false when `timeoutMs` passes first. The screen's
// refresh controls keep a spinner timer running while they refresh, so a wait for events
// never outlasts the deadline by more than a spinner step.
template <class Done>
bool runUntil(Done done, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void scrollToBottom(TableView *table)
{
    table->setContentOffset(table->maximumContentOffset());
    table->layoutIfNeeded();
}

void BM_BoardOfTenThousandTopics_PullUpPagesThenScroll(benchmark::State &state)
{
    LocalForumServer server({QStringLiteral("--bulk-board-topics"), QString::number(kTopics)});
    if (!server.isRunning()) {
        std::fprintf(stderr, "%s\n", server.errorString().toLocal8Bit().constData());
        state.SkipWithError("quorvel-server did not start");
        return;
    }
    ServiceConfig::setApiRoot(server.apiRoot());

    for (auto _ : state) {
        BoardRun run;
        run.residentBeforeMb = statusMegabytes("VmRSS");
        Window window;
        auto screen = std::make_shared<DetailViewController>();
        screen->model.setValueForKey(kBulkBoardId, u"sectionid");
        screen->model.setValueForKey(kBulkBoardTagId, u"tagid");
        screen->model.setValueForKey(kBulkBoardName, u"sectionname");
        window.setRootViewController(std::make_shared<NavigationController>(screen));
        window.makeKeyAndVisible();
        const bool opened = runUntil(
            [&] {
                return screen->isViewLoaded() && screen->datasource.size() == kPageSize
                       && HttpSessionManager::requestsInFlight() == 0 && !screen->tableView()->header()->isRefreshing();
            },
            kOpenTimeoutMs);
        if (!opened) {
            state.SkipWithError("the board's first page did not load");
            return;
        }

        TableView *table = screen->tableView();
        RefreshFooter *footer = table->footer();
        for (int page = 2; page <= kPages; ++page) {
            scrollToBottom(table);
            QElapsedTimer timer;
            qint64 actionNs = -1;
            timer.start();
            footer->beginRefreshing();
            const bool loaded = runUntil(
                [&] {
                    if (actionNs < 0 && screen->page == page)
                        actionNs = timer.nsecsElapsed();
                    return screen->datasource.size() == page * kPageSize && !footer->isRefreshing();
                },
                kPageTimeoutMs);
            if (!loaded || actionNs < 0) {
                std::fprintf(stderr, "page %d did not load\n", page);
                state.SkipWithError("a page did not load");
                return;
            }
            table->layoutIfNeeded();
            const qint64 totalNs = timer.nsecsElapsed();
            run.pullMs.push_back(totalNs / kNanosPerMs);
            run.afterSlideMs.push_back((totalNs - actionNs) / kNanosPerMs);
            run.slideMs.push_back(actionNs / kNanosPerMs);
        }
        run.rows = table->numberOfRowsInSection(2);
        run.peakAfterPagesMb = statusMegabytes("VmHWM");

        table->setContentOffset(QPointF(0, 0));
        table->layoutIfNeeded();
        const qreal bottom = table->maximumContentOffset().y();
        run.contentHeight = table->contentSize().height();
        QImage image(window.size(), QImage::Format_ARGB32_Premultiplied);
        QElapsedTimer timer;
        for (qreal y = 0;; y = qMin(y + kScrollStep, bottom)) {
            timer.start();
            table->setContentOffset(QPointF(0, y));
            table->layoutIfNeeded();
            QPainter painter(&image);
            window.render(&painter);
            painter.end();
            QCoreApplication::processEvents();
            run.frameMs.push_back(timer.nsecsElapsed() / kNanosPerMs);
            if (y >= bottom)
                break;
        }
        run.peakAfterScrollMb = statusMegabytes("VmHWM");

        const Spread pulls = spreadOf(run.pullMs);
        const Spread frames = spreadOf(run.frameMs);
        state.counters["rows"] = run.rows;
        state.counters["pull_median_ms"] = pulls.medianMs;
        state.counters["pull_p99_ms"] = pulls.p99Ms;
        state.counters["frame_median_ms"] = frames.medianMs;
        state.counters["frame_worst_ms"] = frames.worstMs;
        state.counters["peak_mb"] = run.peakAfterScrollMb;
        g_run = std::move(run);
        g_ran = true;
    }
    ServiceConfig::setApiRoot({});
}
BENCHMARK(BM_BoardOfTenThousandTopics_PullUpPagesThenScroll)->Iterations(1)->Unit(benchmark::kSecond);

void printSpread(const char *name, const Spread &spread)
{
    std::printf("  %-44s %6d %10.2f %10.2f %10.2f\n", name, spread.count, spread.medianMs, spread.p99Ms,
                spread.worstMs);
}

void printSummary()
{
    if (!g_ran)
        return;
    const BoardRun &run = g_run;
    const auto first = [](const std::vector<double> &ms) {
        return std::vector<double>(ms.begin(), ms.begin() + std::min<size_t>(kComparedPulls, ms.size()));
    };
    const auto last = [](const std::vector<double> &ms) {
        return std::vector<double>(ms.end() - std::min<size_t>(kComparedPulls, ms.size()), ms.end());
    };
    std::printf("\nBoard screen against quorvel-server, a board of %d topics in pages of %d: page 1 as the\n"
                "screen opens, pages 2-%d each by one pull-up (footer beginRefreshing), from the list's bottom.\n",
                kTopics, kPageSize, kPages);
    std::printf("Rows in the topic section at the end: %d; content height %.0f points.\n\n", run.rows,
                run.contentHeight);
    std::printf("  %-44s %6s %10s %10s %10s\n", "", "count", "median ms", "p99 ms", "worst ms");
    printSpread("pull to reloaded table (all)", spreadOf(run.pullMs));
    printSpread("  first 100 pulls (pages 2-101)", spreadOf(first(run.pullMs)));
    printSpread("  last 100 pulls (pages 901-1000)", spreadOf(last(run.pullMs)));
    std::printf("  -- without the fixed %d ms slide-in: from the footer's action --\n", RefreshControl::kSlideInMs);
    printSpread("action to reloaded table (all)", spreadOf(run.afterSlideMs));
    printSpread("  first 100 pulls (pages 2-101)", spreadOf(first(run.afterSlideMs)));
    printSpread("  last 100 pulls (pages 901-1000)", spreadOf(last(run.afterSlideMs)));
    printSpread("slide-in itself (beginRefreshing to action)", spreadOf(run.slideMs));
    printSpread("scroll frame, 10,000 rows, 600 pt a frame", spreadOf(run.frameMs));
    const double firstMedian = spreadOf(first(run.afterSlideMs)).medianMs;
    const double lastMedian = spreadOf(last(run.afterSlideMs)).medianMs;
    std::printf("\nGrowth, action to reloaded table, median of the last 100 pulls over the first 100: %.2fx\n",
                firstMedian > 0 ? lastMedian / firstMedian : 0.0);
    std::printf("Memory: resident before opening %.1f MB; peak (VmHWM) after the pages %.1f MB, after the "
                "scroll %.1f MB.\n",
                run.residentBeforeMb, run.peakAfterPagesMb, run.peakAfterScrollMb);
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The screen's settings and picture caches go to a temporary folder, not the user's own.
    QTemporaryDir home;
    if (!home.isValid())
        return 1;
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        const QString path = home.filePath(QString::fromLatin1(name));
        QDir().mkpath(path);
        qputenv(name, path.toLocal8Bit());
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printSummary();
    return 0;
}
