// Mathematics, as far as the C++ library's headers name it.
#pragma once

#include <sys/cdefs.h>

typedef float float_t;
typedef double double_t;

#define HUGE_VAL __builtin_huge_val()
#define NAN __builtin_nanf("")
#define INFINITY __builtin_inff()

// Macros in C, which the C++ library's header turns into functions.
#define FP_NAN 1
#define FP_INFINITE 2
#define FP_ZERO 3
#define FP_NORMAL 4
#define FP_SUBNORMAL 5
#define fpclassify(x) __builtin_fpclassify(FP_NAN, FP_INFINITE, FP_NORMAL, FP_SUBNORMAL, FP_ZERO, x)
#define isfinite(x) __builtin_isfinite(x)
#define isinf(x) __builtin_isinf(x)
#define isnan(x) __builtin_isnan(x)
#define isnormal(x) __builtin_isnormal(x)
#define signbit(x) __builtin_signbit(x)
#define isgreater(x, y) __builtin_isgreater(x, y)
#define isgreaterequal(x, y) __builtin_isgreaterequal(x, y)
#define isless(x, y) __builtin_isless(x, y)
#define islessequal(x, y) __builtin_islessequal(x, y)
#define islessgreater(x, y) __builtin_islessgreater(x, y)
#define isunordered(x, y) __builtin_isunordered(x, y)

// A function of one argument, or of two, in its three precisions.
#define KAZ_ONE(name)                                                                                        \
    double name(double);                                                                                     \
    float name##f(float);                                                                                    \
    long double name##l(long double);
#define KAZ_TWO(name)                                                                                        \
    double name(double, double);                                                                             \
    float name##f(float, float);                                                                             \
    long double name##l(long double, long double);

// clang-format off
__BEGIN_DECLS
KAZ_ONE(acos) KAZ_ONE(asin) KAZ_ONE(atan) KAZ_ONE(ceil) KAZ_ONE(cos) KAZ_ONE(cosh) KAZ_ONE(exp)
KAZ_ONE(fabs) KAZ_ONE(floor) KAZ_ONE(log) KAZ_ONE(log10) KAZ_ONE(sin) KAZ_ONE(sinh) KAZ_ONE(sqrt)
KAZ_ONE(tan) KAZ_ONE(tanh) KAZ_ONE(acosh) KAZ_ONE(asinh) KAZ_ONE(atanh) KAZ_ONE(cbrt) KAZ_ONE(erf)
KAZ_ONE(erfc) KAZ_ONE(exp2) KAZ_ONE(expm1) KAZ_ONE(lgamma) KAZ_ONE(log1p) KAZ_ONE(log2) KAZ_ONE(logb)
KAZ_ONE(nearbyint) KAZ_ONE(rint) KAZ_ONE(round) KAZ_ONE(tgamma) KAZ_ONE(trunc)
KAZ_TWO(atan2) KAZ_TWO(fmod) KAZ_TWO(pow) KAZ_TWO(copysign) KAZ_TWO(fdim) KAZ_TWO(fmax) KAZ_TWO(fmin)
KAZ_TWO(hypot) KAZ_TWO(nextafter) KAZ_TWO(remainder)
double frexp(double, int*); double ldexp(double, int); double modf(double, double*);
double fma(double, double, double); int ilogb(double); long long llrint(double); long long llround(double);
long lrint(double); long lround(double); double nan(const char*); double nexttoward(double, long double);
double remquo(double, double, int*); double scalbln(double, long); double scalbn(double, int);
float frexpf(float, int*); float ldexpf(float, int); float modff(float, float*);
float fmaf(float, float, float); int ilogbf(float); long long llrintf(float); long long llroundf(float);
long lrintf(float); long lroundf(float); float nanf(const char*); float nexttowardf(float, long double);
float remquof(float, float, int*); float scalblnf(float, long); float scalbnf(float, int);
long double frexpl(long double, int*); long double ldexpl(long double, int); long double modfl(long double, long double*);
long double fmal(long double, long double, long double); int ilogbl(long double); long long llrintl(long double); long long llroundl(long double);
long lrintl(long double); long lroundl(long double); long double nanl(const char*); long double nexttowardl(long double, long double);
long double remquol(long double, long double, int*); long double scalblnl(long double, long); long double scalbnl(long double, int);
__END_DECLS
// clang-format on
