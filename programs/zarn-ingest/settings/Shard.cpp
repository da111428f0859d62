#include "zarn-ingest/settings/Shard.h"

#include <charconv>
#include <system_error>

#include "shared/cli/Value.h"

namespace zarn::ingest {

namespace {

constexpr unsigned MOST_SHARDS = 100000;

/// Whether a text is a number from 1 to `most`, without sign and blanks.
bool isNumber(const std::string& text, unsigned most, unsigned& number) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end && number >= 1 && number <= most;
}

}  // namespace

Shard shardOf(const std::string& text) {
    Shard shard;
    const std::string::size_type slash = text.find('/');
    const bool divided = slash != std::string::npos;
    if (!divided || !isNumber(text.substr(slash + 1), MOST_SHARDS, shard.count) ||
        !isNumber(text.substr(0, slash), shard.count, shard.index))
        throw WrongValue(SHARD_FORM);
    return shard;
}

std::string shardText(const Shard& shard) {
    return std::to_string(shard.index) + "/" + std::to_string(shard.count);
}

}  // namespace zarn::ingest
