/// The figures by which two evaluations of the moon and sky routines are compared.
#ifndef ZARNSYS_BENCH_FIGURES_H
#define ZARNSYS_BENCH_FIGURES_H

#include <cmath>
#include <cstddef>
#include <limits>

#include "SkyCase.h"

constexpr double UNBOUNDED = std::numeric_limits<double>::max();  // but not infinite
constexpr double ANGLE_BOUND = 1e-9;              // [unit]: dates make angles of 1e6 deg
constexpr double SIDEREAL_BOUND = 1e-11;          // [h]: dates make 100 turns
constexpr double ROUNDING_BOUND = 1e-12;          // [unit]: well-conditioned everywhere
constexpr double TIME_BOUND = 3.0 / (1UL << 31);  // [d]: 3 steps of a double near JD 2.4e6
constexpr double SYNODIC_MONTH = 29.5305888531;   // [d]
constexpr double NO_MOONLIGHT = 99.0;             // [mag]
constexpr double RAD_PER_DEG = 0.017453292519943295;

enum class Measure {
    PLAIN,       // the difference, modulo the figure's period if it has one
    ON_THE_SKY,  // an azimuth's times the cosine of the altitude: azimuths crowd at the zenith
    AGE_STEPS,   // an age's in steps of single precision
    PHASE_STEPS  // the same of an age over the mean synodic month
};

/// Where a figure is held to its bound: while this output lies between these values.
struct Regular {
    Output of;
    double low;
    double high;
};

struct Figure {
    const char* name;
    const char* unit;
    Output output;
    unsigned long inputs;  // bit set of Input
    double bound;
    Regular regular;
    double period = 0;  // 0: none
    Measure measure = Measure::PLAIN;
    /// Outputs further apart come from two branches of the formula.
    double otherBranch = std::numeric_limits<double>::infinity();
};

constexpr std::size_t FIGURES = 23;
extern const Figure FIGURE_TABLE[FIGURES];

inline double singleStep(double age) {
    const auto single = static_cast<float>(age);
    return static_cast<double>(std::nextafter(single, std::numeric_limits<float>::infinity())) -
           static_cast<double>(single);
}

template <typename Number>
double difference(const Figure& figure, const Outputs<double>& ours,
                  const Outputs<Number>& reference) {
    const Number exact = static_cast<Number>(ours[figure.output]) - reference[figure.output];
    double apart = std::fabs(static_cast<double>(exact));
    if (figure.period > 0) apart = std::fabs(std::remainder(apart, figure.period));
    const auto value = static_cast<double>(reference[figure.output]);
    switch (figure.measure) {
        case Measure::PLAIN:
            return apart;
        case Measure::ON_THE_SKY:
            return apart *
                   std::cos(static_cast<double>(reference[figure.regular.of]) * RAD_PER_DEG);
        case Measure::AGE_STEPS:
            return apart / singleStep(value);
        case Measure::PHASE_STEPS:
            return apart * SYNODIC_MONTH / singleStep(value * SYNODIC_MONTH);
    }
    return apart;
}

template <typename Number>
bool isAtEdge(const Figure& figure, const Outputs<Number>& out) {
    return out[figure.regular.of] <= figure.regular.low ||
           out[figure.regular.of] >= figure.regular.high;
}

template <typename Number>
bool otherBranch(const Figure& figure, const Outputs<double>& ours,
                 const Outputs<Number>& reference) {
    const Number apart = static_cast<Number>(ours[figure.output]) - reference[figure.output];
    return std::fabs(static_cast<double>(apart)) > figure.otherBranch;
}

#endif  // ZARNSYS_BENCH_FIGURES_H
