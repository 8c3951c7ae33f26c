// Parsing: trees from text, and the messages about syntax errors.
#include "mistake.h"
#include "syntax/ast.h"
#include "syntax/parser.h"

#include <gtest/gtest.h>

using namespace studio;

TEST(Declarations, HaveParametersAndAResult) {
    ast::Signature signature = parseSignature(
        "Sum(ByRef a As Integer, b() As Double, c As String = \"x\", ParamArray d As Variant) As Single");
    EXPECT_EQ(signature.name, "Sum");
    ASSERT_EQ(signature.parameters.size(), 4u);
    EXPECT_TRUE(signature.parameters[0].byRef);
    EXPECT_EQ(signature.parameters[0].type.name, "Integer");
    EXPECT_TRUE(signature.parameters[1].type.rank == 1);
    ASSERT_TRUE(signature.parameters[2].defaultValue);
    EXPECT_EQ(signature.parameters[2].defaultValue->text, "x");
    EXPECT_TRUE(signature.parameters[3].paramArray);
    ASSERT_TRUE(signature.result);
    EXPECT_EQ(signature.result->name, "Single");
}

TEST(Declarations, OfConstantsAndTypes) {
    auto [name, value] = parseConstant("kLimit = &h1F");
    EXPECT_EQ(name, "kLimit");
    EXPECT_EQ(value->number, 31);
    EXPECT_TRUE(parseTypeName("Date()").rank == 1);
    EXPECT_THROW(parseTypeName("Date)"), SourceError);
}

TEST(Programs, AreStatementsRoutinesAndClasses) {
    ast::Program program = parseProgram("Dim a, b As Integer\n"
                                        "Sub Go()\n  Print a\nEnd Sub\n"
                                        "Class C\n  Inherits Date\n  n As Integer = 1\nEnd Class\n"
                                        "Go : Go");
    ASSERT_EQ(program.statements.size(), 3u);
    EXPECT_EQ(program.statements[0]->variables.size(), 2u);
    ASSERT_EQ(program.routines.size(), 1u);
    EXPECT_EQ(program.routines[0].body[0]->position.line, 3);
    ASSERT_EQ(program.classes.size(), 1u);
    EXPECT_EQ(program.classes[0].superclass.name, "Date");
    ASSERT_EQ(program.classes[0].properties.size(), 1u);
    EXPECT_TRUE(program.classes[0].properties[0].initial);
}

TEST(Operators, BindByTheirRank) {
    ast::Program program = parseProgram("x = 1 + 2 * 3 ^ -4 > 5 And Not y");
    const ast::Expr& conjunction = *program.statements[0]->value;
    EXPECT_EQ(conjunction.text, "and");
    EXPECT_EQ(conjunction.b->text, "not");
    const ast::Expr& comparison = *conjunction.a;
    EXPECT_EQ(comparison.text, ">");
    const ast::Expr& sum = *comparison.a;
    EXPECT_EQ(sum.text, "+");
    const ast::Expr& product = *sum.b;
    EXPECT_EQ(product.text, "*");
    EXPECT_EQ(product.b->text, "^");
    EXPECT_EQ(product.b->b->kind, ast::ExprKind::Unary);
}

// ---- mistakes --------------------------------------------------------------------------------------------

class SyntaxMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(SyntaxMistakes, AreExplained) {
    try {
        parseProgram(GetParam().source);
        FAIL() << "it parsed";
    } catch (const SourceError& error) {
        EXPECT_EQ(explained(error), GetParam().message);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, SyntaxMistakes,
    testing::Values(
        Mistake{"OpenString", "Print \"abc", "1:7: this string has no closing quote"},
        Mistake{"MissingValue", "Dim x As Integer = ", "1:20: expected a value, found the end of the line"},
        Mistake{"MissingThen", "If True\nEnd If", "1:8: expected 'Then', found the end of the line"},
        Mistake{"OpenIf", "If True Then\nPrint 1",
                "2:8: expected 'End If' for the 'If' in line 1, found the end of the file"},
        Mistake{"OpenFor", "For i As Integer = 1 To 3\nPrint i\n",
                "3:1: expected 'Next' for the 'For' in line 1, found the end of the file"},
        Mistake{"NextWithoutFor", "Next", "1:1: 'Next' does not close any open block"},
        Mistake{"MissingAs", "Dim x y As Integer", "1:7: expected 'As', found 'y'"},
        Mistake{"ReservedName", "Dim end As Integer",
                "1:5: expected a name for the variable, but 'end' is a reserved word"},
        Mistake{"ReservedRoutine", "Function Step() As Integer\nReturn 1\nEnd Function",
                "1:10: expected a name for the routine, but 'Step' is a reserved word"},
        Mistake{"ReservedParameter", "Sub A(ByRef n As Integer, next As Integer)\nEnd Sub",
                "1:27: expected a name for the parameter, but 'next' is a reserved word"},
        Mistake{"ShortColor", "Print &cFF", "1:7: a colour is written &cRRGGBB or &cRRGGBBAA"},
        Mistake{"SubWithAResult", "Sub A() As Integer\nEnd Sub", "1:12: a Sub has no result; write Function"},
        Mistake{"UnknownConstant", "#If Targe Then\n#EndIf", "1:5: there is no constant 'Targe' for '#If'"},
        Mistake{"NumberAsADirective", "#If 2 Then\n#EndIf",
                "1:5: expected a condition of constants after '#If'"},
        Mistake{"OpenDirective", "#If True Then\nPrint 1",
                "2:8: expected '#EndIf' for the '#If' in line 1, found the end of the file"},
        Mistake{"ElseWithoutIf", "#Else", "1:1: there is no '#If' above this '#Else'"},
        Mistake{"UnknownDirective", "#Foo",
                "1:1: expected #If, #ElseIf, #Else, #EndIf, #Include or #Pragma, found '#Foo'"},
        Mistake{"PragmaError", "#Pragma Error \"not for this\"", "1:1: not for this"},
        Mistake{"MissingFile", "#Include \"nowhere.rbs\"", "1:10: cannot read the file nowhere.rbs"},
        Mistake{"FileWithoutQuotes", "#Include nowhere",
                "1:10: expected the name of a file in quotes after '#Include', found 'nowhere'"},
        Mistake{"OpenEnum", "Enum E\na",
                "2:2: expected 'End Enum' for the 'Enum' in line 1, found the end of the file"},
        Mistake{"OpenGet", "Class C\nProperty W As Integer\nGet\nReturn 1\nEnd Property\nEnd Class",
                "5:1: expected 'End Get' for the 'Get' in line 3, found 'End'"},
        Mistake{"HalfAChoice", "x = If(True, 2)", "1:5: If(...) takes a condition and two values"}));

// ---- directives ------------------------------------------------------------------------------------------

TEST(Directives, LeaveOutWhatDoesNotApply) {
    Surroundings mac;
    mac.constants = {{"targetmacos", true}, {"rbversion", 2012.0}};
    ast::Program program =
        parseProgram("#If TargetMacOS And RBVersion >= 2011.4 Then\nA\n#If False\nB\n#Else\nC\n"
                     "#EndIf\n#ElseIf True\nD (\n#Else\nE\n#End If\nF",
                     mac);
    ASSERT_EQ(program.statements.size(), 3u);
    EXPECT_EQ(program.statements[0]->value->text, "A");
    EXPECT_EQ(program.statements[1]->value->text, "C");
    EXPECT_EQ(program.statements[2]->value->text, "F");
    EXPECT_EQ(program.statements[2]->position.line, 13);
}

TEST(Directives, IncludeAFileOnce) {
    Surroundings folder;
    folder.files = {"some/where/main.rbs"};
    folder.read = [](const std::string& path) -> std::optional<std::string> {
        if (path == "some/where/parts/a.rbs") return "#Include \"../b.rbs\"\nA\n";
        if (path == "some/where/b.rbs") return "#!first line\nB";
        return std::nullopt;
    };
    ast::Program program = parseProgram("#Include \"parts/a.rbs\"\n#Include \"b.rbs\"\nC", folder);
    ASSERT_EQ(program.statements.size(), 3u);
    EXPECT_EQ(program.statements[0]->value->text, "B");
    EXPECT_EQ(program.statements[0]->position.line, 2);
    EXPECT_EQ(folder.files.at(std::size_t(program.statements[0]->position.file)), "some/where/b.rbs");
    EXPECT_EQ(program.statements[1]->value->text, "A");
    EXPECT_EQ(program.statements[2]->position.file, 0);
    EXPECT_EQ(folder.files.size(), 3u);
}

TEST(Programs, MayBeginWithAByteOrderMarkAndAnInterpreter) {
    ast::Program program = parseProgram("\xEF\xBB\xBF#!/usr/bin/env studio\nGo");
    ASSERT_EQ(program.statements.size(), 1u);
    EXPECT_EQ(program.statements[0]->position.line, 2);
    EXPECT_EQ(parseProgram("\xEF\xBB\xBFGo").statements[0]->position.column, 1);
}
