#include "language/runner.h"

#include "framework/exceptions.h"
#include "language/program.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "runtime/runtime.h"
#include "syntax/names.h"

#include <cstdio>

namespace studio {

namespace {

std::unique_ptr<Program> compiled(const std::string& fileName, std::string_view source) {
    try {
        return compileProgram(fileName, source);
    } catch (const SourceErrors& mistakes) {
        for (const SourceError& error : mistakes.errors)
            std::fprintf(stderr, "%s:%d:%d: error: %s\n",
                         mistakes.files[std::size_t(error.position.file)].c_str(), error.position.line,
                         error.position.column, error.what());
        return nullptr;
    }
}

struct Outcome {
    std::string failure; // empty: none
    std::vector<std::string> places;
    std::optional<int> quit;
};

std::string describe(REALobject exception) {
    std::string message = exceptionMessage(exception);
    return classNameOf(exception) + (message.empty() ? "" : ": " + message);
}

template <class Body>
Outcome outcomeOf(Body body) {
    Outcome result;
    try {
        inMemory([&] {
            body();
            throwPending(); // from a destructor that ran last
        });
    } catch (const Raised& raised) {
        REALobject exception = raised.exception.object();
        bool assertion = isA(exception, "AssertionFailed");
        result.failure = assertion ? exceptionMessage(exception) : describe(exception);
        if (result.failure.empty()) result.failure = classNameOf(exception);
        result.places = exceptionData(exception).places;
    } catch (const QuitRequest& request) {
        result.quit = request.code;
    }
    return result;
}

// Native objects that a test left alive, where the platform counts them.
std::string nativeGrowth(const Report& before, const Report& after) {
    std::string result;
    for (auto& [name, count] : after.platformObjects) {
        int old = 0;
        for (auto& [oldName, oldCount] : before.platformObjects)
            if (oldName == name) old = oldCount;
        if (count > old) result += "leaked: " + std::to_string(count - old) + " native " + name + "\n";
    }
    return result;
}

} // namespace

int runProgram(const std::string& fileName, std::string_view source,
               const std::vector<std::string>& arguments) {
    std::unique_ptr<Program> program = compiled(fileName, source);
    if (!program) return kMistake;
    int code = kFine;
    std::string unhandled;
    try {
        inMemory([&] {
            program->begin(arguments);
            throwPending();
        });
    } catch (const Raised& raised) {
        REALobject exception = raised.exception.object();
        unhandled = "Unhandled " + describe(exception) + "\n";
        for (const std::string& place : exceptionData(exception).places) unhandled += "  at " + place + "\n";
        code = kFailed;
    } catch (const QuitRequest& request) {
        code = request.code;
    }
    program->end();
    program.reset();
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::fputs("studio: not all of the output could be written\n", stderr);
        if (code == kFine) code = kFailed;
    }
    std::fputs(unhandled.c_str(), stderr);
    Report report = heap().report();
    if (report.sound()) return code;
    std::fputs(report.faults().c_str(), stderr);
    return code == kFine ? kLeaked : code;
}

int runTests(const std::string& fileName, std::string_view source, const TestSelection& selection) {
    std::unique_ptr<Program> program = compiled(fileName, source);
    if (!program) return kMistake;
    int passed = 0, failed = 0;
    for (const Routine* test : program->tests()) {
        const std::string& name = test->method->signature.name;
        if (folded(name).find(folded(selection.part)) == std::string::npos) continue;
        if (!selection.only.empty() && !sameName(name, selection.only)) continue;
        Report before = heap().report();
        Outcome outcome = outcomeOf([&] {
            program->begin({});
            program->run(*test);
        });
        program->end();
        Report after = heap().report();
        std::string report = after.faults() + nativeGrowth(before, after);
        heap().clearRecords();
        std::fflush(stdout);
        if (!outcome.failure.empty()) {
            std::string place = outcome.places.empty() ? fileName : outcome.places.front();
            std::printf("FAIL %s: %s: %s\n", name.c_str(), place.c_str(), outcome.failure.c_str());
        } else if (outcome.quit) {
            std::printf("FAIL %s: %s: the test quit\n", name.c_str(), fileName.c_str());
        } else if (!report.empty()) {
            std::printf("FAIL %s: %s: not everything was released\n%s", name.c_str(), fileName.c_str(),
                        report.c_str());
        } else {
            std::printf("ok   %s\n", name.c_str());
            ++passed;
            continue;
        }
        ++failed;
    }
    std::printf("%d passed, %d failed\n", passed, failed);
    if (passed + failed == 0) {
        std::fprintf(stderr, "%s: there is no test%s\n", fileName.c_str(),
                     selection.part.empty() && selection.only.empty()
                         ? "; a test is a Sub whose name begins with Test"
                         : " of that name");
        return kFailed;
    }
    return failed == 0 ? kFine : kFailed;
}

} // namespace studio
