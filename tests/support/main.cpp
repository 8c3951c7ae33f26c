// The entry of test programs: GoogleTest's own, and a run in which every test has a process of its own.
//
// PROGRAM --forked [TEST...] runs the tests named, or all, each in a child of a process that has loaded its
// libraries once: what ctest does, without the start of each program. It stops at the first failure, prints
// that test's name and output, and returns 1.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned kSecondsPerTest = 60;

std::vector<std::string> everyTest() {
    std::vector<std::string> names;
    const testing::UnitTest& program = *testing::UnitTest::GetInstance();
    for (int s = 0; s < program.total_test_suite_count(); ++s) {
        const testing::TestSuite& suite = *program.GetTestSuite(s);
        for (int t = 0; t < suite.total_test_count(); ++t)
            names.push_back(std::string(suite.name()) + "." + suite.GetTestInfo(t)->name());
    }
    return names;
}

std::string outputOf(int file) {
    std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), ' ');
    ssize_t length = pread(file, text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return text;
}

bool passes(const std::string& test, int output) {
    pid_t child = fork();
    if (child == 0) {
        [[maybe_unused]] int emptied = ftruncate(output, 0);
        lseek(output, 0, SEEK_SET);
        dup2(output, STDOUT_FILENO);
        dup2(output, STDERR_FILENO);
        alarm(kSecondsPerTest);
        testing::GTEST_FLAG(filter) = test;
        std::exit(RUN_ALL_TESTS());
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc < 2 || std::strcmp(argv[1], "--forked") != 0) return RUN_ALL_TESTS();

    std::vector<std::string> tests(argv + 2, argv + argc);
    if (tests.empty()) tests = everyTest();
    int output = memfd_create("output", MFD_CLOEXEC);
    auto failed = std::find_if_not(tests.begin(), tests.end(),
                                   [&](const std::string& test) { return passes(test, output); });
    if (failed == tests.end()) return 0;
    std::printf("%s\n%s", failed->c_str(), outputOf(output).c_str());
    return 1;
}
