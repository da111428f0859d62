/// Streams for texts that must be whole.
#ifndef ZARN_TEXTSTREAMS_H
#define ZARN_TEXTSTREAMS_H

#include <sstream>
#include <string>

namespace zarn {

/// A stream that throws `std::bad_alloc` when memory runs out. A plain one leaves out the rest, and
/// says nothing.
template <typename Stream>
class Throwing : public Stream {
public:
    Throwing() { this->exceptions(Stream::badbit); }
    explicit Throwing(const std::string& text) : Stream(text) { this->exceptions(Stream::badbit); }
};

using TextWriter = Throwing<std::ostringstream>;
using TextReader = Throwing<std::istringstream>;

}  // namespace zarn

#endif  // ZARN_TEXTSTREAMS_H
