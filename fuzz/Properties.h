/// The library's one object for properties, which otherwise keeps what earlier inputs held.
#ifndef FUZZ_PROPERTIES_H
#define FUZZ_PROPERTIES_H

#include "zarnsys/util/WexoProperties.h"

namespace zarn {

class Properties : public WexoProperties {
public:
    /// The next call of `instance` makes another object.
    static void renew() {
        delete instance_;
        instance_ = nullptr;
    }
};

}  // namespace zarn

#endif  // FUZZ_PROPERTIES_H
