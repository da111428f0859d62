/// What a run converts.
#ifndef ZARN_INGEST_INPUT_H
#define ZARN_INGEST_INPUT_H

#include <string>

namespace zarn::ingest {

/// A name to convert, or one that stands for none.
struct Input {
    std::string name;
    std::string problem;  ///< why the name gives no file; empty: it may
    bool waits = false;   ///< the problem is the machine's: the name stands for files unseen
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_INPUT_H
