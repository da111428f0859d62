/// Makes a FITS file of a header text file and reads a keyword: example-fits-header FILE

#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/FitsUtils.h>

#include <array>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::string result = "example-header.fits";
    FitsFile* file = nullptr;
    int status = ZarnSysFits::hdr2fits(&file, argv[1], result);
    std::array<char, FLEN_VALUE> object = {};
    fits_read_key(file, TSTRING, "OBJECT", object.data(), nullptr, &status);
    if (file != nullptr && ZarnSysFits::closeFitsFile(file) == 0 && status == 0)
        std::cout << "OBJECT: " << object.data() << "\n";
    FileIO(result, true, true).remove(true);
    return status == 0 ? 0 : 1;
}
