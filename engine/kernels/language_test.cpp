// The kernel language: what each part of it means.
#include "kernel_texts.h"

using namespace kernel_texts;

namespace {

/// The value of the float r after some statements.
double after(const std::string& statements, const std::string& before = "", int x = 0) {
    return result(
        before + "\nkernel vec4 k() { float r = 0.0; " + statements + " return vec4(r, r, r, 1.0); }", x)[0];
}

constexpr double floatStep = 3e-6; // some roundings

} // namespace

TEST(KernelLanguage, NumbersAreWrittenInEveryForm) {
    EXPECT_EQ(value("1.5"), 1.5);
    EXPECT_EQ(value(".5"), 0.5);
    EXPECT_EQ(value("2."), 2);
    EXPECT_EQ(value("25e-2"), 0.25);
    EXPECT_EQ(value("1.5E+1"), 15);
    EXPECT_EQ(value("0.5f"), 0.5);
    EXPECT_EQ(value("3"), 3);
    EXPECT_EQ(value("1.0 /* a comment\n of two lines */ + // and one\n 2.0"), 3);
}

TEST(KernelLanguage, OperatorsBindAsInC) {
    EXPECT_EQ(value("1.0 + 2.0 * 3.0"), 7);
    EXPECT_EQ(value("(1.0 + 2.0) * 3.0"), 9);
    EXPECT_EQ(value("8.0 - 4.0 - 2.0"), 2);
    EXPECT_EQ(value("8.0 / 4.0 / 2.0"), 1);
    EXPECT_EQ(value("-2.0 * -3.0"), 6);
    EXPECT_EQ(value("1.0 < 2.0 == true ? 5.0 : 6.0"), 5);
    EXPECT_EQ(value("true || false && false ? 1.0 : 0.0"), 1);
    EXPECT_EQ(value("true ^^ true ? 1.0 : 0.0"), 0);
    EXPECT_EQ(value("!false ? 1.0 : 0.0"), 1);
    EXPECT_EQ(value("false ? 1.0 : true ? 2.0 : 3.0"), 2);
}

TEST(KernelLanguage, ComparisonsHoldForEachPixel) {
    const struct {
        const char* text;
        std::array<double, 3> at345; // where X is 3.5, 4.5 and 5.5
    } cases[] = {{"X < 4.5", {1, 0, 0}},
                 {"X <= 4.5", {1, 1, 0}},
                 {"X > 4.5", {0, 0, 1}},
                 {"X >= 4.5", {0, 1, 1}},
                 {"X == 4.5", {0, 1, 0}},
                 {"X != 4.5", {1, 0, 1}},
                 {"X > 4.0 && X < 5.0", {0, 1, 0}},
                 {"X < 4.0 || X > 5.0", {1, 0, 1}},
                 {"X > 4.0 ^^ X > 5.0", {0, 1, 0}},
                 {"!(X > 4.0)", {1, 0, 0}},
                 {"vec2(X, 1.0) == vec2(4.5, 1.0)", {0, 1, 0}},
                 {"vec2(X, 1.0) != vec2(4.5, 2.0)", {1, 1, 1}}};
    for (const auto& c : cases)
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(valueAt(std::string("(") + c.text + ") ? 1.0 : 0.0", 3 + i), c.at345[i]) << c.text << i;
}

TEST(KernelLanguage, VectorsAreMadeTakenApartAndChanged) {
    auto made = [](const char* expression) {
        return result(std::string("kernel vec4 k() { vec3 v = ") + expression + "; return vec4(v, 1.0); }");
    };
    using V = std::array<double, 3>;
    EXPECT_EQ(made("vec3(1.0, 2.0, 3.0)"), (V{1, 2, 3}));
    EXPECT_EQ(made("vec3(4.0)"), (V{4, 4, 4}));
    EXPECT_EQ(made("vec3(vec2(1.0, 2.0), 3.0)"), (V{1, 2, 3}));
    EXPECT_EQ(made("vec3(1, vec2(2.0, 3.0))"), (V{1, 2, 3}));
    EXPECT_EQ(made("vec3(vec4(1.0, 2.0, 3.0, 4.0))"), (V{1, 2, 3}));
    EXPECT_EQ(made("vec4(1.0, 2.0, 3.0, 4.0).wzy"), (V{4, 3, 2}));
    EXPECT_EQ(made("vec4(1.0, 2.0, 3.0, 4.0).bbr"), (V{3, 3, 1}));
    EXPECT_EQ(made("vec2(1.0, 2.0).sts"), (V{1, 2, 1}));
    EXPECT_EQ(made("vec3(1.0, 2.0, 3.0) * 2.0 + vec3(1.0)"), (V{3, 5, 7}));
    EXPECT_EQ(made("2.0 / vec3(1.0, 2.0, 4.0)"), (V{2, 1, 0.5}));
    EXPECT_EQ(made("-vec3(1.0, 2.0, 3.0) * vec3(1.0, 10.0, 100.0)"), (V{-1, -20, -300}));
    auto changed = [](const char* statements) {
        return result(std::string("kernel vec4 k() { vec3 v = vec3(1.0, 2.0, 3.0); ") + statements +
                      " return vec4(v, 1.0); }");
    };
    EXPECT_EQ(changed("v.y = 9.0;"), (V{1, 9, 3}));
    EXPECT_EQ(changed("v.zx = vec2(8.0, 9.0);"), (V{9, 2, 8}));
    EXPECT_EQ(changed("v.rg *= 3.0;"), (V{3, 6, 3}));
    EXPECT_EQ(changed("v += vec3(1.0); v -= 0.5; v /= 2.0;"), (V{0.75, 1.25, 1.75}));
    EXPECT_EQ(changed("v.x = v.y = 7.0;"), (V{7, 7, 3}));
}

TEST(KernelLanguage, WholeNumbersDivideWholeAndBecomeNumbers) {
    EXPECT_EQ(value("7 / 2"), 3);
    EXPECT_EQ(value("-7 / 2"), -3);
    EXPECT_EQ(value("7 / 2.0"), 3.5);
    EXPECT_EQ(value("float(int(2.9)) + float(int(-2.9))"), 0);
    EXPECT_EQ(value("float(true) + float(bool(0.5)) + float(bool(0))"), 2);
    EXPECT_EQ(value("vec2(1, 2).y"), 2);
    EXPECT_EQ(after("int i = 5; r = float(i++) * 100.0; r += float(++i); i--; r += 0.1 * float(--i);"),
              500 + 7 + 0.5);
    for (int d = 1; d < 200; ++d) EXPECT_EQ(value(std::to_string(d * 7) + " / " + std::to_string(d)), 7);
}

TEST(KernelLanguage, BranchesRunForTheirPixelsOnly) {
    const char* nested =
        "float x = destCoord().x; if (x < 2.0) { r = 1.0; if (x < 1.0) r += 10.0; else r += 20.0; } "
        "else if (x < 3.0) r = 3.0; else { r = 4.0; }";
    const double expected[]{11, 21, 3, 4};
    for (int x = 0; x < 4; ++x) EXPECT_EQ(after(nested, "", x), expected[x]) << x;
    // The right side of && and of ?: is left alone where it is not needed.
    const char* sides = "float x = destCoord().x; float n = 0.0; bool b = x < 1.0 && ++n > 0.0; "
                        "b = x < 1.0 || ++n > 5.0; r = x < 2.0 ? n : (n += 100.0); r = n;";
    const double counted[]{1, 1, 101};
    for (int x = 0; x < 3; ++x) EXPECT_EQ(after(sides, "", x), counted[x]) << x;
}

TEST(KernelLanguage, ResultsCanComeEarly) {
    const char* text =
        "float f(float x) { for (int i = 0; i < 5; i++) { if (x < float(i)) return float(i) * 10.0; } "
        "return -1.0; }";
    const double expected[]{10, 20, 30, 40, -1, -1};
    for (int x = 0; x < 6; ++x)
        EXPECT_EQ(after("r = f(destCoord().x); r = r * 1.0;", text, x), expected[x]) << x;
    const char* two =
        "kernel vec4 k() { vec4 c = vec4(1.0); if (destCoord().x > 1.0) { c *= 0.5; return c; c *= 9.0; } "
        "c.r = 0.0; return c; }";
    EXPECT_EQ(result(two, 0)[0], 0);
    EXPECT_EQ(pixelAt(engine::kernels::apply(kernel(two), {}, Rect::infinite()), 1),
              (Pixel{0.5, 0.5, 0.5, 0.5}));
}

TEST(KernelLanguage, LoopsOfKnownLengthRun) {
    EXPECT_EQ(after("for (int i = 1; i <= 10; i++) r += float(i);"), 55);
    EXPECT_EQ(after("for (float i = 0.0; i < 1.0; i += 0.25) r += i;"), 1.5);
    EXPECT_EQ(after("int i = 0, j = 8; while (i < j) { ++i; --j; r += 1.0; }"), 4);
    EXPECT_EQ(after("int i = 9; do { r += 1.0; i++; } while (i < 3);"), 1);
    EXPECT_EQ(after("for (int i = 0, j = 3; i < j; i++, j--) for (int k = 0; k < 4; ++k) r++;"), 8);
    EXPECT_EQ(after("for (int i = 0; i < N * 2; i++) r += 2.0;", "const int N = 3;"), 12);
    EXPECT_EQ(after("int i = 0; for (;;) { if (i == 6) return vec4(vec3(r), 1.0); r += 1.0; i++; }"), 6);
    // What differs from pixel to pixel may change in a loop, only its end may not.
    EXPECT_EQ(after("r = destCoord().x; for (int i = 0; i < 3; i++) { if (r > 2.0) r *= 2.0; }", "", 1), 1.5);
    EXPECT_EQ(after("r = destCoord().x; for (int i = 0; i < 3; i++) { if (r > 2.0) r *= 2.0; }", "", 2), 20);
}

TEST(KernelLanguage, LoopsInBranchesAndBranchesInLoopsKeepTheirCount) {
    const char* inner = "float x = destCoord().x; if (x > 1.0) { for (int i = 0; i < 4; i++) { if (x > 2.0) "
                        "r += 1.0; r += 10.0; } }";
    const double expected[]{0, 40, 44};
    for (int x = 0; x < 3; ++x) EXPECT_EQ(after(inner, "", x), expected[x]) << x;
    const char* first = "float first(float x) { float n = 0.0; if (x > 0.0) { for (int i = 0; i < 9; i++) { "
                        "n += x; if (n > 3.0) "
                        "{ if (x > 1.0) return n; n -= 0.5; } } } return -n; }";
    auto direct = [](double x) {
        double n = 0;
        for (int i = 0; i < 9; i++) {
            n += x;
            if (n > 3) {
                if (x > 1) return n;
                n -= 0.5;
            }
        }
        return -n;
    };
    for (int x = 0; x < 5; ++x) EXPECT_EQ(after("r = first(destCoord().x);", first, x), direct(x + 0.5)) << x;
    // What a function hands out is what it was when the pixel returned.
    const char* out = "void f(float x, inout float y) { y += 1.0; if (x < 1.0) return; y += 10.0; }";
    EXPECT_EQ(after("f(destCoord().x, r);", out, 0), 1);
    EXPECT_EQ(after("f(destCoord().x, r);", out, 1), 11);
    EXPECT_EQ(after("if (destCoord().x < 1.0) f(5.0, r);", out, 1), 0);
}

TEST(KernelLanguage, FunctionsAreCalledOverloadedAndChangeTheirOutParameters) {
    EXPECT_EQ(after("r = f(3.0) + f(vec2(1.0, 2.0));", "float f(float x) { return x * 10.0; } "
                                                       "float f(vec2 v) { return v.x + v.y; }"),
              33);
    EXPECT_EQ(after("float a = 1.0, b = 2.0; swap(a, b); r = a * 10.0 + b;",
                    "void swap(inout float a, inout float b) { float c = a; a = b; b = c; }"),
              21);
    EXPECT_EQ(after("vec3 v = vec3(0.0); both(v.zx); r = v.x + 10.0 * v.z;",
                    "void both(out vec2 v) { v = vec2(1.0, 2.0); }"),
              12);
    EXPECT_EQ(
        after("r = g(2.0);",
              "float f(float); float g(float x) { return f(x) + 1.0; } float f(float x) { return x * x; }"),
        5);
    EXPECT_EQ(after("r = f(3);", "float f(const float x) { return x / 2.0; }"), 1.5);
    // Arguments are copies.
    EXPECT_EQ(after("float a = 1.0; r = f(a) + a;", "float f(float x) { x += 5.0; return x; }"), 7);
    // A name inside hides the one outside.
    EXPECT_EQ(after("float a = 1.0; { float a = 5.0; r += a; } r += a;"), 6);
    EXPECT_EQ(after("r = twice * 3.0;", "const float twice = 2.0 * 1.0;"), 6);
}

TEST(KernelLanguage, BuiltInFunctionsComputeWhatTheirNamesSay) {
    struct Case {
        const char* text;
        std::function<double(double)> expected;
    };
    auto clampTo = [](double low, double high) { return [=](double x) { return std::clamp(x, low, high); }; };
    const Case cases[] = {
        {"radians(X)", [](double x) { return x * 3.14159265358979 / 180; }},
        {"degrees(X)", [](double x) { return x * 180 / 3.14159265358979; }},
        {"sin(X)", [](double x) { return std::sin(x); }},
        {"cos(X)", [](double x) { return std::cos(x); }},
        {"tan(X)", [](double x) { return std::tan(x); }},
        {"sin_(X * 0.3)", [](double x) { return std::sin(x * 0.3); }},
        {"cos_(X * 0.3)", [](double x) { return std::cos(x * 0.3); }},
        {"tan_(X * 0.1)", [](double x) { return std::tan(x * 0.1); }},
        {"cossin(X).x", [](double x) { return std::cos(x); }},
        {"cossin(X).y", [](double x) { return std::sin(x); }},
        {"cossin_(X * 0.3).y", [](double x) { return std::sin(x * 0.3); }},
        {"sincos(X).x", [](double x) { return std::sin(x); }},
        {"asin(X * 0.1)", [](double x) { return std::asin(x * 0.1); }},
        {"acos(X * 0.1)", [](double x) { return std::acos(x * 0.1); }},
        {"atan(X)", [](double x) { return std::atan(x); }},
        {"atan(X, -2.0)", [](double x) { return std::atan2(x, -2); }},
        {"atan(-0.7, X)", [](double x) { return std::atan2(-0.7, x); }},
        {"pow(abs(X), 1.7)", [](double x) { return std::pow(std::abs(x), 1.7); }},
        {"exp(X * 0.2)", [](double x) { return std::exp(x * 0.2); }},
        {"log(abs(X))", [](double x) { return std::log(std::abs(x)); }},
        {"exp2(X * 0.2)", [](double x) { return std::exp2(x * 0.2); }},
        {"log2(abs(X))", [](double x) { return std::log2(std::abs(x)); }},
        {"sqrt(abs(X))", [](double x) { return std::sqrt(std::abs(x)); }},
        {"inversesqrt(abs(X))", [](double x) { return 1 / std::sqrt(std::abs(x)); }},
        {"rsqrt(abs(X))", [](double x) { return 1 / std::sqrt(std::abs(x)); }},
        {"abs(X)", [](double x) { return std::abs(x); }},
        {"sign(X)", [](double x) { return x > 0 ? 1. : -1.; }},
        {"floor(X)", [](double x) { return std::floor(x); }},
        {"ceil(X)", [](double x) { return std::ceil(x); }},
        {"fract(X * 0.7)", [](double x) { return x * 0.7 - std::floor(x * 0.7); }},
        {"mod(X, 2.0)", [](double x) { return x - 2 * std::floor(x / 2); }},
        {"min(X, 1.0)", [](double x) { return std::min(x, 1.); }},
        {"max(X, 1.0)", [](double x) { return std::max(x, 1.); }},
        {"clamp(X, -1.0, 2.0)", clampTo(-1, 2)},
        {"mix(2.0, 6.0, X)", [](double x) { return 2 + 4 * x; }},
        {"step(1.5, X)", [](double x) { return x < 1.5 ? 0. : 1.; }},
        {"smoothstep(-4.0, 4.0, X)",
         [](double x) {
             double t = std::clamp((x + 4) / 8, 0., 1.);
             return t * t * (3 - 2 * t);
         }},
        {"compare(X, 5.0, 7.0)", [](double x) { return x < 0 ? 5. : 7.; }},
        {"length(vec2(X, 2.0))", [](double x) { return std::hypot(x, 2); }},
        {"length(X)", [](double x) { return std::abs(x); }},
        {"distance(vec3(X, 2.0, 1.0), vec3(1.0, 0.0, 1.0))", [](double x) { return std::hypot(x - 1, 2); }},
        {"dot(vec3(X, 2.0, 1.0), vec3(3.0, X, 5.0))", [](double x) { return 3 * x + 2 * x + 5; }},
        {"cross(vec3(X, 2.0, 1.0), vec3(3.0, X, 5.0)).z", [](double x) { return x * x - 6; }},
        {"cross(vec3(X, 2.0, 1.0), vec3(3.0, X, 5.0)).x", [](double x) { return 10 - x; }},
        {"normalize(vec2(X, 2.0)).x", [](double x) { return x / std::hypot(x, 2); }},
        {"faceforward(vec2(1.0, 2.0), vec2(X, 0.0), vec2(1.0, 0.0)).y",
         [](double x) { return x < 0 ? 2. : -2.; }},
        {"reflect(vec2(X, 3.0), vec2(0.0, 1.0)).y", [](double) { return -3.; }},
        {"reflect(vec2(X, 3.0), vec2(0.6, 0.8)).x",
         [](double x) { return x - 2 * (0.6 * x + 0.8 * 3) * 0.6; }},
        {"min(vec2(X, 5.0), 1.0).x", [](double x) { return std::min(x, 1.); }},
        {"clamp(vec2(1.0, X), vec2(0.0), vec2(1.0, 2.0)).y", clampTo(0, 2)},
        {"mix(vec2(0.0), vec2(X, 3.0), vec2(0.5, 1.0)).x", [](double x) { return x / 2; }},
        {"step(1.5, vec2(0.0, X)).y", [](double x) { return x < 1.5 ? 0. : 1.; }},
        {"mod(vec2(X, 1.0), 2.0).x", [](double x) { return x - 2 * std::floor(x / 2); }},
        {"premultiply(vec4(X, 1.0, 1.0, 0.5)).r", [](double x) { return x / 2; }},
        {"premultiply(vec4(X, 1.0, 1.0, 0.5)).a", [](double) { return 0.5; }},
        {"unpremultiply(vec4(X, 1.0, 1.0, 0.5)).r", [](double x) { return x * 2; }},
        {"unpremultiply(vec4(X, 1.0, 1.0, 0.0)).r", [](double) { return 0.; }},
        {"destCoord().y + X", [](double x) { return x + 0.5; }}};
    for (const Case& c : cases)
        for (int x = -6; x < 6; ++x) {
            double expected = c.expected(x + 0.5);
            EXPECT_NEAR(valueAt(c.text, x), expected, floatStep * std::max(1., std::abs(expected)))
                << c.text << " " << x;
            // Computed when the kernel is compiled, it is the same.
            std::string known = c.text;
            for (std::size_t at; (at = known.find('X')) != known.npos;)
                known.replace(at, 1, "(" + std::to_string(x + 0.5) + ")");
            EXPECT_NEAR(value(known), expected, floatStep * std::max(1., std::abs(expected))) << known;
        }
}

TEST(KernelLanguage, FunctionsOutsideOfTheirDomainGiveNumbers) {
    for (const char* text :
         {"sqrt(X)", "inversesqrt(X)", "log(X)", "log2(X)", "pow(X, 0.5)", "asin(X * 9.0)", "acos(X * 9.0)",
          "normalize(vec2(X + 3.5) * 0.0).x", "sin(X * 1e30)", "floor(X * 1e30) * 1e-30", "exp(X * -1e6)",
          "float(int(X * 1e20)) * 1e-20", "atan(0.0 * X, 0.0)"})
        EXPECT_TRUE(std::isfinite(valueAt(text, -4))) << text << valueAt(text, -4);
}

TEST(KernelLanguage, ATextHasSeveralKernels) {
    auto all = compile("kernel vec4 one(sampler image, __color c, __table sampler t) { return c; }\n"
                       "float half_(float x) { return x * 0.5; }\n"
                       "kernel vec2 two(float x, vec3 v) { return v.xy * half_(x); }\n"
                       "kernel vec4 three(__sample s, int i, bool b) { return s; }");
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]->name(), "one");
    EXPECT_FALSE(all[0]->isWarp());
    EXPECT_EQ(all[1]->name(), "two");
    EXPECT_TRUE(all[1]->isWarp());
    const auto& first = all[0]->parameters();
    ASSERT_EQ(first.size(), 3u);
    EXPECT_EQ(first[0].name, "image");
    EXPECT_EQ(first[0].kind, ParameterKind::sampler);
    EXPECT_FALSE(first[0].table);
    EXPECT_EQ(first[1].kind, ParameterKind::color);
    EXPECT_TRUE(first[2].table);
    EXPECT_EQ(all[1]->parameters()[1].kind, ParameterKind::vector);
    EXPECT_EQ(all[1]->parameters()[1].size, 3);
    EXPECT_EQ(all[2]->parameters()[0].kind, ParameterKind::sample);
    EXPECT_EQ(all[2]->parameters()[2].size, 1);
}
