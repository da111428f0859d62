/// How a run's results are made, by its settings.
#ifndef ZARN_INGEST_CONVERSION_H
#define ZARN_INGEST_CONVERSION_H

#include <cstddef>

#include "zarn-ingest/result/Converter.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// The options of the converter. A service always continues where it was killed; a result is safe
/// on disk before a journal has it.
inline ConversionOptions conversionOf(const Settings& settings) {
    const bool service = settings.isService();
    ConversionOptions options;
    options.force = settings.force;
    options.dryRun = settings.dryRun;
    options.resume = settings.resume || service;
    options.durable = options.resume || !settings.journalDir.empty();
    options.reading = {settings.strict, settings.primaryOnly};
    options.additions = {settings.checksum, settings.moon};
    return options;
}

/// How many results are finished together. Where each is safe on disk, or each has its line in a
/// report that is, waiting for one another saves most of the time.
inline std::size_t groupSizeOf(const Settings& settings) {
    constexpr std::size_t MOST = 32;
    return conversionOf(settings).durable || !settings.report.empty() ? MOST : 1;
}

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CONVERSION_H
