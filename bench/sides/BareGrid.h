/// The sines, cosines and arcs of a moon grid, and nothing else: what no arrangement of the work
/// around them can save.
#ifndef ZARNSYS_BENCH_BAREGRID_H
#define ZARNSYS_BENCH_BAREGRID_H

#include <vector>

namespace bare {

/// For every instant 18 sines and 9 cosines, the sums of both in `results`, of the same size.
void sineGrid(const std::vector<double>& instants, std::vector<double>& results);

struct Directions {
    std::vector<double> x, y, z;
};

/// For every instant a scalar product with each target, its arc cosine into `separations`.
void arcGrid(const Directions& targets, const Directions& moons, std::vector<double>& separations);

}  // namespace bare

#endif  // ZARNSYS_BENCH_BAREGRID_H
