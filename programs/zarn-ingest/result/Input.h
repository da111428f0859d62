/// What a run converts.
#ifndef ZARN_INGEST_INPUT_H
#define ZARN_INGEST_INPUT_H

#include <string>

/// A name to convert, or one that stands for none.
struct Input {
    std::string name;
    std::string problem;  ///< why the name gives no file; empty: it may
};

#endif  // ZARN_INGEST_INPUT_H
