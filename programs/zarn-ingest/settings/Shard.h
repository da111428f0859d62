/// A part of the inputs, for several runs that divide them.
#ifndef ZARN_INGEST_SHARD_H
#define ZARN_INGEST_SHARD_H

#include <cstddef>
#include <string>

namespace zarn::ingest {

/// The form of a shard, for messages.
inline constexpr char SHARD_FORM[] = "I/N, I from 1 to N and N from 1 to 100000";

/// The index-th of `count` parts of the inputs. By default it is all of them.
struct Shard {
    unsigned index = 1;  ///< from 1 to count
    unsigned count = 1;  ///< number of the shards

    /// Whether it leaves inputs to other shards.
    bool isPart() const { return count > 1; }

    /// Whether it has the input at this position, counted from 0. It has every count-th one, so
    /// that all shards of a sorted list take about the same time.
    bool holds(std::size_t position) const { return position % count == index - 1; }
};

/// Reads a shard "I/N", of digits and a slash alone.
///
/// @throw WrongValue  for any other text
Shard shardOf(const std::string& text);

/// A shard as "I/N".
std::string shardText(const Shard& shard);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_SHARD_H
