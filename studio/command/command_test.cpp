// The command as people use it: output, messages and exit codes.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Outcome {
    int code;
    std::string output; // both streams
};

class Command : public testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("studio-command-" + std::to_string(getpid()));
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    Outcome studio(const std::string& arguments) {
        std::string line = "cd " + folder.string() + " && " STUDIO_COMMAND " " + arguments + " 2>&1";
        std::FILE* pipe = popen(line.c_str(), "r");
        Outcome run;
        std::array<char, 4096> buffer;
        for (std::size_t n; (n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
            run.output.append(buffer.data(), n);
        run.code = WEXITSTATUS(pclose(pipe));
        return run;
    }
    Outcome program(const std::string& source, const std::string& options = "",
                    const std::string& arguments = "") {
        std::ofstream(folder / "p.rbs") << source;
        return studio("--no-plugins " + options + " p.rbs " + arguments);
    }

    fs::path folder;
};

} // namespace

TEST_F(Command, RunsAProgramWithItsArguments) {
    Outcome run = program("Print Args.Ubound\nPrint Args(1)\nPrint New Dictionary", "", "one 'two words'");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "1\ntwo words\nDictionary\n");
}

TEST_F(Command, TellsWhereAMistakeIs) {
    Outcome run = program("Dim x As Integer\nx = \"a\"");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.output,
              "p.rbs:2:5: error: expected Integer for the assignment, found String; write Val(...) to "
              "convert it\n");
}

TEST_F(Command, RunsNothingOfAProgramWithAMistake) {
    Outcome run = program("Print \"started\"\nPrint nothing");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.output.find("started"), std::string::npos);
}

TEST_F(Command, TellsOfAnUnhandledException) {
    Outcome run = program("Sub Go()\n  Raise New KeyNotFoundException(\"gone\")\nEnd Sub\nPrint 1\nGo");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.output, "1\nUnhandled KeyNotFoundException: gone\n  at p.rbs:2\n  at p.rbs:5\n");
}

TEST_F(Command, ReportsLeaks) {
    Outcome run = program("Dim d As New Dictionary\nd.Value(\"me\") = d");
    EXPECT_EQ(run.code, 3);
    EXPECT_NE(run.output.find("leaked: 1 Dictionary (references: 1 host, 0 plugin)"), std::string::npos)
        << run.output;
}

TEST_F(Command, Quits) {
    EXPECT_EQ(program("Dim d As New Dictionary\nQuit 7\nPrint 1").code, 7);
    EXPECT_EQ(program("Quit").code, 0);
}

TEST_F(Command, RunsTests) {
    Outcome run =
        program("Dim n As Integer = 3\n"
                "Sub TestGood()\n  n = n + Count()\n  AssertEqual 4, n\nEnd Sub\n"
                "Sub TestFreshState()\n  AssertEqual 4, n + Count()\nEnd Sub\n"
                "Sub TestBad()\n  AssertEqual \"a\", \"A\", \"letters\"\nEnd Sub\n"
                "Sub TestLeak()\n  Dim d As New Dictionary\n  d.Value(1) = d\nEnd Sub\n"
                "Function Count() As Integer\n  Static c As Integer\n  c = c + 1\n  Return c\nEnd Function\n",
                "--test");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("ok   TestGood\nok   TestFreshState\n"
                              "FAIL TestBad: p.rbs:10: letters: expected \"a\", found \"A\"\n"
                              "FAIL TestLeak: p.rbs: not everything was released\nleaked: 1 Dictionary"),
              std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("2 passed, 2 failed\n"), std::string::npos) << run.output;
    EXPECT_EQ(program("Sub TestA()\nEnd Sub\nSub TestB()\n  Fail \"x\"\nEnd Sub", "--test", "TestA").code, 0);
    EXPECT_EQ(program("Print 1", "--test").code, 1); // running no test is not a success
}

TEST_F(Command, TellsOneMistakeOnce) {
    // Wherever a name that is not declared, or declared with a mistake, is used.
    Outcome run = program("Dim a As New Dictionry\na.Value(1) = 2\nPrint total\nPrint a.Count + total\n"
                          "Class C\n  Dim q As Foo\n  Sub Go()\n    q.Bar\n    Dim r As Foo\n    r.Bar\n"
                          "  End Sub\nEnd Class");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.output, "p.rbs:1:14: error: there is no type 'Dictionry'; did you mean 'Dictionary'?\n"
                          "p.rbs:3:7: error: there is no 'total'\n"
                          "p.rbs:6:12: error: there is no type 'Foo'\n");
}

TEST_F(Command, PrintReachesAPipeLineByLine) {
    // The program would go on for a minute; what it printed has arrived when it is interrupted.
    std::ofstream(folder / "p.rbs") << "Print 1\nPrint 2\nDoEvents(60000)\nPrint 3";
    std::string line =
        "cd " + folder.string() + " && (timeout -s INT 2 " STUDIO_COMMAND " --no-plugins p.rbs | cat)";
    std::FILE* pipe = popen(line.c_str(), "r");
    std::array<char, 100> buffer;
    std::string output(buffer.data(), fread(buffer.data(), 1, buffer.size(), pipe));
    pclose(pipe);
    EXPECT_EQ(output, "1\n2\n");
}

TEST_F(Command, RefusesAFolder) {
    Outcome run = studio("--no-plugins .");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.output, "studio: cannot read .: it is a folder\n");
}

TEST_F(Command, SaysWhyAFileCannotBeWritten) {
    for (std::string statement :
         {"Dim t As TextOutputStream = TextOutputStream.Create(GetFolderItem(\"no/x\"))",
          "Dim p As New Picture(2, 2, 32)\np.Save(GetFolderItem(\"no/x\"), Picture.SaveAsPNG)"}) {
        Outcome run = program(statement);
        EXPECT_EQ(run.code, 1);
        EXPECT_NE(run.output.find("cannot write " + (folder / "no/x").string() + ": no such folder\n"),
                  std::string::npos)
            << run.output;
    }
}

TEST_F(Command, ExplainsItself) {
    EXPECT_EQ(studio("").code, 2);
    EXPECT_EQ(studio("--help").code, 0);
    EXPECT_EQ(studio("--host abc p.rbs").code, 2);
    EXPECT_EQ(studio("--no-plugins missing.rbs").code, 2);
    Outcome run = studio("--no-plugins --frobnicate p.rbs");
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.output.find("unknown option --frobnicate"), std::string::npos);
}

TEST_F(Command, RunsOneTest) {
    std::string source = "Sub TestA()\nEnd Sub\nSub TestAB()\n  Fail \"x\"\nEnd Sub";
    EXPECT_EQ(program(source, "--only testa").output, "ok   TestA\n1 passed, 0 failed\n");
    EXPECT_EQ(program(source, "--only TestAB").code, 1);
    Outcome run = program(source, "--only Test");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("there is no test of that name"), std::string::npos) << run.output;
}

TEST_F(Command, TellsItsVersion) {
    Outcome run = studio("--version");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "studio " STUDIO_VERSION "\n");
}

TEST_F(Command, SamplePhotosNeedTheirFolder) {
    std::ofstream(folder / "p.rbs") << "Print SamplePhoto(\"x.jpg\").Name";
    std::ofstream(folder / "x.jpg") << "";
    unsetenv("KAZ_PHOTOS");
    Outcome run = studio("--no-plugins p.rbs");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("Unhandled IOException: KAZ_PHOTOS does not name"), std::string::npos)
        << run.output;
    setenv("KAZ_PHOTOS", folder.c_str(), 1);
    EXPECT_EQ(studio("--no-plugins p.rbs").output, "x.jpg\n");
    unsetenv("KAZ_PHOTOS");
}

TEST_F(Command, TellsOfAMissingFontOnce) {
    Outcome run =
        program("Dim p As New Picture(9, 9)\n"
                "For Each name As String In Array(\"Nonesuch\", \"System\", \"Arial\", \"Nonesuch\")\n"
                "  p.Graphics.TextFont = name\nNext");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "studio: there is no font \"Nonesuch\"; its text is drawn in DejaVu Sans\n");
}
