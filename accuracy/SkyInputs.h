/// Random inputs for the moon and sky routines, and inputs at the edges of their formulas.
#ifndef ZARNSYS_BENCH_SKYINPUTS_H
#define ZARNSYS_BENCH_SKYINPUTS_H

#include <cstddef>

#include "Figures.h"
#include "SkyCase.h"
#include "Statistics.h"

/// Dates from 1950 to 2100, all latitudes and longitudes, the whole sky. The Modified Julian Date
/// is the Julian Date's, without a rounding.
Inputs randomInputs(Random& random);

/// Inputs where a formula is ill-conditioned or a branch begins.
struct EdgeKind {
    const char* name;
    const char* why;
    void (*move)(Inputs& in, Random& random);  // moves ordinary inputs there
    unsigned long outputs;                     // bit set of Output: what is looked at
    bool bounded;  // whether the figures' bounds hold here, too: nothing is lost
};

constexpr std::size_t EDGES = 23;
extern const EdgeKind EDGE_TABLE[EDGES];

inline bool concerns(const EdgeKind& kind, const Figure& figure) {
    return (kind.outputs >> figure.output & 1UL) != 0;
}

#endif  // ZARNSYS_BENCH_SKYINPUTS_H
