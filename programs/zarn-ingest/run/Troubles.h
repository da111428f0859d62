/// What keeps the service from its work, said once.
#ifndef ZARN_INGEST_TROUBLES_H
#define ZARN_INGEST_TROUBLES_H

#include <set>
#include <string>

#include "zarn-ingest/report/Reporter.h"

/// The service looks again every few seconds, and would meet the same trouble each time. A trouble
/// is said when it begins, and when it is over.
class Troubles {
public:
    explicit Troubles(Reporter& reporter) : reporter_(reporter) {}

    /// Says what is the matter, unless it has been since the last look or longer.
    void meet(const std::string& text);

    /// The look is over.
    ///
    /// @param whole  whether all was tried: then a trouble not met again is over
    void endLook(bool whole);

    /// Whether this look met any.
    bool any() const { return !met_.empty(); }

private:
    Reporter& reporter_;
    std::set<std::string> met_;    ///< in this look
    std::set<std::string> known_;  ///< from looks before
};

#endif  // ZARN_INGEST_TROUBLES_H
