/// The moon's values at the time of an exposure, as cards for its header.
#ifndef ZARN_INGEST_MOONCARDS_H
#define ZARN_INGEST_MOONCARDS_H

#include <zarnsys/util/ZarnMoonVal.h>

#include <string>
#include <vector>

#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/header/Remark.h"

namespace zarn::ingest {

/// What a header gets, and what there is to say of it.
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

/// The cards for a text's primary header: the same ones each time. Position and time are taken from
/// the first of the text's headers that has them. A keyword that the primary header has is left
/// out, with a remark; a position or time that is malformed gives a remark and no card.
MoonCards moonCards(const HeaderText& text, Telescope telescope);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_MOONCARDS_H
