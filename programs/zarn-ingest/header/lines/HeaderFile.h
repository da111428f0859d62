/// The bytes of a header text file.
#ifndef ZARN_INGEST_HEADERFILE_H
#define ZARN_INGEST_HEADERFILE_H

#include <optional>
#include <string>

#include "shared/files/FileVersion.h"

namespace zarn::ingest {

/// A file as it was read.
struct HeaderFile {
    std::string bytes;
    std::optional<FileVersion> version;  ///< from before it was read
};

/// Reads a file.
///
/// @throw IngestError  when there is no such file, or it is none, or larger than any header
/// @throw InputWaits   when the file is there and cannot be read
HeaderFile readHeaderFile(const std::string& fileName);

/// @throw IngestError  for bytes that are no text, or a FITS file
void refuseOtherThanText(const std::string& bytes);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_HEADERFILE_H
