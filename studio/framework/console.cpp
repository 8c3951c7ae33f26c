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

/// The program itself: its output, its input, time and its end.
FrameworkFunctions consoleFunctions() {
    return {
        /// Writes a value and a line end to standard output. Raises IOException if it cannot be written.
        ///     Print "fig"
        method("Print(value As Variant)", print),
        /// Writes an empty line to standard output. Raises IOException if it cannot be written.
        ///     Print
        method("Print", [] { put("\n"); }),
        /// Writes text and a line end to standard output, as there are no windows here.
        ///     MsgBox "The picture is saved."
        method("MsgBox(text As String)", [](REALstring text) { put(toUtf8(text) + "\n"); }),
        /// Sends the bell character to standard error.
        ///     Beep
        method("Beep", [] { std::fputc('\a', stderr); }),
        /// The next line of standard input, without its end; empty at the end of the input.
        ///     Dim answer As String = Input
        method("Input As String",
               [] {
                   std::string line;
                   std::getline(std::cin, line);
                   return makeString(line);
               }),
        /// The code of a value's type: 0 Nil, 2 Integer, 3 Int64, 4 Single, 5 Double, 6 Currency, 7 Date, 8
        /// String, 9 object, 11 Boolean, 16 Color; 4096 is added for an array.
        ///     Print Str(VarType(1.5))
        method("VarType(value As Variant) As Int32", variantType),
        /// The time since the machine started, in sixtieths of a second.
        ///     Print Str(Ticks > 0)
        method("Ticks As Integer", [] { return std::int32_t(std::int64_t(microseconds() * 60 / 1e6)); }),
        /// The time since the machine started, in microseconds.
        ///     Dim start As Double = Microseconds
        ///     Print Str(Microseconds >= start)
        method("Microseconds As Double", microseconds),
        /// Lets timers fire and other threads run, for at least this many milliseconds.
        ///     DoEvents(1)
        method("DoEvents(milliseconds As Integer = 0)", doEvents),
        /// Ends the program with an exit code.
        ///     If Microseconds < 0 Then Quit(3)
        method("Quit(code As Integer = 0)", [](std::int32_t code) { throw QuitRequest{code}; }),
    };
}

/// The machine that the program runs on.
FrameworkClass systemClass() {
    FrameworkClass table;
    table.name = "System";
    table.sharedMethods = {
        /// Writes a line to standard error.
        ///     System.DebugLog("halfway")
        method("DebugLog(message As String)",
               [](REALstring message) { std::fprintf(stderr, "%s\n", toUtf8(message).c_str()); }),
        /// The value of a variable of the environment, or empty text if it is not set.
        ///     Print Str(System.EnvironmentVariable("PATH").Len > 0)
        method("EnvironmentVariable(name As String) As String",
               [](REALstring name) {
                   const char* value = std::getenv(toUtf8(name).c_str());
                   return makeString(value ? value : "");
               }),
    };
    return table;
}

/// The running program.
FrameworkClass appClass() {
    FrameworkClass table;
    table.name = "App";
    table.sharedMethods = {
        /// Lets timers fire and other threads run, for at least this many milliseconds.
        ///     App.DoEvents(1)
        method("DoEvents(milliseconds As Integer = 10)", doEvents),
        /// Gives every other thread that is ready a turn.
        ///     App.YieldToNextThread
        method("YieldToNextThread", [] { runtime().yield(); }),
        /// Waits for this many milliseconds, while timers fire and other threads run.
        ///     App.SleepCurrentThread(1)
        method("SleepCurrentThread(milliseconds As Integer)", doEvents),
        /// The program that runs this one.
        ///     Print App.ExecutableFile.Name
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
