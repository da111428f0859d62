/// Whatever a header text file holds.

#include "fuzz/Conversion.h"
#include "fuzz/Harness.h"

void zarn::tryInput(const std::string& input) { convert(input); }
