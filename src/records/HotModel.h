#pragma once
// A hot-topic entry; `topictype` sorts it into the pinned or guide list.

#include "KeyValueRecord.h"

#define QUORVEL_HOT_MODEL_FIELDS(X) X(topictype) X(title) X(tid)
QUORVEL_DECLARE_RECORD(HotModel, QUORVEL_HOT_MODEL_FIELDS)
