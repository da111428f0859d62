/// @file
/// FITS files through CFITSIO: opening, closing, and making one from a header text file.
///
/// Every function returns a CFITSIO status, 0 for success, and throws nothing but `std::bad_alloc`.
/// File names meet CFITSIO's own rules: it gives a meaning to brackets, parentheses, '!', ".gz" and
/// more. The functions keep no state; threads may use them as far as the CFITSIO build allows, also
/// for the first file of the process.
#ifndef ZARNSYS_UTIL_FITSUTILS_H
#define ZARNSYS_UTIL_FITSUTILS_H

#include <fitsio.h>

#include <string>

#include "Export.h"

/// Handle of an open FITS file.
using FitsFile = fitsfile;

/// FITS files through CFITSIO.
namespace ZarnSysFits {

using ::FitsFile;

/// Bytes that hold one header card: 80 characters and the terminating NUL.
ZARNSYS_EXPORT inline constexpr int RECORD_MAX_LENGTH = 81;

/// Opens an existing FITS file. Logs nothing.
///
/// @param rpfitsFile  receives the handle, which the caller closes by `closeFitsFile`
/// @param fileName    name of the file
/// @param mode        READONLY (0) or READWRITE (1)
/// @return            CFITSIO status
ZARNSYS_EXPORT int openFitsFile(FitsFile*& rpfitsFile, std::string fileName, int mode);

/// Closes a FITS file; CFITSIO completes the header on disk. Logs nothing.
///
/// CFITSIO reports no write that the system refuses at this moment, as on a full disk. Who must
/// know opens the file again and compares.
///
/// @return  CFITSIO status; a valid handle is gone either way
ZARNSYS_EXPORT int closeFitsFile(FitsFile* pfitsFile);

/// Makes a FITS file whose primary header holds the lines of a text file, one card per line.
///
/// Lines are taken as they are: CFITSIO cuts them at 80 characters, fills them with blanks, blanks
/// characters that a header cannot hold and writes keywords in upper case. The header is then made
/// to describe no data: NAXIS becomes 0 (appended where missing), one NAXIS1 and one NAXIS2 are
/// deleted. Later axes, GROUPS and PCOUNT stay, and a header that still describes data makes
/// CFITSIO write that much when the file is closed. A text file that cannot be read counts as an
/// empty one.
///
/// A failure is logged at ERROR. After a card that was refused, the cards before it are in the file
/// and NAXIS is untouched.
///
/// @param fptr          receives the handle of the new file, open; the caller closes it by
///                      `closeFitsFile`, also after a failure that left it set
/// @param hdrFilename   name of the header text file
/// @param fitsFilename  name of the new file; unless it begins with '!', no such file may exist
/// @return              CFITSIO status of the first failure, or 0
ZARNSYS_EXPORT int hdr2fits(FitsFile** fptr, std::string hdrFilename, std::string fitsFilename);

}  // namespace ZarnSysFits

#endif  // ZARNSYS_UTIL_FITSUTILS_H
