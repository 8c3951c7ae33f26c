// Print, Input, Quit, time, System and App.
#include "clock.h"
#include "framework/folderitem.h"
#include "table.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

namespace studio {

namespace {

// A program whose output goes nowhere is told, instead of running on in silence.
void put(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        raise("IOException", std::string("cannot print: ") + std::strerror(errno));
}

void print(REALobject value) {
    std::string line = display(value) + "\n";
    put(line);
}

void doEvents(std::int32_t milliseconds) {
    double until = microseconds() + milliseconds * 1000.0;
    do {
        runtime().yield();
        double left = until - microseconds();
        if (left <= 0) break;
        timespec nap = {0, long(std::min(left, 1000.0) * 1000)};
        nanosleep(&nap, nullptr);
    } while (true);
}

FrameworkFunctions consoleFunctions() {
    return {
        method("Print(value As Variant)", print),
        method("Print", [] { put("\n"); }),
        method("MsgBox(text As String)", [](REALstring text) { put(toUtf8(text) + "\n"); }),
        method("Beep", [] { std::fputc('\a', stderr); }),
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
    table.sharedMethods = {
        method("DoEvents(milliseconds As Integer = 10)", doEvents),
        method("YieldToNextThread", [] { runtime().yield(); }),
        method("SleepCurrentThread(milliseconds As Integer)", doEvents),
        method("ExecutableFile As FolderItem",
               [] {
                   std::error_code error;
                   return newFolderItem(std::filesystem::read_symlink("/proc/self/exe", error).string());
               }),
    };
    return table;
}

const Registrar registrar([] { return FrameworkPart{{systemClass(), appClass()}, consoleFunctions()}; });

} // namespace

} // namespace studio
