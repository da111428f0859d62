/// The report: JSON Lines, one object for each input.
///
/// Each object holds "time" (UTC), "source", "result", "status" ("converted", "failed" or, where
/// the machine is to blame, "waits"), "hdus", "cards", "bytes", "repairs" (of each word "count" and
/// "first_line") and "warnings" ("line", "text"); for an input that was not converted also "line",
/// "text" and "cfitsio_status", with null for what there is not. Names are printable: control
/// characters read \xHH.
#ifndef ZARN_INGEST_REPORTFILE_H
#define ZARN_INGEST_REPORTFILE_H

#include <string>
#include <vector>

#include "zarn-ingest/report/LineFile.h"
#include "zarn-ingest/result/Converter.h"

namespace zarn::ingest {

/// A report that this run alone writes, until its end.
class ReportFile {
public:
    /// Opens the file, or makes it, and keeps other runs from it.
    ///
    /// @throw std::exception  when it cannot be written, or another run writes it
    explicit ReportFile(const std::string& fileName);

    const std::string& name() const { return name_; }

    /// Adds inputs, safe on disk.
    ///
    /// @throw std::exception  when the lines cannot be written; no part of them stays then
    void add(const std::vector<Conversion>& conversions);

private:
    std::string name_;
    Descriptor lock_;
    LineFile file_;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_REPORTFILE_H
