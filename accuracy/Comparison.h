/// Collects how far two evaluations of the moon and sky routines are apart, and tells it.
#ifndef ZARNSYS_BENCH_COMPARISON_H
#define ZARNSYS_BENCH_COMPARISON_H

#include <array>
#include <cstddef>
#include <vector>

#include "Figures.h"
#include "SkyInputs.h"
#include "Statistics.h"

class Comparison {
public:
    /// @param kind  which kind of input it is: a row of EDGE_TABLE, or EDGES for an ordinary one
    template <typename Number>
    void add(std::size_t kind, const Inputs& in, const Outputs<double>& ours,
             const Outputs<Number>& reference) {
        const std::size_t number = inputs_.size();
        inputs_.push_back(in);
        for (std::size_t i = 0; i < FIGURES; ++i) {
            const Figure& figure = FIGURE_TABLE[i];
            if (kind != EDGES && !concerns(EDGE_TABLE[kind], figure)) continue;
            // A value that is wrong must not pass for one at an edge: both have to be there.
            const bool strays =
                kind == EDGES && isAtEdge(figure, ours) && isAtEdge(figure, reference);
            Tally& tally = strays ? strays_[i] : tallies_[kind][i];
            if (otherBranch(figure, ours, reference)) {
                ++tally.otherBranch;
                if (strays || (kind != EDGES && !EDGE_TABLE[kind].bounded)) continue;
            }
            tally.differences.add(difference(figure, ours, reference), number);
        }
    }

    /// Prints all.
    ///
    /// @return  whether every bound is kept
    bool report() const;

private:
    struct Tally {
        Differences differences;
        std::size_t otherBranch = 0;  // among the differences only where the bounds hold
    };
    using Tallies = std::array<Tally, FIGURES>;

    void print(const Figure& figure, const Tally& tally, double bound) const;
    /// @return  whether the bounds are kept, or without them all is a number
    bool printEdges(const Tallies& tallies, bool bounded) const;

    std::vector<Inputs> inputs_;
    std::array<Tallies, EDGES + 1> tallies_;  // by kind, the ordinary inputs last
    Tallies strays_;                          // ordinary inputs that happen to lie near an edge
};

#endif  // ZARNSYS_BENCH_COMPARISON_H
