// What the language says about programs that are wrong, and what is left of programs that ran.
#include "TestPlugin.h"
#include "framework/exceptions.h"
#include "language/machine.h"

#include <gtest/gtest.h>

using namespace studio;

// The first mistake, as "line:column: message".
static std::string mistakeIn(const std::string& source, bool withPlugin = false) {
    Host host;
    if (withPlugin) host.loadPlugin(testPlugin12);
    try {
        compileProgram("test.rbs", source);
    } catch (const SourceErrors& mistakes) {
        const SourceError& first = mistakes.errors.front();
        return std::to_string(first.position.line) + ":" + std::to_string(first.position.column) + ": " +
               first.what();
    }
    return "";
}

struct Mistake {
    const char* source;
    const char* message;
};

class Mistakes : public testing::TestWithParam<Mistake> {};

TEST_P(Mistakes, AreExplained) { EXPECT_EQ(mistakeIn(GetParam().source), GetParam().message); }

INSTANTIATE_TEST_SUITE_P(
    Syntax, Mistakes,
    testing::Values(Mistake{"Print \"abc", "1:7: this string has no closing quote"},
                    Mistake{"Dim x As Integer = ", "1:20: expected a value, found the end of the line"},
                    Mistake{"If True\nEnd If", "1:8: expected 'Then', found the end of the line"},
                    Mistake{"If True Then\nPrint 1",
                            "2:8: expected 'End If' for the 'If' in line 1, found the end of the file"},
                    Mistake{"For i As Integer = 1 To 3\nPrint i\n",
                            "3:1: expected 'Next' for the 'For' in line 1, found the end of the file"},
                    Mistake{"Next", "1:1: 'Next' closes nothing that is open here"},
                    Mistake{"Dim x y As Integer", "1:7: expected 'As', found 'y'"},
                    Mistake{"Dim end As Integer",
                            "1:5: expected a name for the variable, but 'end' is a word of the language"},
                    Mistake{"Print &cFF", "1:7: a colour is written &cRRGGBB or &cRRGGBBAA"},
                    Mistake{"Sub A() As Integer\nEnd Sub", "1:12: a Sub has no result; write Function"}));

INSTANTIATE_TEST_SUITE_P(
    Meaning, Mistakes,
    testing::Values(
        Mistake{"Dim count As Integer\nPrint cuont", "2:7: there is no 'cuont'; did you mean 'count'?"},
        Mistake{"Dim d As New Dictionery", "1:14: there is no type 'Dictionery'; did you mean 'Dictionary'?"},
        Mistake{"Dim d As New Dictionary\nPrint d.Cuont",
                "2:9: Dictionary has no 'Cuont'; did you mean 'Count'?"},
        Mistake{"Dim x As Integer = \"a\"",
                "1:20: expected Integer for 'x', found String; write Val(...) to convert it"},
        Mistake{"Dim s As String = 5",
                "1:19: expected String for 's', found Integer; write Str(...) to convert it"},
        Mistake{"Print Left(\"abc\")",
                "1:7: Left does not take (String); expected Left(s As String, count As Integer) As String"},
        Mistake{"If 1 Then Print 2", "1:4: expected a Boolean, found Integer"},
        Mistake{"Print \"a\" + 1", "1:11: '+' does not take String and Integer"},
        Mistake{"Dim a As Integer\nDim a As Integer", "2:5: there is a variable 'a' already"},
        Mistake{"Print total\nDim total As Integer", "1:7: there is no 'total' yet: its Dim comes later"},
        Mistake{"Exit For", "1:1: there is no 'for' loop to leave here"},
        Mistake{"Function F() As Integer\nReturn \"x\"\nEnd Function",
                "2:8: expected Integer for the result, found String; write Val(...) to convert it"},
        Mistake{"Dim d As New Dictionary\nd.Count = 3", "2:3: Dictionary.Count is read only"},
        Mistake{"Dim o As Object\nDim d As Dictionary = o",
                "2:23: expected Dictionary for 'd', found Object; write Dictionary(...) to convert it"},
        Mistake{"Const k = 3\nk = 4", "2:1: 'k' is a constant"}));

TEST(Mistakes, OfOneProgramAreAllFound) {
    Host host;
    try {
        compileProgram("test.rbs", "Print a\nDim x As Integer = \"s\"\nPrint x\nSub T()\nPrint b\nEnd Sub");
        FAIL() << "it compiled";
    } catch (const SourceErrors& mistakes) {
        ASSERT_EQ(mistakes.errors.size(), 3u);
        EXPECT_EQ(mistakes.errors[0].position.line, 1);
        EXPECT_EQ(mistakes.errors[1].position.line, 2);
        EXPECT_EQ(mistakes.errors[2].position.line, 5);
    }
}

TEST(Overloads, AmbiguityNamesTheCandidates) {
    std::string mistake = mistakeIn("Function F(a As Dictionary) As Integer\nReturn 1\nEnd Function\n"
                                    "Function F(a As Date) As Integer\nReturn 2\nEnd Function\nPrint F(Nil)");
    EXPECT_EQ(mistake, "7:7: this call of F is ambiguous; it may be F(a As Dictionary) As Integer or F(a As "
                       "Date) As Integer");
}

TEST(Overloads, OfAPluginAreChosenByType) {
    EXPECT_EQ(
        mistakeIn("Dim c As New CounterTest(3)\nDim i As Integer = c.Add(2)\nDim d As Double = c.Add(2.5)\n"
                  "c.ValueFor(\"k\") = 3\nPrint c.ValueFor(\"k\")\nPrint CounterTest.kLimit",
                  true),
        "");
    EXPECT_EQ(mistakeIn("Dim c As New CounterTest(\"x\")", true),
              "1:10: New CounterTest does not take (String); expected Constructor() or Constructor(Start As "
              "Integer)");
}

// ---- running ---------------------------------------------------------------------------------------------

static Report run(Host& host, const std::string& source) {
    auto program = compileProgram("test.rbs", source);
    try {
        program->begin({});
    } catch (const Raised& raised) {
        EXPECT_NE(classNameOf(raised.exception.object()), "AssertionFailed")
            << exceptionMessage(raised.exception.object());
    }
    program.reset();
    return host.report();
}

TEST(Running, LeavesNothingBehind) {
    Host host;
    host.loadPlugin(testPlugin12);
    Report report = run(host, R"(
Function Make(n As Integer) As CounterTest
  Dim c As New CounterTest(n)
  If n > 2 Then Return c
  Return New CounterTest(n + 100)
End Function
Dim all() As CounterTest
For i As Integer = 1 To 4
  all.Append Make(i)
  Dim text As String = "n" + Str(i)
  If i = 3 Then Continue For
  Dim d As New Dictionary
  d.Value(text) = all
  d.Value(i) = d.Value(text)
Next
Try
  Print all(9).Half
Catch e As OutOfBoundsException
  Dim m As String = e.Message
End Try
Print Make(1).Itself.Itself.Describe("x")
Make(3).Fail
)");
    EXPECT_TRUE(report.clean()) << report.text();
    EXPECT_EQ(testPluginLog.find("+Counter"), 0u);
}

TEST(Running, AnExceptionKnowsItsPlaces) {
    Host host;
    host.loadPlugin(testPlugin12);
    {
        auto program =
            compileProgram("test.rbs", "Dim c As New CounterTest\nSub Go()\n  Print c.Fail\nEnd Sub\n\nGo");
        try {
            program->begin({});
            FAIL() << "nothing was thrown";
        } catch (const Raised& raised) {
            EXPECT_EQ(exceptionMessage(raised.exception.object()), "image is nil");
            EXPECT_EQ(exceptionData(raised.exception.object()).places,
                      (std::vector<std::string>{"test.rbs:3", "test.rbs:6"}));
        }
    }
    EXPECT_TRUE(host.report().clean()) << host.report().text();
}

TEST(Running, EndlessRecursionIsAnException) {
    Host host;
    Report report = run(host, R"(
Function Deep(n As Integer) As Integer
  Dim d As New Dictionary
  Return Deep(n + 1) + d.Count
End Function
Dim caught As Boolean
Try
  Print Deep(0)
Catch e As StackOverflowException
  caught = True
End Try
AssertTrue caught
)");
    EXPECT_TRUE(report.clean()) << report.text();
}

TEST(Running, TimersFireWhileAPluginWaits) {
    Host host;
    host.loadPlugin(testPlugin12);
    Report report = run(host, R"(
Dim fired As Integer
Sub Tick(sender As Timer)
  fired = fired + 1
  sender.Mode = Timer.ModeOff
End Sub
Dim t As New Timer
AddHandler t.Action, AddressOf Tick
t.Period = 1
t.Mode = Timer.ModeMultiple
Dim start As Double = Microseconds
While fired = 0 And Microseconds - start < 1000000
  Dim n As Integer = WaitTest(1)
Wend
AssertEqual 1, fired
)");
    EXPECT_TRUE(report.clean()) << report.text();
}

TEST(Running, AClassMayInheritFromAPlugins) {
    Host host;
    host.loadPlugin(testPlugin12);
    Report report = run(host, R"(
Class Tally
  Inherits CounterTest
  Notes() As String
  Sub Constructor(start As Integer)
    Super.Constructor(start)
    Notes.Append "from " + Str(start)
  End Sub
  Sub Destructor()
    Notes.Append "gone"
  End Sub
  Function Total() As Integer
    Return Add(1)
  End Function
End Class
Dim t As New Tally(4)
AssertEqual 5, t.Total
AssertEqual 5, t.Handle
AssertEqual "from 4", t.Notes(0)
Dim c As CounterTest = t
AssertTrue c.Itself IsA Tally
)");
    EXPECT_TRUE(report.clean()) << report.text();
    EXPECT_NE(testPluginLog.find("-Counter"), std::string::npos);
}
