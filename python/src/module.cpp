/// The part of the Python module `zarnsys` that calls the library. It takes what the Python part
/// has checked: finite or not-a-number coordinates in range, `ra` and `dec` of equal shape.

#include <pybind11/pybind11.h>

#include "Arrays.h"
#include "HeaderFile.h"
#include "Sky.h"
#include "shared/cli/Value.h"
#include "shared/sky/Telescopes.h"

namespace py = pybind11;

namespace zarn::python {

namespace {

Place placeOf(double latitude, double westLongitude) {
    Place place;
    place.latitude = latitude;
    place.westLongitude = westLongitude;
    return place;
}

/// Calls a function while other Python threads run.
template <class Function>
auto unlocked(Function function) {
    const py::gil_scoped_release released;
    return function();
}

py::tuple moon(const Doubles& mjd, double latitude, double westLongitude) {
    const std::vector<double> instants = vectorOf(mjd);
    const Place place = placeOf(latitude, westLongitude);
    MoonGrid grid = unlocked([&] { return computeMoonGrid({}, instants, place); });
    const Shape shape = shapeOf(mjd);
    return py::make_tuple(
        adopted(std::move(grid.altitude), shape), adopted(std::move(grid.azimuth), shape),
        adopted(std::move(grid.distance), shape), adopted(std::move(grid.elongation), shape),
        adopted(std::move(grid.illumination), shape), adopted(std::move(grid.phase), shape),
        adopted(std::move(grid.siderealTime), shape));
}

py::tuple sun(const Doubles& mjd, double latitude, double westLongitude) {
    const std::vector<double> instants = vectorOf(mjd);
    const Place place = placeOf(latitude, westLongitude);
    Sun found = unlocked([&] { return sunAt(instants, place); });
    const Shape shape = shapeOf(mjd);
    return py::make_tuple(adopted(std::move(found.ra), shape), adopted(std::move(found.dec), shape),
                          adopted(std::move(found.altitude), shape));
}

py::array separation(const Doubles& ra, const Doubles& dec, const Doubles& mjd, double latitude,
                     double westLongitude) {
    const std::vector<SkyPosition> targets = positionsOf(ra, dec);
    const std::vector<double> instants = vectorOf(mjd);
    const Place place = placeOf(latitude, westLongitude);
    MoonGrid grid = unlocked([&] { return computeMoonGrid(targets, instants, place); });
    return adopted(std::move(grid.separation), tableShape(mjd, ra));
}

py::tuple observe(const Doubles& ra, const Doubles& dec, const Doubles& mjd, double latitude,
                  double westLongitude, double darkSky, double extinction) {
    const std::vector<SkyPosition> targets = positionsOf(ra, dec);
    const std::vector<double> instants = vectorOf(mjd);
    const Place place = placeOf(latitude, westLongitude);
    const SkyConditions conditions = conditionsOf(darkSky, extinction);
    SkyGrid grid = unlocked([&] { return computeSkyGrid(targets, instants, place, conditions); });
    const Shape shape = tableShape(mjd, ra);
    return py::make_tuple(
        adopted(std::move(grid.altitude), shape), adopted(std::move(grid.airmass), shape),
        adopted(std::move(grid.separation), shape), adopted(std::move(grid.moonlight), shape),
        adopted(std::move(grid.sky), shape));
}

py::tuple precess(const Doubles& ra, const Doubles& dec, const Doubles& mjd) {
    const std::vector<SkyPosition> targets = positionsOf(ra, dec);
    const std::vector<double> instants = vectorOf(mjd);
    PositionTables tables = unlocked([&] { return precessedTo(instants, targets); });
    const Shape shape = tableShape(mjd, ra);
    return py::make_tuple(adopted(std::move(tables.ra), shape),
                          adopted(std::move(tables.dec), shape));
}

py::tuple phases(double start, double stop) {
    Phases found = unlocked([&] { return phasesBetween(start, stop); });
    const Shape shape = {static_cast<py::ssize_t>(found.instants.size())};
    return py::make_tuple(adopted(std::move(found.instants), shape),
                          adopted(std::move(found.kinds), shape));
}

py::tuple telescope(const std::string& name) {
    try {
        const Place place = telescopePlace(telescopeOf(name));
        return py::make_tuple(place.latitude, place.westLongitude);
    } catch (const WrongValue& wrong) {
        throw py::value_error(std::string("the telescope must be ") + wrong.what());
    }
}

py::tuple headerToFits(const std::string& headerName, const std::string& fitsName) {
    const Outcome outcome = makeFits(headerName, fitsName);
    return py::make_tuple(outcome.status, outcome.text);
}

}  // namespace

}  // namespace zarn::python

PYBIND11_MODULE(_core, module) {
    namespace core = zarn::python;
    module.attr("__version__") = ZARNSYS_VERSION;
    module.def("moon", &core::moon);
    module.def("sun", &core::sun);
    module.def("separation", &core::separation);
    module.def("observe", &core::observe);
    module.def("precess", &core::precess);
    module.def("phases", &core::phases);
    module.def("telescope", &core::telescope);
    module.def("header_to_fits", &core::headerToFits);
}
