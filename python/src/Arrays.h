/// What lies between NumPy's arrays and the library's vectors.
#ifndef ZARN_PYTHON_ARRAYS_H
#define ZARN_PYTHON_ARRAYS_H

#include <pybind11/numpy.h>
#include <zarnsys/util/MoonGrid.h>

#include <memory>
#include <utility>
#include <vector>

namespace zarn::python {

/// Doubles side by side in memory; what comes otherwise is copied on the way in.
using Doubles = pybind11::array_t<double, pybind11::array::c_style | pybind11::array::forcecast>;
using Shape = std::vector<pybind11::ssize_t>;

inline Shape shapeOf(const pybind11::array& array) {
    return {array.shape(), array.shape() + array.ndim()};
}

/// The instants' shape and behind it the targets'.
inline Shape tableShape(const pybind11::array& instants, const pybind11::array& targets) {
    Shape shape = shapeOf(instants);
    shape.insert(shape.end(), targets.shape(), targets.shape() + targets.ndim());
    return shape;
}

inline std::vector<double> vectorOf(const Doubles& array) {
    return {array.data(), array.data() + array.size()};
}

/// @param ra, dec  of equal shape
inline std::vector<SkyPosition> positionsOf(const Doubles& ra, const Doubles& dec) {
    std::vector<SkyPosition> positions;
    positions.reserve(static_cast<std::size_t>(ra.size()));
    for (pybind11::ssize_t i = 0; i < ra.size(); ++i)
        positions.push_back({ra.data()[i], dec.data()[i]});
    return positions;
}

template <class Value>
Value* memoryOf(std::vector<Value>& values) {
    return values.data();
}
inline double* memoryOf(TargetTable& table) { return table.row(0); }

/// An array over the memory of a vector or table, which lives as long as the array.
template <class Values>
pybind11::array adopted(Values values, const Shape& shape) {
    auto owner = std::make_unique<Values>(std::move(values));
    auto* const memory = memoryOf(*owner);
    const pybind11::capsule base(owner.get(),
                                 [](void* held) { delete static_cast<Values*>(held); });
    static_cast<void>(owner.release());  // it is the capsule's now
    return pybind11::array(shape, memory, base);
}

}  // namespace zarn::python

#endif  // ZARN_PYTHON_ARRAYS_H
