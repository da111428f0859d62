/// The moon's values at the time of an exposure, as cards for its header.
#ifndef ZARN_INGEST_MOONCARDS_H
#define ZARN_INGEST_MOONCARDS_H

#include <zarnsys/util/ZarnMoonVal.h>

#include <cstddef>
#include <string>
#include <vector>

#include "zarn-ingest/header/HeaderText.h"

/// Something about one line that the operator should know.
struct Remark {
    std::size_t line;  ///< counted from 1
    std::string text;
};

struct MoonCards {
    enum class State {
        NOT_ASKED,
        GIVEN,      ///< the header has the values: added now, or from before
        WITHOUT,    ///< the header has no position or no time
        MALFORMED,  ///< one of them cannot be read
    };

    State state = State::NOT_ASKED;
    std::vector<std::string> lines;  ///< to be added before END
    std::vector<Remark> remarks;
};

/// The cards for a header: the same ones each time. A keyword that the header has is left out, with
/// a remark; a position or time that is malformed gives a remark and no card.
MoonCards moonCards(const HeaderText& header, Telescope telescope);

#endif  // ZARN_INGEST_MOONCARDS_H
