/// Random inputs, the same on every machine save for last digits, and what is said of differences.
#ifndef ZARNSYS_BENCH_STATISTICS_H
#define ZARNSYS_BENCH_STATISTICS_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

/// The standard's own generator; its distributions differ between libraries and are not used.
class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    double between(double low, double high) {
        return low + (high - low) * static_cast<double>(engine_() >> 11) * 0x1p-53;
    }
    /// A multiple of `step`, a power of two; exact on every machine as long as a double holds it.
    double onGrid(double low, double high, double step) {
        return std::floor(between(low, high) / step) * step;
    }
    int integer(int low, int high) { return static_cast<int>(std::floor(between(low, high + 1))); }

private:
    std::mt19937_64 engine_;
};

/// Differences, each with the number of the input that gave it. Quantiles and the worst are those
/// of the absolute values.
class Differences {
public:
    /// A not-a-number counts as infinite.
    void add(double difference, std::size_t input) {
        values_.push_back(
            {std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference, input});
    }

    std::size_t count() const { return values_.size(); }

    double mean() const {
        double sum = 0;
        for (const Value& value : values_) sum += value.difference;
        return sum / static_cast<double>(values_.size());
    }

    double rms() const {
        double sum = 0;
        for (const Value& value : values_) sum += value.difference * value.difference;
        return std::sqrt(sum / static_cast<double>(values_.size()));
    }

    /// The absolute value that `part` of all do not exceed; 0 of none.
    double quantile(double part) const { return std::fabs(at(part).difference); }
    double worst() const { return quantile(1.0); }
    std::size_t worstInput() const { return at(1.0).input; }

private:
    struct Value {
        double difference;
        std::size_t input;
    };

    Value at(double part) const {
        if (values_.empty()) return {0.0, 0};
        std::vector<Value> values = values_;
        const auto rank =
            static_cast<std::size_t>(std::ceil(part * static_cast<double>(values.size()))) - 1;
        const auto nth = values.begin() + static_cast<std::ptrdiff_t>(rank);
        std::nth_element(values.begin(), nth, values.end(), [](const Value& a, const Value& b) {
            return std::fabs(a.difference) < std::fabs(b.difference);
        });
        return *nth;
    }

    std::vector<Value> values_;
};

#endif  // ZARNSYS_BENCH_STATISTICS_H
