/// The library's moon and sky against independent theory: accuracy [COUNT [FIRST LAST]]
///
/// COUNT random instants and places of latitudes -60 to 60 (50000 unless given), from the beginning
/// of the year FIRST to that of LAST (2000 and 2050).
/// Differences are the library's value less the true one.

#include <erfa.h>
#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/ZarnMoonVal.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Almanac.h"
#include "Statistics.h"
#include "programs/shared/sky/Units.h"

namespace {

constexpr unsigned long COUNT = 50000;
constexpr std::uint64_t SEED = 3;
constexpr double AT_HORIZON = 3.0;  // altitudes where the moon counts as rising or setting [deg]

/// The time that is looked at, as Julian Dates [d].
struct Span {
    double begin;
    double end;
};

/// An instant and a place, and a target there with the extinction for it.
struct Scene {
    double jd;
    Observer observer;
    SkyPlace target;
    double extinction;  // [mag per airmass]
};

/// What the library says about a scene.
struct Moon {
    double sidereal, fli, distanceToTarget, altitude, azimuth, phase, alphaSun, distance;
};

Moon libraryMoon(const Scene& scene) {
    Moon moon{};
    computeMoonParam(scene.target.ra * zarn::DEG_PER_HOUR, scene.target.dec,
                     scene.jd - zarn::JD_OF_MJD_0, scene.observer.longitude,
                     scene.observer.latitude, &moon.sidereal, &moon.fli, &moon.distanceToTarget,
                     &moon.altitude, &moon.azimuth, &moon.phase, &moon.alphaSun, &moon.distance);
    return moon;
}

Vector libraryPlace(const Scene& scene, double jd, double sidereal) {
    SkyPlace place{};
    double distance = 0;
    lpmoon(jd, scene.observer.latitude, sidereal, &place.ra, &place.dec, &distance);
    return directionOf(place);
}

/// Differences of one quantity, printed as a line of a table.
class Quantity {
public:
    Quantity(const char* name, const char* unit) : name_(name), unit_(unit) {}

    void add(double difference, const Scene& scene) {
        differences_.add(difference, scenes_.size());
        scenes_.push_back(scene);
    }

    void print() const {
        if (differences_.count() == 0) return;
        const Scene& worst = scenes_[differences_.worstInput()];
        std::printf("%-42s %-5s %6zu %9.3g %8.3g %8.3g %8.3g %8.3g  %.4f", name_, unit_,
                    differences_.count(), differences_.mean(), differences_.rms(),
                    differences_.quantile(0.5), differences_.quantile(0.95), differences_.worst(),
                    worst.jd);
        if (worst.observer.latitude != 0)
            std::printf(" %.2f %.2f", worst.observer.latitude, worst.observer.longitude);
        std::putchar('\n');
    }

private:
    const char* name_;
    const char* unit_;
    Differences differences_;
    std::vector<Scene> scenes_;
};

void printHeading(const char* title) {
    std::printf("\n%-42s %-5s %6s %9s %8s %8s %8s %8s  worst at jd, latitude, west longitude\n",
                title, "unit", "count", "mean", "rms", "median", "95 %", "worst");
}

/// Moon and sun at random instants and places.
struct Positions {
    Quantity sphere{"moon's place, true one on a sphere", "deg"};
    Quantity ellipsoid{"moon's place, true one on the ellipsoid", "deg"};
    Quantity dynamical{"moon's place, given dynamical time", "deg"};
    Quantity altitudeSphere{"moon's altitude, on a sphere", "deg"};
    Quantity altitude{"moon's altitude, on the ellipsoid", "deg"};
    Quantity riseAndSet{"moon through the horizon, by its altitude", "min"};
    Quantity distance{"moon's distance", "%"};
    Quantity sun{"sun's place", "deg"};
    Quantity alphaSun{"angle between sun and moon", "deg"};
    Quantity fli{"lit fraction", ""};
    Quantity phase{"phase taken for lit fraction: 2p, 2 - 2p", ""};
    Quantity sidereal{"sidereal time", "s"};

    void add(const Scene& scene, const TrueSky& sky, const Moon& moon);
    void print() const;
};

/// How fast the moon climbs [deg per minute].
double altitudeRate(const Scene& scene) {
    const auto altitudeAt = [&](double jd) {
        const TrueSky sky(jd);
        return sky.altitude(scene.observer, sky.moonFor(scene.observer, Earth::ELLIPSOID));
    };
    constexpr double MINUTE = 1.0 / zarn::MINUTES_PER_DAY;
    return (altitudeAt(scene.jd + MINUTE) - altitudeAt(scene.jd - MINUTE)) / 2.0;
}

void Positions::add(const Scene& scene, const TrueSky& sky, const Moon& moon) {
    const Vector onSphere = sky.moonFor(scene.observer, Earth::SPHERE);
    const Vector onEllipsoid = sky.moonFor(scene.observer, Earth::ELLIPSOID);
    const Vector ours = libraryPlace(scene, scene.jd, moon.sidereal);
    sphere.add(angleBetween(ours, onSphere), scene);
    ellipsoid.add(angleBetween(ours, onEllipsoid), scene);
    dynamical.add(
        angleBetween(libraryPlace(scene, scene.jd + deltaT(scene.jd), moon.sidereal), onSphere),
        scene);
    altitudeSphere.add(moon.altitude - sky.altitude(scene.observer, onSphere), scene);
    const double trueAltitude = sky.altitude(scene.observer, onEllipsoid);
    altitude.add(moon.altitude - trueAltitude, scene);
    if (std::fabs(trueAltitude) < AT_HORIZON)
        riseAndSet.add((moon.altitude - trueAltitude) / altitudeRate(scene), scene);
    distance.add(100.0 * (moon.distance / lengthOf(onEllipsoid) - 1.0), scene);
    SkyPlace sunPlace{};
    lpsun(scene.jd, &sunPlace.ra, &sunPlace.dec);
    sun.add(angleBetween(directionOf(sunPlace), sky.sun()), scene);
    alphaSun.add(moon.alphaSun * zarn::DEG_PER_RAD - angleBetween(sky.sun(), onEllipsoid), scene);
    const double lit = (1.0 + std::cos(sky.phaseAngle(onEllipsoid) / zarn::DEG_PER_RAD)) / 2.0;
    fli.add(moon.fli - lit, scene);
    phase.add(1.0 - std::fabs(1.0 - 2.0 * moon.phase) - lit, scene);
    sidereal.add(std::remainder(moon.sidereal - sky.siderealTime(scene.observer), 24.0) * 3600.0,
                 scene);
}

void Positions::print() const {
    printHeading("sun and moon");
    for (const Quantity* quantity :
         {&sphere, &ellipsoid, &dynamical, &altitudeSphere, &altitude, &riseAndSet, &distance, &sun,
          &alphaSun, &fli, &phase, &sidereal})
        quantity->print();
}

/// The published model, Krisciunas & Schaefer 1991, PASP 103, 1033, equations 3, 15, 20, 21 and 1.
///
/// @param phaseAngle  [deg]
/// @return            [V mag per square arc second]
double publishedBrightness(double phaseAngle, double rho, double extinction, double moonAltitude,
                           double altitude) {
    const auto airmass = [](double degrees) {
        const double sinZ = std::cos(degrees / zarn::DEG_PER_RAD);
        return std::pow(1.0 - 0.96 * sinZ * sinZ, -0.5);
    };
    const double illuminance = std::pow(
        10.0, -0.4 * (3.84 + 0.026 * std::fabs(phaseAngle) + 4e-9 * std::pow(phaseAngle, 4)));
    const double cosRho = std::cos(rho / zarn::DEG_PER_RAD);
    const double scattering =
        std::pow(10.0, 5.36) * (1.06 + cosRho * cosRho) + std::pow(10.0, 6.15 - rho / 40.0);
    const double nanolamberts = scattering * illuminance *
                                std::pow(10.0, -0.4 * extinction * airmass(moonAltitude)) *
                                (1.0 - std::pow(10.0, -0.4 * extinction * airmass(altitude)));
    return (20.7233 - std::log(nanolamberts / 34.08)) / 0.92104;
}

/// The moon's light at a target, by night.
struct Moonlight {
    Quantity formula{"formula, mean distance", "mag"};
    Quantity formulaFull{"  the same within 7 deg of full moon", "mag"};
    Quantity ownDistance{"formula, moon's own distance", "mag"};
    Quantity positions{"library's places instead of true ones", "mag"};
    Quantity all{"all together", "mag"};
    Quantity allFull{"  the same within 7 deg of full moon", "mag"};

    void add(const Scene& scene, const TrueSky& sky, const Moon& moon);
    void print() const;
};

/// A place in the sky at least 20 degrees high.
SkyPlace highPlace(Random& random, const TrueSky& sky, const Observer& observer) {
    constexpr double LOWEST = 20.0;
    SkyPlace place{};
    do {
        place.ra = random.between(0.0, 24.0);
        place.dec = std::asin(random.between(-1.0, 1.0)) * zarn::DEG_PER_RAD;
    } while (sky.altitude(observer, directionOf(place)) < LOWEST);
    return place;
}

/// Whether the published model speaks of the scene: night, moon up, target off the moon.
bool isMoonlit(const Scene& scene, const TrueSky& sky) {
    constexpr double NIGHT = -18.0;
    constexpr double MOON_UP = 5.0;
    constexpr double FAR_ENOUGH = 10.0;
    const Vector moon = sky.moonFor(scene.observer, Earth::ELLIPSOID);
    return sky.altitude(scene.observer, sky.sun()) < NIGHT &&
           sky.altitude(scene.observer, moon) > MOON_UP &&
           angleBetween(moon, directionOf(scene.target)) > FAR_ENOUGH;
}

void Moonlight::add(const Scene& scene, const TrueSky& sky, const Moon& moon) {
    constexpr double MEAN_DISTANCE = 60.27;
    constexpr double SURGE = 7.0;  // the library's, below this phase angle [deg]
    const Vector trueMoon = sky.moonFor(scene.observer, Earth::ELLIPSOID);
    const double phaseAngle = sky.phaseAngle(trueMoon);
    const double rho = angleBetween(trueMoon, directionOf(scene.target));
    const double moonAltitude = sky.altitude(scene.observer, trueMoon);
    const double altitude = sky.altitude(scene.observer, directionOf(scene.target));
    const double published =
        publishedBrightness(phaseAngle, rho, scene.extinction, moonAltitude, altitude);
    const auto ours = [&](double distance) {
        return lunskybright(180.0 - phaseAngle, rho, scene.extinction, moonAltitude, altitude,
                            distance);
    };
    double azimuth = 0;
    const double ownAltitude = altit(scene.target.dec, adj_time(moon.sidereal - scene.target.ra),
                                     scene.observer.latitude, &azimuth);
    const double whole = lunskybright(moon.alphaSun * zarn::DEG_PER_RAD, moon.distanceToTarget,
                                      scene.extinction, moon.altitude, ownAltitude, moon.distance);
    const bool surges = phaseAngle < SURGE;
    (surges ? formulaFull : formula).add(ours(MEAN_DISTANCE) - published, scene);
    (surges ? allFull : all).add(whole - published, scene);
    if (surges) return;
    const double trueDistance = lengthOf(trueMoon);
    ownDistance.add(ours(trueDistance) - published, scene);
    positions.add(whole - ours(trueDistance), scene);
}

void Moonlight::print() const {
    printHeading("moonlight against the published model");
    for (const Quantity* quantity :
         {&formula, &formulaFull, &ownDistance, &positions, &all, &allFull})
        quantity->print();
}

/// Universal time of a phase [d], by root finding from a Julian Date near it.
double truePhase(double jd, int quarter) {
    constexpr double DEG_PER_DAY = 12.19;  // mean motion of the moon from the sun
    constexpr double CLOSE = 1e-7;         // [deg]
    double jdTT = jd + deltaT(jd);
    double ahead = 1.0;
    while (std::fabs(ahead) > CLOSE) {
        ahead = std::remainder(elongationInLongitude(jdTT) - 90.0 * quarter, zarn::FULL_CIRCLE);
        jdTT -= ahead / DEG_PER_DAY;
    }
    return jdTT - deltaT(jd);
}

/// Times of the phases of all lunations.
void comparePhases(const Span& span) {
    int before = 0;
    int last = 0;
    lun_age(span.begin, &before);
    lun_age(span.end, &last);
    Quantity quarters[] = {{"new moon", "min"},
                           {"first quarter", "min"},
                           {"full moon", "min"},
                           {"last quarter", "min"}};
    Quantity dynamical("all, read as dynamical time", "min");
    for (int lunation = before + 1; lunation <= last; ++lunation) {
        for (int quarter = 0; quarter < 4; ++quarter) {
            double jd = 0;
            flmoon(lunation, quarter, &jd);
            const double late = jd - truePhase(jd, quarter);
            quarters[quarter].add(late * zarn::MINUTES_PER_DAY, {jd, {}, {}, 0});
            dynamical.add((late - deltaT(jd)) * zarn::MINUTES_PER_DAY, {jd, {}, {}, 0});
        }
    }
    printHeading("times of the phases");
    for (const Quantity& quarter : quarters) quarter.print();
    dynamical.print();
}

/// The age at random instants; an instant between the true new moon and the library's is apart.
void compareAges(unsigned long count, const Span& span, Random& random) {
    Quantity age("age", "min");
    unsigned long otherLunation = 0;
    for (unsigned long i = 0; i < count; ++i) {
        const double jd = random.between(span.begin, span.end);
        int lunation = 0;
        const auto ours = static_cast<double>(lun_age(jd, &lunation));
        double newMoon = 0;
        flmoon(lunation, 0, &newMoon);
        const double theirs = jd - truePhase(newMoon, 0);
        if (theirs < 0.0 || jd > truePhase(newMoon + 29.53, 0)) {
            ++otherLunation;
        } else {
            age.add((ours - theirs) * zarn::MINUTES_PER_DAY, {jd, {}, {}, 0});
        }
    }
    printHeading("age");
    age.print();
    std::printf("%lu instants lie between the two theories' new moons\n", otherLunation);
}

void compareSkies(unsigned long count, const Span& span, Random& random) {
    Positions positions;
    Moonlight moonlight;
    for (unsigned long i = 0; i < count; ++i) {
        Scene scene{};
        scene.jd = random.between(span.begin, span.end);
        scene.observer = {random.between(-60.0, 60.0), random.between(-180.0, 180.0)};
        scene.extinction = random.between(0.1, 0.4);
        const TrueSky sky(scene.jd);
        scene.target = highPlace(random, sky, scene.observer);
        const Moon moon = libraryMoon(scene);
        positions.add(scene, sky, moon);
        if (isMoonlit(scene, sky)) moonlight.add(scene, sky, moon);
    }
    positions.print();
    moonlight.print();
}

/// The beginning of a year, Julian Date [d].
double beginOf(const char* year) {
    double zero = 0;
    double mjd = 0;
    eraCal2jd(static_cast<int>(std::strtol(year, nullptr, 10)), 1, 1, &zero, &mjd);
    return zero + mjd;
}

/// The largest shift of a place between the equinoxes of 2000 and 2050 [deg].
double precessionTo2050() {
    constexpr double JD_2050 = 2469807.5;
    double from2000[3][3];
    double rotation[3];
    eraPmat06(JD_2050, 0.0, from2000);
    eraRm2v(from2000, rotation);
    return eraPm(rotation) * zarn::DEG_PER_RAD;
}

}  // namespace

int main(int argc, char** argv) {
    const unsigned long count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : COUNT;
    if (argc == 3 || argc > 4 || count == 0) {
        std::fputs("accuracy [COUNT [FIRST LAST]]\n", stderr);
        return 2;
    }
    const Span span = {beginOf(argc == 4 ? argv[2] : "2000"),
                       beginOf(argc == 4 ? argv[3] : "2050")};
    if (!agreesWithPublishedValues()) return 1;
    Random random(SEED);
    compareSkies(count, span, random);
    comparePhases(span);
    compareAges(count / 10, span, random);
    std::printf("\na place of the equinox of 2000 taken for one of 2050: up to %.3f deg\n",
                precessionTo2050());
    return 0;
}
