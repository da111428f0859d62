/// Troubles that keep the service from its work, each reported once.
#ifndef ZARN_INGEST_TROUBLES_H
#define ZARN_INGEST_TROUBLES_H

#include <set>
#include <string>

#include "zarn-ingest/report/Reporter.h"

namespace zarn::ingest {

/// The service looks again every few seconds and would meet the same trouble each time. This class
/// reports a trouble when it begins and when it is over. It keeps a reference to the reporter.
class Troubles {
public:
    explicit Troubles(Reporter& reporter) : reporter_(reporter) {}

    /// Reports a trouble, unless it was already there at the last look.
    void meet(const std::string& text);

    /// Ends a look.
    ///
    /// @param whole  whether everything was tried; then a trouble that was not met again is over
    void endLook(bool whole);

    /// Whether this look has met a trouble.
    bool any() const { return !met_.empty(); }

private:
    Reporter& reporter_;
    std::set<std::string> met_;    ///< in this look
    std::set<std::string> known_;  ///< from looks before
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_TROUBLES_H
