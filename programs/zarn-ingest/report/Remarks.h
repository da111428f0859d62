/// What there is to say of a file that was converted.
#ifndef ZARN_INGEST_REMARKS_H
#define ZARN_INGEST_REMARKS_H

#include <vector>

#include "zarn-ingest/header/Remark.h"
#include "zarn-ingest/result/Outcome.h"

namespace zarn::ingest {

/// Its repairs, each as "repaired (word): what was found and done: how often", then the rest.
std::vector<Remark> remarksOf(const Outcome& outcome);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_REMARKS_H
