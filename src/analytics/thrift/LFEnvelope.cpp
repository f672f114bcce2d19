#include "LFEnvelope.h"

LFT_RECORD_DEFINE(LFEnvelope)
