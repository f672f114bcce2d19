#pragma once
// A board; also the temporary-user record (its `userid`).

#include "KeyValueRecord.h"

#define QUORVEL_LIST_MODEL_FIELDS(X) \
    X(sectionico) X(sectionname) X(sectiontopic) X(sectionid) X(sectiontag) X(userid) X(tagid) \
    X(backgroundimg) X(tid)
QUORVEL_DECLARE_RECORD(ListModel, QUORVEL_LIST_MODEL_FIELDS)
