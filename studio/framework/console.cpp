// Print, Input, the system log, time, assertions.
#include "framework/quit.h"
#include "framework/table.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <iostream>

namespace studio {

namespace {

double microseconds() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

void print(REALobject value) {
    std::string line = display(value) + "\n";
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void doEvents(std::int32_t milliseconds) {
    double until = microseconds() + milliseconds * 1000.0;
    do {
        Host::current().yield();
        double left = until - microseconds();
        if (left <= 0) break;
        timespec nap = {0, long(std::min(left, 1000.0) * 1000)};
        nanosleep(&nap, nullptr);
    } while (true);
}

// ---- assertions ------------------------------------------------------------------------------------------

[[noreturn]] void failed(const std::string& message, REALstring what) {
    std::string note = toUtf8(what);
    raise("AssertionFailed", note.empty() ? message : note + ": " + message);
}

std::string quoted(REALobject value) {
    return variantType(value) == kREALVariantString ? "\"" + display(value) + "\"" : display(value);
}

void assertEqual(REALobject expected, REALobject actual, REALstring what) {
    bool equal = variantsEqual(expected, actual);
    // Texts are compared to the letter here; the language's own comparison ignores case.
    if (equal && variantType(expected) == kREALVariantString) equal = display(expected) == display(actual);
    if (!equal) failed("expected " + quoted(expected) + ", found " + quoted(actual), what);
}

} // namespace

FrameworkFunctions consoleFunctions() {
    return {
        method("Print(value As Variant)", print),
        method("Print", [] { std::fputs("\n", stdout); }),
        method("Input As String",
               [] {
                   std::string line;
                   std::getline(std::cin, line);
                   return makeString(line);
               }),
        method("VarType(value As Variant) As Int32", variantType),
        method("Ticks As Integer", [] { return std::int32_t(std::int64_t(microseconds() * 60 / 1e6)); }),
        method("Microseconds As Double", microseconds),
        method("DoEvents(milliseconds As Integer = 0)", doEvents),
        method("Quit(code As Integer = 0)", [](std::int32_t code) { throw QuitRequest{code}; }),
    };
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

FrameworkClass systemClass() {
    FrameworkClass table;
    table.name = "System";
    table.sharedMethods = {
        method("DebugLog(message As String)",
               [](REALstring message) { std::fprintf(stderr, "%s\n", toUtf8(message).c_str()); }),
        method("EnvironmentVariable(name As String) As String",
               [](REALstring name) {
                   const char* value = std::getenv(toUtf8(name).c_str());
                   return makeString(value ? value : "");
               }),
    };
    return table;
}

FrameworkClass appClass() {
    FrameworkClass table;
    table.name = "App";
    table.sharedMethods = {method("DoEvents(milliseconds As Integer = 10)", doEvents)};
    return table;
}

} // namespace studio
