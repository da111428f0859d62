/// The bytes of a header text file.
#ifndef ZARN_INGEST_HEADERFILE_H
#define ZARN_INGEST_HEADERFILE_H

#include <string>

namespace zarn::ingest {

/// Reads a file.
///
/// @throw IngestError  when there is no such file, or it is none, or larger than any header
/// @throw InputWaits   when the file is there and cannot be read
std::string readHeaderFile(const std::string& fileName);

/// @throw IngestError  for bytes that are no text, or a FITS file
void refuseOtherThanText(const std::string& bytes);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_HEADERFILE_H
