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
        Mistake{"AssignedConstant", "Const k = 3\nk = 4", "2:1: 'k' is a constant"},
        Mistake{"NumberForAnEnum", "Enum E\na\nEnd Enum\nDim x As E = 3",
                "4:14: expected E for 'x', found Integer; write E(...) to convert it"},
        Mistake{"EnumForANumber", "Enum E\na\nEnd Enum\nDim x As Integer = E.a",
                "4:22: expected Integer for 'x', found E; write Integer(...) to convert it"},
        Mistake{"UnknownEnumValue", "Enum E\na\nEnd Enum\nDim x As E = E.b",
                "4:16: the class E has no 'b'; did you mean 'a'?"},
        Mistake{"EnumInASum", "Enum E\na\nEnd Enum\nPrint E.a + 1", "4:11: '+' does not take E and Integer"},
        Mistake{"EnumOfText", "Enum E As String\na\nEnd Enum",
                "1:11: expected an integer type for the enum's values"},
        Mistake{"EnumValueTwice", "Enum E\na\na\nEnd Enum", "3:1: E already has a value 'a'"},
        Mistake{"ObjectInAStructure", "Structure S\nd As Dictionary\nEnd Structure",
                "2:6: a Structure holds numbers, text and Structures, not a Dictionary"},
        Mistake{"FixedLengthOutsideAStructure", "Dim s As String * 4",
                "1:19: only a Structure's String has a fixed length"},
        Mistake{"TooFewIndices", "Dim g(2,3) As Integer\ng(1) = 4", "2:1: expected 2 indices, found 1"},
        Mistake{"AppendToATable", "Dim g(2,3) As Integer\ng.Append 4",
                "2:3: Append is for arrays of one dimension, not for Integer(,)"},
        Mistake{"TooFewBounds", "Dim g(2,3) As Integer\nRedim g(4)", "2:7: expected 2 upper bounds, found 1"},
        Mistake{"TooManyDimensions", "Dim g(1,1,1,1,1,1,1,1,1) As Integer",
                "1:29: an array has at most 8 dimensions"},
        Mistake{"UnfinishedInterface",
                "Interface I\nSub Go()\nEnd Interface\nClass C\nImplements I\nEnd Class",
                "5:12: C does not implement Go() of I"},
        Mistake{"NewInterface", "Interface I\nSub Go()\nEnd Interface\nDim x As New I",
                "4:14: I is an interface; expected a class that implements it"},
        Mistake{"ClassAsAnInterface", "Class C\nImplements Date\nEnd Class",
                "2:12: expected an interface, found Date"},
        Mistake{"NoSetter",
                "Class C\nProperty W As Integer\nGet\nReturn 1\nEnd Get\nEnd Property\nEnd Class\nDim c As "
                "New C\nc.W = 3",
                "9:3: C.W cannot be assigned to"},
        Mistake{"NoGetter",
                "Class C\nProperty W As Integer\nSet\nEnd Set\nEnd Property\nEnd Class\nDim c As New "
                "C\nPrint c.W",
                "8:9: C.W can only be set"},
        Mistake{"UnknownSharedProperty", "Class C\nShared Count As Integer\nEnd Class\nPrint C.Cuont",
                "4:9: the class C has no 'Cuont'; did you mean 'count'?"},
        Mistake{"UnknownEvent",
                "Class C\nEvent Moved(x As Integer)\nSub Go()\nRaiseEvent Movd(3)\nEnd Sub\nEnd Class",
                "4:12: C declares no event 'Movd'; did you mean 'Moved'?"},
        Mistake{"WrongHandler",
                "Class C\nEvent Moved(x As Integer)\nEnd Class\nClass D\nInherits C\nSub Moved(x As "
                "String)\nEnd Sub\nEnd Class",
                "6:5: D.Moved handles the event Moved(x As Integer); expected its parameters and result"},
        Mistake{"WrongAddedHandler",
                "Class C\nEvent Moved(x As Integer)\nEnd Class\nSub H(sender As C)\nEnd Sub\nDim c As New "
                "C\nAddHandler c.Moved, AddressOf H",
                "7:21: expected a Sub declared as H(sender As C, x As Integer)"},
        Mistake{"WrongDelegate",
                "Delegate Sub D(x As Integer)\nSub F(x As String)\nEnd Sub\nDim d As D = AddressOf F",
                "4:14: expected a Sub like D(x As Integer), found F(x As String)"},
        Mistake{"WrongArgumentOfADelegate", "Delegate Sub D(x As Integer)\nDim d As D\nd.Invoke(\"a\")",
                "3:3: Invoke does not take (String); expected Invoke(x As Integer)"},
        Mistake{"AddressOfNothing", "Dim d As Object = AddressOf Nothing",
                "1:29: expected the name of a Sub or Function after 'AddressOf'"},
        Mistake{"OperatorForAnotherType",
                "Class V\nFunction Operator_Add(o As V) As V\nReturn o\nEnd Function\nEnd Class\nDim v As "
                "V\nv = v + 3",
                "7:7: '+' does not take V and Integer"},
        Mistake{"NoSubscript", "Class V\nEnd Class\nDim v As V\nPrint v(3)",
                "4:7: a V takes no arguments and has no elements"},
        Mistake{"ExitOfAnUnknownLoop", "For i As Integer = 0 To 3\nExit For j\nNext",
                "2:1: there is no loop 'j' around this; expected a loop's variable or the label in the line "
                "above the loop"},
        Mistake{"UnknownLabel", "Goto nowhere",
                "1:1: there is no label 'nowhere:' in this block or around it"},
        Mistake{"UnknownTypeForCType", "Print CType(3, Foo)", "1:16: expected a type to convert to"},
        Mistake{"WrongComparison", "Dim a() As Integer\na.Sort(AddressOf Len)",
                "2:8: expected a Function like Compare(a As Integer, b As Integer) As Integer, found Len(s "
                "As String) As Integer"},
        Mistake{"SortWithObjects", "Dim a() As Date\na.SortWith(a)",
                "2:3: only numbers and strings can be sorted"},
        Mistake{"ChangingConstant", "Const k = Rnd", "1:11: expected a literal value for the constant"},
        Mistake{"WeakRefOfNothing", "Dim w As New WeakRef",
                "1:10: New WeakRef does not take no arguments; expected Constructor(target As Object)"}));

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

TEST(Mistakes, AreToldOnce) {
    Host host;
    try {
        compileProgram("test.rbs", "Dim a As Nothing\nConst k = Rnd");
        FAIL() << "it compiled";
    } catch (const SourceErrors& mistakes) {
        EXPECT_EQ(mistakes.errors.size(), 2u);
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
