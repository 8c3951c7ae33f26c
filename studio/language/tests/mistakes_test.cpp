// The compiler's messages about programs that parse but make no sense.
#include "language/program.h"
#include "mistake.h"
#include "test_plugin.h"

#include <studio/host.h>

#include <gtest/gtest.h>

using namespace studio;

// The first mistake; empty when there is none.
static std::string mistakeIn(const std::string& source, bool withPlugin = false) {
    Host host;
    if (withPlugin) host.loadPlugin(testPlugin12);
    try {
        compileProgram("test.rbs", source);
    } catch (const SourceErrors& mistakes) {
        return explained(mistakes.errors.front());
    }
    return "";
}

class Mistakes : public testing::TestWithParam<Mistake> {};

TEST_P(Mistakes, AreExplained) { EXPECT_EQ(mistakeIn(GetParam().source), GetParam().message); }

INSTANTIATE_TEST_SUITE_P(
    Of, Mistakes,
    testing::Values(
        Mistake{"MisspeltVariable", "Dim count As Integer\nPrint cuont",
                "2:7: there is no 'cuont'; did you mean 'count'?"},
        Mistake{"MisspeltType", "Dim d As New Dictionery",
                "1:14: there is no type 'Dictionery'; did you mean 'Dictionary'?"},
        Mistake{"MisspeltMember", "Dim d As New Dictionary\nPrint d.Cuont",
                "2:9: Dictionary has no 'Cuont'; did you mean 'Count'?"},
        Mistake{"TextForANumber", "Dim x As Integer = \"a\"",
                "1:20: expected Integer for 'x', found String; write Val(...) to convert it"},
        Mistake{"NumberForAText", "Dim s As String = 5",
                "1:19: expected String for 's', found Integer; write Str(...) to convert it"},
        Mistake{"MissingArgument", "Print Left(\"abc\")",
                "1:7: Left does not take (String); expected Left(s As String, count As Integer) As String"},
        Mistake{"NumberAsACondition", "If 1 Then Print 2", "1:4: expected a Boolean, found Integer"},
        Mistake{"TextPlusNumber", "Print \"a\" + 1", "1:11: '+' does not take String and Integer"},
        Mistake{"VariableDeclaredTwice", "Dim a As Integer\nDim a As Integer",
                "2:5: there is already a variable 'a'"},
        Mistake{"VariableBeforeItsDim", "Print total\nDim total As Integer",
                "1:7: there is no 'total' yet: its Dim comes later"},
        Mistake{"ExitWithoutALoop", "Exit For", "1:1: there is no 'for' loop to leave here"},
        Mistake{"ResultOfTheWrongType", "Function F() As Integer\nReturn \"x\"\nEnd Function",
                "2:8: expected Integer for the result, found String; write Val(...) to convert it"},
        Mistake{"ReadOnlyProperty", "Dim d As New Dictionary\nd.Count = 3",
                "2:3: Dictionary.Count is read only"},
        Mistake{"SuperclassForASubclass", "Dim o As Object\nDim d As Dictionary = o",
                "2:23: expected Dictionary for 'd', found Object; write Dictionary(...) to convert it"},
        Mistake{"AssignedConstant", "Const k = 3\nk = 4", "2:1: 'k' is a constant"}));

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
