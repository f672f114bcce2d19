#pragma once
// A topic inside a board.

#include "KeyValueRecord.h"

#define QUORVEL_MODEL_FIELDS(X) X(title) X(time) X(topiccontent) X(timeformat) X(sectionid) X(tid)
QUORVEL_DECLARE_RECORD(Model, QUORVEL_MODEL_FIELDS)
