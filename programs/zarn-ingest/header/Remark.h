/// Something about one line of a header text that the operator should know.
#ifndef ZARN_INGEST_REMARK_H
#define ZARN_INGEST_REMARK_H

#include <cstddef>
#include <string>

namespace zarn::ingest {

/// What there is to say of a line.
struct Remark {
    std::size_t line;  ///< counted from 1
    std::string text;
    bool isWarning;  ///< perhaps the operator should do something about it
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_REMARK_H
