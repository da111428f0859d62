/// How a run's results are made, by its settings.
#ifndef ZARN_INGEST_CONVERSION_H
#define ZARN_INGEST_CONVERSION_H

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
    options.checksum = settings.checksum;
    options.resume = settings.resume || service;
    options.durable = options.resume || !settings.journalDir.empty();
    options.reading = {settings.strict, settings.primaryOnly};
    options.moon = settings.moon;
    return options;
}

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CONVERSION_H
