// Assertions: each raises AssertionFailed when it does not hold.
#include "table.h"

#include <cmath>

namespace studio {

namespace {

[[noreturn]] void failed(const std::string& message, REALstring what) {
    std::string note = toUtf8(what);
    raise("AssertionFailed", note.empty() ? message : note + ": " + message);
}

std::string quoted(REALobject value) {
    return variantType(value) == kREALVariantString ? "\"" + display(value) + "\"" : display(value);
}

void assertEqual(REALobject expected, REALobject actual, REALstring what) {
    bool equal = variantsEqual(expected, actual);
    // The language's own comparison ignores case, an assertion does not.
    if (equal && variantType(expected) == kREALVariantString) equal = display(expected) == display(actual);
    if (!equal) failed("expected " + quoted(expected) + ", found " + quoted(actual), what);
}

FrameworkFunctions assertionFunctions() {
    return {
        method("AssertTrue(condition As Boolean, what As String = \"\")",
               [](bool condition, REALstring what) {
                   if (!condition) failed("expected True", what);
               }),
        method("AssertFalse(condition As Boolean, what As String = \"\")",
               [](bool condition, REALstring what) {
                   if (condition) failed("expected False", what);
               }),
        method("AssertEqual(expected As Variant, actual As Variant, what As String = \"\")", assertEqual),
        method("AssertNear(expected As Double, actual As Double, tolerance As Double, what As String = \"\")",
               [](double expected, double actual, double tolerance, REALstring what) {
                   if (!(std::fabs(expected - actual) <= tolerance))
                       failed("expected " + formatDouble(expected) + " within " + formatDouble(tolerance) +
                                  ", found " + formatDouble(actual),
                              what);
               }),
        method("AssertNil(value As Variant, what As String = \"\")",
               [](REALobject value, REALstring what) {
                   if (value) failed("expected Nil, found " + quoted(value), what);
               }),
        method("AssertNotNil(value As Variant, what As String = \"\")",
               [](REALobject value, REALstring what) {
                   if (!value) failed("expected something, found Nil", what);
               }),
        method("Fail(message As String)",
               [](REALstring message) { raise("AssertionFailed", toUtf8(message)); }),
    };
}

const Registrar registrar([] { return FrameworkPart{{}, assertionFunctions()}; });

} // namespace

} // namespace studio
