/// From what a run is asked to do to how its results are made.
#ifndef ZARN_INGEST_CONVERSION_H
#define ZARN_INGEST_CONVERSION_H

#include "zarn-ingest/result/Converter.h"
#include "zarn-ingest/settings/Settings.h"

/// A service goes on where it was killed, unasked; whatever a journal tells is safe on disk before.
inline ConversionOptions conversionOf(const Settings& settings) {
    const bool service = settings.isService();
    ConversionOptions options;
    options.overwrite = settings.force;
    options.dryRun = settings.dryRun;
    options.checksum = settings.checksum;
    options.resume = settings.resume || service;
    options.durable = options.resume || !settings.journalDir.empty();
    options.reading = {settings.strict, settings.primaryOnly};
    options.moon = settings.moon;
    return options;
}

#endif  // ZARN_INGEST_CONVERSION_H
