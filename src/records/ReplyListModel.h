#pragma once
// One reply of a topic.

#include "KeyValueRecord.h"

#define QUORVEL_REPLY_LIST_MODEL_FIELDS(X) X(username) X(timeformat) X(content)
QUORVEL_DECLARE_RECORD(ReplyListModel, QUORVEL_REPLY_LIST_MODEL_FIELDS)
