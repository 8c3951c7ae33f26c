// Functions of numbers, and Random.
#include "table.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace studio {

namespace {

std::mt19937& generator() {
    static std::mt19937 engine{std::random_device{}()};
    return engine;
}

double uniform(std::mt19937& engine) { return std::uniform_real_distribution<double>(0, 1)(engine); }

struct Random {
    std::int32_t seed = 0;
    std::mt19937 engine{generator()()};
};

Random& random(REALobject self) { return dataOf<Random>(self); }

template <class F>
double folded(double first, REALobject more, F combine) {
    for (std::int32_t i = 0; i < arrayOf(more).count; ++i)
        first = combine(first, arrayGet(arrayOf(more), i).f64);
    return first;
}

FrameworkFunctions mathFunctions() {
    using F = double (*)(double);
    return {
        method("Abs(x As Integer) As Integer", [](std::int32_t x) { return x < 0 ? -x : x; }),
        method("Abs(x As Int64) As Int64", [](std::int64_t x) { return x < 0 ? -x : x; }),
        method("Abs(x As Double) As Double", F(std::fabs)),
        method("Sign(x As Double) As Integer", [](double x) { return std::int32_t(x < 0 ? -1 : x > 0); }),
        method("Min(a As Integer, b As Integer) As Integer",
               [](std::int32_t a, std::int32_t b) { return std::min(a, b); }),
        method("Min(a As Double, b As Double, ParamArray more As Double) As Double",
               [](double a, double b, REALobject more) {
                   return folded(std::min(a, b), more, [](double x, double y) { return std::min(x, y); });
               }),
        method("Max(a As Integer, b As Integer) As Integer",
               [](std::int32_t a, std::int32_t b) { return std::max(a, b); }),
        method("Max(a As Double, b As Double, ParamArray more As Double) As Double",
               [](double a, double b, REALobject more) {
                   return folded(std::max(a, b), more, [](double x, double y) { return std::max(x, y); });
               }),
        method("Floor(x As Double) As Double", F(std::floor)),
        method("Ceil(x As Double) As Double", F(std::ceil)),
        method("Round(x As Double) As Double", [](double x) { return std::floor(x + 0.5); }),
        method("Sqrt(x As Double) As Double", F(std::sqrt)),
        method("Sin(x As Double) As Double", F(std::sin)),
        method("Cos(x As Double) As Double", F(std::cos)),
        method("Tan(x As Double) As Double", F(std::tan)),
        method("ASin(x As Double) As Double", F(std::asin)),
        method("ACos(x As Double) As Double", F(std::acos)),
        method("ATan(x As Double) As Double", F(std::atan)),
        method("ATan2(y As Double, x As Double) As Double",
               [](double y, double x) { return std::atan2(y, x); }),
        method("Exp(x As Double) As Double", F(std::exp)),
        method("Log(x As Double) As Double", F(std::log)),
        method("Pow(x As Double, y As Double) As Double", [](double x, double y) { return std::pow(x, y); }),
        method("Rnd As Double", [] { return uniform(generator()); }),
    };
}

FrameworkClass randomClass() {
    FrameworkClass table = classWithData<Random>("Random");
    table.properties = {
        property(
            "Seed", "Integer", [](REALobject self) { return random(self).seed; },
            [](REALobject self, std::uint32_t, std::int32_t seed) {
                random(self).seed = seed;
                random(self).engine.seed(std::uint32_t(seed));
            }),
    };
    table.methods = {
        method("InRange(low As Integer, high As Integer) As Integer",
               [](REALobject self, std::int32_t low, std::int32_t high) {
                   if (high < low) raise("InvalidArgumentException", "the range is empty");
                   return std::uniform_int_distribution<std::int32_t>(low, high)(random(self).engine);
               }),
        method("Number As Double", [](REALobject self) { return uniform(random(self).engine); }),
        method("Gaussian As Double",
               [](REALobject self) { return std::normal_distribution<double>(0, 1)(random(self).engine); }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{randomClass()}, mathFunctions()}; });

} // namespace

} // namespace studio
