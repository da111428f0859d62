/// Which files a run converts.
#ifndef ZARN_INGEST_INPUTS_H
#define ZARN_INGEST_INPUTS_H

#include <vector>

#include "zarn-ingest/result/Input.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/settings/Settings.h"

/// The inputs in the order of the command line, then of its lists, then of standard input. What a
/// pattern matches comes in alphabetical order. A signal while waiting for a list ends it there.
std::vector<Input> collectInputs(const Settings& settings, const StopSignals& signals);

#endif  // ZARN_INGEST_INPUTS_H
