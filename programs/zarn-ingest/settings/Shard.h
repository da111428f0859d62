/// A share of the inputs, for runs that divide them among each other.
#ifndef ZARN_INGEST_SHARD_H
#define ZARN_INGEST_SHARD_H

#include <cstddef>
#include <string>

/// How a shard is written, for messages.
inline constexpr char SHARD_FORM[] = "I/N, I from 1 to N and N from 1 to 100000";

/// The default holds everything.
struct Shard {
    unsigned index = 1;  ///< from 1 to count
    unsigned count = 1;  ///< of the shards together

    bool isPart() const { return count > 1; }

    /// Whether it holds the input at this position, counted from 0: every count-th one, so that
    /// shards of a sorted list take equally long.
    bool holds(std::size_t position) const { return position % count == index - 1; }
};

/// @throw WrongValue  for a text of another form, digits and a slash alone allowed
Shard shardOf(const std::string& text);

std::string shardText(const Shard& shard);

#endif  // ZARN_INGEST_SHARD_H
