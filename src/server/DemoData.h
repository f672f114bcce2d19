#pragma once
// The demo forum written into a new database: boards, users, topics of every type, long
// reply threads and banner items, all from a fixed seed so every fresh database holds the
// same forum. Runs on the store's thread.

#include "ForumStore.h"

namespace DemoData {

// Facts other code may rely on. Board ids run 1..kBoardCount; board b's tag id is 100 + b;
// its topic ids are b * 1000 + n with n = 1 (pinned, type 1, kManyReplies replies),
// 2 (pinned, type 3), 3 (guide, type 2), 4 (guide, type 4), then its ordinary topics
// oldest first; the newest ordinary topic has kNewestTopicReplies replies.
constexpr int kBoardCount = 6;
constexpr int kOrdinaryTopicCounts[kBoardCount] = {42, 38, 36, 34, 32, 40};
constexpr int kPinnedPerBoard = 2;
constexpr int kGuidePerBoard = 2;
constexpr int kOtherFeaturedPerBoard = 2;  // one type 0 and one type 5 topic among the featured
constexpr int kManyReplies = 64;
constexpr int kManyRepliesHighlighted = 3;  // istop 1
constexpr int kManyRepliesHidden = 2;       // istop 2 and 3
constexpr int kNewestTopicReplies = 56;     // one of them highlighted
constexpr int kBannerCount = 5;
constexpr int kPromoPageCount = 2;

// The optional bulk board (--bulk-board-topics), for load tests: the board after the demo
// ones, holding only ordinary topics (type 0, no replies) with ids from kBulkFirstTopicId on,
// oldest first, one minute apart.
constexpr qint64 kBulkBoardId = kBoardCount + 1;
constexpr qint64 kBulkFirstTopicId = 100001;
constexpr int kMaxBulkBoardTopics = 1000000;

constexpr qint64 tagIdOf(qint64 sectionid) { return 100 + sectionid; }
constexpr qint64 topicIdOf(qint64 sectionid, int n) { return sectionid * 1000 + n; }

// Fills an empty store, with the bulk board when `bulkBoardTopics` is above 0; does nothing
// to one that was filled before.
void seed(ForumStore &store, int bulkBoardTopics = 0);

} // namespace DemoData
