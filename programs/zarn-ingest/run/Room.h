/// Room for results.
#ifndef ZARN_INGEST_ROOM_H
#define ZARN_INGEST_ROOM_H

#include <optional>
#include <string>

#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Free space in the output directory [MiB]; nothing if the system does not say.
std::optional<float> freeSpace(const Settings& settings);

/// Why no file can be converted with so much free space; empty: there is room.
std::string shortageOf(std::optional<float> free, const Settings& settings);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_ROOM_H
