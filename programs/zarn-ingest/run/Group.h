/// Inputs that are finished together.
#ifndef ZARN_INGEST_GROUP_H
#define ZARN_INGEST_GROUP_H

#include <chrono>
#include <cstddef>
#include <vector>

#include "zarn-ingest/result/Converter.h"

namespace zarn::ingest {

/// Collects conversions until it is worth while to make their results safe on disk: for many, that
/// takes hardly longer than for one. What the group holds is in nobody's way if the run is killed:
/// the next run converts it again. Does not outlive the converter.
class Group {
public:
    /// @param size  how many new results it may hold; 1: nothing is gained by waiting
    Group(Converter& converter, std::size_t size) : converter_(converter), size_(size) {}

    /// Begins the conversion of one more input.
    void add(const Input& input);

    /// Whether it should be finished: it holds as many new results as it may, the first has waited
    /// a tenth of a second, or no input can be converted at present.
    bool isFull() const;

    /// Finishes the conversions, and hands them over in the order of the inputs.
    std::vector<Conversion> finish();

private:
    using Clock = std::chrono::steady_clock;

    std::size_t pending() const;

    Converter& converter_;
    std::size_t size_;
    std::vector<Conversion> conversions_;
    Clock::time_point begun_;  ///< when the first of them was
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_GROUP_H
