#include "zarn-ingest/run/Group.h"

#include <algorithm>
#include <utility>

namespace zarn::ingest {

namespace {

constexpr std::chrono::milliseconds LONGEST_WAIT{100};

bool isStopped(const Conversion& conversion) {
    return conversion.outcome.status == Outcome::Status::STOPPED;
}

}  // namespace

void Group::add(const Input& input) {
    if (conversions_.empty()) begun_ = Clock::now();
    Conversion conversion = converter_.begin(input);
    if (isStopped(conversion) && pending() > 0) {
        // Perhaps the others hold the descriptors or the room that it wants.
        converter_.finish(conversions_);
        conversion = converter_.begin(input);
    }
    conversions_.push_back(std::move(conversion));
}

bool Group::isFull() const {
    return !conversions_.empty() &&
           (pending() >= size_ || size_ == 1 || isStopped(conversions_.back()) ||
            Clock::now() - begun_ >= LONGEST_WAIT);
}

std::vector<Conversion> Group::finish() {
    converter_.finish(conversions_);
    return std::exchange(conversions_, {});
}

std::size_t Group::pending() const {
    return static_cast<std::size_t>(
        std::count_if(conversions_.begin(), conversions_.end(),
                      [](const Conversion& one) { return one.isPending(); }));
}

}  // namespace zarn::ingest
