/// When an exposure was made, from the keywords that observatories use for it.
#ifndef ZARN_INGEST_EXPOSURETIME_H
#define ZARN_INGEST_EXPOSURETIME_H

#include <cstddef>
#include <optional>
#include <string>

#include "zarn-ingest/header/HeaderText.h"

namespace zarn::ingest {

/// An instant, and where a header names it.
struct ExposureTime {
    double mjd;           ///< universal time [d]
    std::string keyword;  ///< that held the time of day
    std::size_t line;
};

/// The first of these that a text has: MJD-OBS or MJD_OBS; an instant in DATE-OBS, DATE_OBS or
/// DATE-BEG, or a day there and the time in TIME-OBS, UT or their like. None where no keyword holds
/// a day.
///
/// @throw Malformed  for a value of another form, and a day without a time
std::optional<ExposureTime> exposureTime(const HeaderText& text);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_EXPOSURETIME_H
