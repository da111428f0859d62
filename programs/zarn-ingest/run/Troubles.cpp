#include "zarn-ingest/run/Troubles.h"

#include <utility>

namespace zarn::ingest {

void Troubles::meet(const std::string& text) {
    if (met_.insert(text).second && known_.count(text) == 0) reporter_.error(text);
}

void Troubles::endLook(bool whole) {
    if (whole) {
        for (const std::string& text : known_) {
            if (met_.count(text) == 0) reporter_.info("over: " + text);
        }
        known_.clear();
    }
    known_.merge(std::exchange(met_, {}));
}

}  // namespace zarn::ingest
