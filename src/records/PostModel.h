#pragma once
// A topic in a list; also a promoted banner item (`urltype`, `adurl`).

#include "KeyValueRecord.h"

#define QUORVEL_POST_MODEL_FIELDS(X) \
    X(title) X(username) X(time) X(topiccontent) X(timeformat) X(tid) X(urltype) X(adurl)
QUORVEL_DECLARE_RECORD(PostModel, QUORVEL_POST_MODEL_FIELDS)
