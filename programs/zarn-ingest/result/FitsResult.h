/// The FITS file of a header text: made, and read again.
#ifndef ZARN_INGEST_FITSRESULT_H
#define ZARN_INGEST_FITSRESULT_H

#include <string>

#include "shared/files/MemoryFile.h"
#include "zarn-ingest/header/HeaderText.h"

namespace zarn::ingest {

/// Makes a file of one HDU per header, none of which has data.
///
/// @param memory    hands the text of the first header over
/// @param checksum  add DATASUM and CHECKSUM to each HDU
/// @throw FitsFileError  when CFITSIO cannot create or write the file
/// @throw IngestError    when it refuses a header
void makeFitsFile(const HeaderText& text, MemoryFile& memory, const std::string& path,
                  bool checksum);

/// Reads an open file from its beginning, byte by byte, and makes sure of every HDU: its cards are
/// those of the text, in their order and without others but renewed checksums, which fit; and the
/// file holds nothing else.
///
/// @throw std::system_error  when the file cannot be read
/// @throw FitsFileError      when the file is cut short, or CFITSIO cannot verify its checksums
/// @throw IngestError        when the file differs
void verifyFitsFile(const HeaderText& text, int fd, bool checksum);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_FITSRESULT_H
