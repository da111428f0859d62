/// Which files a run converts.
#ifndef ZARN_INGEST_INPUTS_H
#define ZARN_INGEST_INPUTS_H

#include <string>
#include <vector>

#include "Settings.h"
#include "StopSignals.h"

/// A name to convert, or one that stands for none.
struct Input {
    std::string name;
    std::string problem;  ///< why the name gives no file; empty: it may
    bool waits = false;   ///< the problem is the machine's: the name stands for files unseen
};

/// The inputs in the order of the command line, then of its lists, then of standard input. What a
/// pattern matches comes in alphabetical order. A signal while waiting for a list ends it there.
std::vector<Input> collectInputs(const Settings& settings, const StopSignals& signals);

#endif  // ZARN_INGEST_INPUTS_H
