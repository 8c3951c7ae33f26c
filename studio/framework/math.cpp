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

/// Functions of numbers. Angles are in radians; an argument outside of a function's domain gives NaN.
FrameworkFunctions mathFunctions() {
    using F = double (*)(double);
    return {
        /// The number without its sign.
        ///     Print Str(Abs(-3))
        method("Abs(x As Integer) As Integer", [](std::int32_t x) { return x < 0 ? -x : x; }),
        /// The number without its sign.
        ///     Dim large As Int64 = -5000000000
        ///     Print Str(Abs(large))
        method("Abs(x As Int64) As Int64", [](std::int64_t x) { return x < 0 ? -x : x; }),
        /// The number without its sign.
        ///     Print Str(Abs(-0.5))
        method("Abs(x As Double) As Double", F(std::fabs)),
        /// The sign of the number: -1, 0 or 1.
        ///     Print Str(Sign(-0.5))
        method("Sign(x As Double) As Integer", [](double x) { return std::int32_t(x < 0 ? -1 : x > 0); }),
        /// The smaller of two numbers.
        ///     Print Str(Min(3, 5))
        method("Min(a As Integer, b As Integer) As Integer",
               [](std::int32_t a, std::int32_t b) { return std::min(a, b); }),
        /// The smallest of the numbers.
        ///     Print Str(Min(3.5, 2.5, 4))
        method("Min(a As Double, b As Double, ParamArray more As Double) As Double",
               [](double a, double b, REALobject more) {
                   return folded(std::min(a, b), more, [](double x, double y) { return std::min(x, y); });
               }),
        /// The larger of two numbers.
        ///     Print Str(Max(3, 5))
        method("Max(a As Integer, b As Integer) As Integer",
               [](std::int32_t a, std::int32_t b) { return std::max(a, b); }),
        /// The largest of the numbers.
        ///     Print Str(Max(3.5, 2.5, 4))
        method("Max(a As Double, b As Double, ParamArray more As Double) As Double",
               [](double a, double b, REALobject more) {
                   return folded(std::max(a, b), more, [](double x, double y) { return std::max(x, y); });
               }),
        /// The next whole number that is not larger.
        ///     Print Str(Floor(-1.5))
        method("Floor(x As Double) As Double", F(std::floor)),
        /// The next whole number that is not smaller.
        ///     Print Str(Ceil(-1.5))
        method("Ceil(x As Double) As Double", F(std::ceil)),
        /// The nearest whole number; halves are rounded up.
        ///     Print Str(Round(2.5))
        method("Round(x As Double) As Double", [](double x) { return std::floor(x + 0.5); }),
        /// The square root.
        ///     Print Str(Sqrt(2))
        method("Sqrt(x As Double) As Double", F(std::sqrt)),
        /// The sine of an angle.
        ///     Print Str(Sin(0.5))
        method("Sin(x As Double) As Double", F(std::sin)),
        /// The cosine of an angle.
        ///     Print Str(Cos(0.5))
        method("Cos(x As Double) As Double", F(std::cos)),
        /// The tangent of an angle.
        ///     Print Str(Tan(0.5))
        method("Tan(x As Double) As Double", F(std::tan)),
        /// The angle from -π/2 to π/2 with this sine.
        ///     Print Str(ASin(0.5))
        method("ASin(x As Double) As Double", F(std::asin)),
        /// The angle from 0 to π with this cosine.
        ///     Print Str(ACos(0.5))
        method("ACos(x As Double) As Double", F(std::acos)),
        /// The angle from -π/2 to π/2 with this tangent.
        ///     Print Str(ATan(1) * 4)
        method("ATan(x As Double) As Double", F(std::atan)),
        /// The angle from -π to π of the direction to a point; y comes first.
        ///     Print Str(ATan2(1, -1))
        method("ATan2(y As Double, x As Double) As Double",
               [](double y, double x) { return std::atan2(y, x); }),
        /// The exponential, with base e.
        ///     Print Str(Exp(1))
        method("Exp(x As Double) As Double", F(std::exp)),
        /// The natural logarithm.
        ///     Print Str(Log(10))
        method("Log(x As Double) As Double", F(std::log)),
        /// The first number to the power of the second.
        ///     Print Str(Pow(2, 0.5))
        method("Pow(x As Double, y As Double) As Double", [](double x, double y) { return std::pow(x, y); }),
        /// A random number from 0 to below 1.
        ///     Print Str(Rnd < 1)
        method("Rnd As Double", [] { return uniform(generator()); }),
    };
}

/// A source of random numbers; the same Seed gives the same numbers.
///     Dim dice As New Random
FrameworkClass randomClass() {
    FrameworkClass table = classWithData<Random>("Random");
    table.properties = {
        /// Starts the numbers that belong to this seed; 0 until it is set.
        ///     dice.Seed = 42
        property(
            "Seed", "Integer", [](REALobject self) { return random(self).seed; },
            [](REALobject self, std::uint32_t, std::int32_t seed) {
                random(self).seed = seed;
                random(self).engine.seed(std::uint32_t(seed));
            }),
    };
    table.methods = {
        /// A whole number from low to high, both included. Raises InvalidArgumentException if high is below
        /// low.
        ///     Print Str(dice.InRange(1, 6))
        method("InRange(low As Integer, high As Integer) As Integer",
               [](REALobject self, std::int32_t low, std::int32_t high) {
                   if (high < low) raise("InvalidArgumentException", "the range is empty");
                   return std::uniform_int_distribution<std::int32_t>(low, high)(random(self).engine);
               }),
        /// A number from 0 to below 1.
        ///     Print Str(dice.Number)
        method("Number As Double", [](REALobject self) { return uniform(random(self).engine); }),
        /// A number of the normal distribution with mean 0 and standard deviation 1.
        ///     Print Str(dice.Gaussian)
        method("Gaussian As Double",
               [](REALobject self) { return std::normal_distribution<double>(0, 1)(random(self).engine); }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{randomClass()}, mathFunctions()}; });

} // namespace

} // namespace studio
