/// FITS files from header texts.
#ifndef ZARN_PYTHON_HEADERFILE_H
#define ZARN_PYTHON_HEADERFILE_H

#include <string>

namespace zarn::python {

/// What became of a FITS file.
struct Outcome {
    int status;        ///< CFITSIO's, 0 for success
    std::string text;  ///< what CFITSIO says of a failure
};

/// Makes a FITS file by `ZarnSysFits::hdr2fits` and closes it; of a refused header nothing stays.
/// Nothing is logged: the outcome tells. One thread at a time.
///
/// @param headerName  name of the header text file
/// @param fitsName    name of the new file, as CFITSIO takes it
Outcome makeFits(const std::string& headerName, const std::string& fitsName);

}  // namespace zarn::python

#endif  // ZARN_PYTHON_HEADERFILE_H
