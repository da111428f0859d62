#include "zarn-ingest/run/Room.h"

#include <zarnsys/util/Utils.h>

namespace zarn::ingest {

std::optional<float> freeSpace(const Settings& settings) {
    float total = 0;
    float available = 0;
    if (ZarnSys::getFilesystemInfo(settings.outputDir.c_str(), &total, &available) != 0)
        return std::nullopt;
    return available;
}

std::string shortageOf(std::optional<float> free, const Settings& settings) {
    if (!free) return "the free space in " + settings.outputDir + " cannot be determined";
    if (*free >= static_cast<float>(settings.leastFree)) return "";
    return "less than " + std::to_string(settings.leastFree) + " MiB are free in " +
           settings.outputDir + "; no file is converted until there is room";
}

}  // namespace zarn::ingest
