// Texts that are no kernels: each is refused with the line and what was expected.
#include "kernel_texts.h"

using namespace kernel_texts;

namespace {

struct Case {
    const char* text;
    const char* mistake;
};

/// The statements in a kernel whose body begins on line 2, with some variables.
std::string inKernel(const std::string& statements) {
    return "kernel vec4 k(sampler image, float x, vec2 v, __color c) {\n" + statements + "\nreturn c; }";
}

} // namespace

TEST(KernelMistakes, OfWriting) {
    const Case cases[] = {
        {"", "line 1: expected a kernel, such as 'kernel vec4 name(sampler image) { ... }'"},
        {"float f() { return 1.0; }",
         "line 1: expected a kernel, such as 'kernel vec4 name(sampler image) { ... }'"},
        {"kernel", "line 1: expected the type of a kernel's result, found the end of the text"},
        {"kernel vec4", "line 1: expected the name of a function, found the end of the text"},
        {"kernel vec4 k", "line 1: expected '(' before the parameters, found the end of the text"},
        {"kernel vec4 k(", "line 1: expected the type of a parameter, found the end of the text"},
        {"kernel vec4 k(float x y)", "line 1: expected ')' or ',' after a parameter, found 'y'"},
        {"kernel vec4 k()\n;", "line 1: expected the body of k"},
        {"kernel vec4 k() return", "line 1: expected '{' before the body of k, found 'return'"},
        {"kernel vec4 k() {\n\n",
         "line 3: expected '}' after the block that begins on line 1, found the end of the text"},
        {"float x;", "line 1: expected '(' before the parameters, found ';'"},
        {"const float x;", "line 1: expected a value for the constant x"},
        {"banana", "line 1: expected a function, found 'banana'"},
        {"\n#define PI 3.14", "line 2: kernels have no preprocessor: expected a function, not '#'"},
        {"/* and\nso on", "line 1: a comment that begins here never ends: expected */"},
        {"kernel vec4 k() { return vec4(1.0) @ 2.0; }", "line 1: the character '@' has no meaning here"},
        {"kernel vec4 k() { return \xc3\xa4; }",
         "line 1: a character that is not ASCII, outside of a comment"},
        {"kernel vec4 k(__table float x) { return vec4(x); }", "line 1: expected 'sampler' after '__table'"},
        {"kernel vec4 k(void x) { return vec4(1.0); }", "line 1: a parameter cannot be void"},
        {"kernel vec4 k(mat3 m) { return vec4(1.0); }", "line 1: kernels have no type 'mat3'"},
    };
    for (const Case& c : cases) EXPECT_EQ(mistakeIn(c.text), c.mistake) << c.text;
}

TEST(KernelMistakes, OfStatementsAndExpressions) {
    const Case cases[] = {
        {"x = 1.0", "line 3: expected ';' after a statement, found 'return'"},
        {"x = ;", "line 2: expected a value, found ';'"},
        {"x = (1.0;", "line 2: expected ')' to close the bracket, found ';'"},
        {"float y 1.0;", "line 2: expected ';' or '=' after a variable, found '1.0'"},
        {"float if = 1.0;", "line 2: expected the name of a variable, found 'if'"},
        {"if x > 1.0;", "line 2: expected '(' before a condition, found 'x'"},
        {"for (int i = 0; i < 3; i++ x = 1.0;", "line 2: expected ')' after the step of a loop, found 'x'"},
        {"do x = 1.0; until (true);", "line 2: expected 'while' after the body of 'do', found 'until'"},
        {"for (;;) break;", "line 2: kernels have no statement 'break'"},
        {"continue;", "line 2: kernels have no statement 'continue'"},
        {"discard;", "line 2: kernels have no statement 'discard'"},
        {"x = mod(x, 2.0) % 3.0;", "line 2: kernels have no operator '%'"},
        {"int i = 1 << 2;", "line 2: kernels have no operator '<<'"},
        {"bool b = true & false;", "line 2: kernels have no operator '&'"},
        {"x %= 2.0;", "line 2: kernels have no operator '%='"},
        {"float a[3];", "line 2: kernels have no arrays; a component is written .x, .y, .z or .w"},
        {"x = v[0];", "line 2: kernels have no arrays; a component is written .x, .y, .z or .w"},
        {"mat2 m = mat2(1.0);", "line 2: kernels have no type 'mat2'"},
        {"sampler s = image;", "line 2: a variable cannot be a sampler"},
        {"x = 1.5abc;", "line 2: a number cannot go on with 'a'"},
        {"x = 1e;", "line 2: expected the digits of an exponent"},
        {"x = 1e50;", "line 2: the number 1e50 is too large"},
        {"x = 123456789;", "line 2: a whole number is 16777216 at most; write 123456789.0"},
        {"x = c.;", "line 2: expected a component such as x or rgb after '.', found ';'"},
    };
    for (const Case& c : cases) EXPECT_EQ(mistakeIn(inKernel(c.text)), c.mistake) << c.text;
}

TEST(KernelMistakes, OfTypesAndNames) {
    const Case cases[] = {
        {"y = 1.0;", "line 2: there is no variable 'y'"},
        {"float y = z;", "line 2: there is no variable 'z'"},
        {"float y = 1.0;\nfloat y = 2.0;", "line 3: there is another 'y' already"},
        {"{ float y = 1.0; }\nx = y;", "line 3: there is no variable 'y'"},
        {"float y = v;", "line 2: the variable y has to be a float, not a vec2"},
        {"int i = x;", "line 2: the variable i has to be an int, not a float"},
        {"x = v;", "line 2: '=' expects a float, not a vec2"},
        {"x += v;", "line 2: '+=' expects a float, not a vec2"},
        {"v = v + vec3(1.0);", "line 2: '+' does not go with vec2 and vec3"},
        {"x = x + image;", "line 2: '+' does not go with float and sampler"},
        {"bool b = v < v;", "line 2: '<' does not go with vec2"},
        {"bool b = x && true;", "line 2: '&&' does not go with float and bool"},
        {"bool b = !x;", "line 2: '!' does not go with float"},
        {"bool b = x == v;", "line 2: '==' does not go with float and vec2"},
        {"bool b = true;\nb++;", "line 3: '++' does not go with bool"},
        {"if (x) x = 1.0;", "line 2: the condition of 'if' has to be a bool, not a float"},
        {"while (1) x = 1.0;", "line 2: the condition of a loop has to be a bool, not an int"},
        {"x = x ? 1.0 : 2.0;", "line 2: the condition of '?' has to be a bool, not a float"},
        {"x = true ? 1.0 : v;", "line 2: the two values of '?' have to be of one type, not float and vec2"},
        {"return v;", "line 2: the result of k has to be a vec4, not a vec2"},
        {"return;", "line 2: expected a vec4 after 'return'"},
        {"x = v.z;", "line 2: a vec2 has no component '.z'"},
        {"x = x.x;", "line 2: a float has no component '.x'"},
        {"v = c.xg;", "line 2: expected up to four components of xyzw, of rgba or of stpq, not '.xg'"},
        {"v.xx = v;", "line 2: '.xx' names a component twice and cannot be changed"},
        {"1.0 = x;", "line 2: only a variable or its components can be changed"},
        {"const float y = 1.0;\ny = 2.0;", "line 3: 'y' is const and cannot be changed"},
        {"image = image;", "line 2: 'image' is a sampler and cannot be changed"},
        {"c = vec4(1.0, 2.0);", "line 2: a vec4 needs 4 numbers, not 2"},
        {"v = vec2(1.0, 2.0, 3.0);", "line 2: too many values for a vec2"},
        {"v = vec2(image);", "line 2: a vec2 cannot be made of a sampler"},
        {"x = banana(x);", "line 2: there is no function 'banana'"},
        {"x = refract(x, x, x);", "line 2: kernels have no function 'refract'"},
        {"x = sin(image);",
         "line 2: there is no sin(sampler); expected sin(T) with float, vec2, vec3 or vec4 for T"},
        {"c = sample(image);", "line 2: there is no sample(sampler); expected sample(sampler, vec2)"},
        {"c = sample(image, x);",
         "line 2: there is no sample(sampler, float); expected sample(sampler, vec2)"},
        {"x = mod(v, x);", "line 2: '=' expects a float, not a vec2"},
        {"x = dot(v, c);",
         "line 2: there is no dot(vec2, vec4); expected dot(T, T) with float, vec2, vec3 or vec4 for T"},
    };
    for (const Case& c : cases) EXPECT_EQ(mistakeIn(inKernel(c.text)), c.mistake) << c.text;
}

TEST(KernelMistakes, OfFunctionsAndKernels) {
    const Case cases[] = {
        {"kernel vec3 k() { return vec3(1.0); }",
         "line 1: the kernel k has to return a vec4, or a vec2 to be a warp, not a vec3"},
        {"kernel vec2 k(sampler s) { return vec2(1.0); }",
         "line 1: a warp (a kernel that returns a vec2) reads no image: expected a vec4 as its result"},
        {"kernel vec4 k(out float x) { x = 1.0; return vec4(1.0); }",
         "line 1: a kernel's parameter cannot be 'out' or 'inout'"},
        {"kernel vec4 k() { }",
         "line 1: k can end without a result: expected 'return' with a vec4 at its end"},
        {"kernel vec4 k(float x) { if (x > 1.0) return vec4(x); }",
         "line 1: k can end without a result: expected 'return' with a vec4 at its end"},
        {"kernel vec4 k(float x, float x) { return vec4(x); }", "line 1: there is another 'x' already"},
        {"kernel vec4 k() { return vec4(1.0); }\nkernel vec4 k() { return vec4(1.0); }",
         "line 2: there is another function 'k' already"},
        {"kernel vec4 k() { return vec4(1.0); }\nkernel vec4 l() { return k(); }",
         "line 2: the kernel k cannot be called"},
        {"void f() { return 1.0; }", "line 1: f is void: expected ';' after 'return'"},
        {"float f(float x);\nkernel vec4 k() { return vec4(f(1.0)); }", "line 1: expected the body of f"},
        {"float f(float) { return 1.0; }", "line 1: expected the name of a parameter of f"},
        {"float f(float x) { return x; }\nkernel vec4 k() { return vec4(f(vec2(1.0))); }",
         "line 2: there is no f(vec2); expected f(float)"},
        {"void f(inout float x) { x = 1.0; }\nkernel vec4 k() { f(1.0); return vec4(1.0); }",
         "line 2: only a variable or its components can be changed"},
        {"void f() { }\nkernel vec4 k() { return vec4(f()); }", "line 2: a vec4 cannot be made of a void"},
        {"float f(float x) {\nreturn x > 0.0 ? f(x - 1.0) : 0.0; }\nkernel vec4 k() { return vec4(f(1.0)); }",
         "line 2: f calls itself here, and kernels cannot be recursive"},
        {"float f(float x);\nfloat g(float x) { return f(x); }\nfloat f(float x) { return g(x); }\n"
         "kernel vec4 k() { return vec4(f(1.0)); }",
         "line 3: g calls itself here, and kernels cannot be recursive"},
    };
    for (const Case& c : cases) EXPECT_EQ(mistakeIn(c.text), c.mistake) << c.text;
}

TEST(KernelMistakes, OfLoopsWhoseLengthIsNotKnown) {
    const char* unknown =
        "line 2: the condition of a loop has to follow from constants, so that the number of iterations is "
        "known when the kernel is compiled";
    for (const char* text : {"for (float i = 0.0; i < x; i++) c *= 0.5;", "while (x > 1.0) x -= 1.0;",
                             "do x -= 1.0; while (x > 0.0);", "while (sample(image, v).r < 0.5) v += 1.0;",
                             "for (float i = 0.0; i < samplerSize(image).x; i++) x += 1.0;",
                             "int n = 3; if (x > 1.0) n = 4; for (int i = 0; i < n; i++) x += 1.0;",
                             "for (float i = destCoord().x; i < 9.0; i++) x += 1.0;"})
        EXPECT_EQ(mistakeIn(inKernel(text)), unknown) << text;
}

TEST(KernelMistakes, OfKernelsThatNeverEndOrBecomeTooLong) {
    const char* tooLong =
        "line 1: the kernel k becomes too long when its loops are unrolled and its functions inlined, or "
        "one of its loops never ends";
    for (const char* text : {"for (;;) x += 1.0;", "while (true) ;", "do ; while (1 < 2);",
                             "for (int i = 0; i >= 0; i++) x *= x;", "for (int i = 0; i < 1000000; i++) ;",
                             "for (float i = 0.0; i < 100000000.0; i++) x += i;"})
        EXPECT_EQ(mistakeIn(inKernel(text)), tooLong) << text;
    // Functions that call each other twice grow like a power.
    std::string power = "float f0(float x) { return x * 1.1; }\n";
    for (int i = 1; i < 40; ++i) {
        std::string before = "f" + std::to_string(i - 1);
        power +=
            "float f" + std::to_string(i) + "(float x) { return " + before + "(" + before + "(x) + 0.1); }\n";
    }
    EXPECT_EQ(mistakeIn(power + "kernel vec4 k(float x) { return vec4(f39(x)); }"),
              "line 41: the kernel k becomes too long when its loops are unrolled and its functions "
              "inlined, or one of its loops never ends");
}

TEST(KernelMistakes, OfNestingThatIsTooDeep) {
    auto repeated = [](const std::string& text, int count) {
        std::string all;
        while (count--) all += text;
        return all;
    };
    EXPECT_EQ(mistakeIn(inKernel("x = " + repeated("(", 5000) + "x" + repeated(")", 5000) + ";")),
              "line 2: this is nested too deeply");
    EXPECT_EQ(mistakeIn(inKernel(repeated("{", 5000) + repeated("}", 5000))),
              "line 2: this is nested too deeply");
    EXPECT_EQ(mistakeIn(inKernel("x = x" + repeated(" + x", 5000) + ";")),
              "line 2: this expression is too long");
    EXPECT_EQ(mistakeIn(inKernel("x = " + repeated("-", 5000) + "x;")), "line 2: this is nested too deeply");
    EXPECT_EQ(mistakeIn(inKernel("x = x" + repeated(" + x", 300) + ";")), "");
    std::string chain = "float f0(float x) { return x; }\n";
    for (int i = 1; i < 3000; ++i)
        chain += "float f" + std::to_string(i) + "(float x) { return f" + std::to_string(i - 1) + "(x); }\n";
    EXPECT_NE(
        mistakeIn(chain + "kernel vec4 k(float x) { return vec4(f2999(x)); }").find("nested too deeply"),
        std::string::npos);
}
