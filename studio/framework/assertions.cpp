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

/// Assertions for tests. One that does not hold raises AssertionFailed with a message, behind the text that
/// says what was tried.
FrameworkFunctions assertionFunctions() {
    return {
        /// Expects True.
        ///     AssertTrue(2 > 1, "order")
        method("AssertTrue(condition As Boolean, what As String = \"\")",
               [](bool condition, REALstring what) {
                   if (!condition) failed("expected True", what);
               }),
        /// Expects False.
        ///     AssertFalse(1 > 2, "order")
        method("AssertFalse(condition As Boolean, what As String = \"\")",
               [](bool condition, REALstring what) {
                   if (condition) failed("expected False", what);
               }),
        /// Expects two equal values; the case of text matters.
        ///     AssertEqual("fig", Lowercase("FIG"), "small letters")
        method("AssertEqual(expected As Variant, actual As Variant, what As String = \"\")", assertEqual),
        /// Expects a number within a tolerance of another.
        ///     AssertNear(1.414, Sqrt(2), 0.001, "root")
        method("AssertNear(expected As Double, actual As Double, tolerance As Double, what As String = \"\")",
               [](double expected, double actual, double tolerance, REALstring what) {
                   if (!(std::fabs(expected - actual) <= tolerance))
                       failed("expected " + formatDouble(expected) + " within " + formatDouble(tolerance) +
                                  ", found " + formatDouble(actual),
                              what);
               }),
        /// Expects Nil.
        ///     Dim nobody As Date
        ///     AssertNil(nobody)
        method("AssertNil(value As Variant, what As String = \"\")",
               [](REALobject value, REALstring what) {
                   if (value) failed("expected Nil, found " + quoted(value), what);
               }),
        /// Expects anything but Nil.
        ///     AssertNotNil(New Date)
        method("AssertNotNil(value As Variant, what As String = \"\")",
               [](REALobject value, REALstring what) {
                   if (!value) failed("expected something, found Nil", what);
               }),
        /// Raises AssertionFailed.
        ///     If 1 > 2 Then Fail("numbers are out of order")
        method("Fail(message As String)",
               [](REALstring message) { raise("AssertionFailed", toUtf8(message)); }),
    };
}

const Registrar registrar([] { return FrameworkPart{{}, assertionFunctions()}; });

} // namespace

} // namespace studio
