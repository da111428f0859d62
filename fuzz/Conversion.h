/// The conversion of one header text, and what must be true of its result.
#ifndef FUZZ_CONVERSION_H
#define FUZZ_CONVERSION_H

#include <string>

namespace zarn {

/// Converts a text as zarn-ingest does, with settings that its length chooses. It is refused for a
/// fault of its own, or gives one FITS file of as many headers as are told of, with nothing between
/// and after them, and no larger than its text asks for; nothing else is left.
void convert(const std::string& text);

}  // namespace zarn

#endif  // FUZZ_CONVERSION_H
