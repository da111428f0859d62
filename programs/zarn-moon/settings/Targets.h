/// What an observer wants to look at.
#ifndef ZARN_MOON_TARGETS_H
#define ZARN_MOON_TARGETS_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shared/sky/Angles.h"

namespace zarn::moon {

/// One thing to look at.
struct Target {
    std::string name;   ///< of a target on the command line its position as given
    Position position;  ///< as given, not precessed
    std::optional<double> minAltitude = std::nullopt;  ///< of its best window [deg]
    std::optional<double> weight = std::nullopt;       ///< its importance, 0 or more

    /// Titles and texts of its file's further columns, as they stand there; no title comes twice.
    std::vector<std::pair<std::string, std::string>> columns = {};
};

/// A file name that stands for standard input, or where a result goes for standard output.
inline constexpr char STANDARD_STREAM[] = "-";

/// The targets of a file, one in a line.
///
/// Fields are separated by commas, semicolons or tabs, by whichever the first line reads with; one
/// that holds the separator stands in double quotes. `parsePosition` reads the positions. Without a
/// line of titles, the first three columns are name, right ascension and declination. A first line
/// with the titles name, ra and dec says where these are, and may have min_altitude and weight.
/// Empty lines, and lines that begin with #, are ignored.
///
/// @throw UsageError  naming the file, and the line at fault
std::vector<Target> readTargets(const std::string& fileName);

}  // namespace zarn::moon

#endif  // ZARN_MOON_TARGETS_H
