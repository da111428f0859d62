/// Which files a run converts.
#ifndef ZARN_INGEST_INPUTS_H
#define ZARN_INGEST_INPUTS_H

#include <vector>

#include "zarn-ingest/result/Input.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// The inputs. Without any names they are what the properties' pattern matches; otherwise first
/// those of the command line, then those of its lists, then those of standard input, each in their
/// order. Matches of a pattern are in alphabetical order. A signal that comes while a list is being
/// read ends the list there.
std::vector<Input> collectInputs(const Settings& settings, const StopSignals& signals);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_INPUTS_H
