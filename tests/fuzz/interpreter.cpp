// Fuzzing the interpreter: programs that compile, written from a fuzzer's choices, run to their end, to an
// exception of the language or to Quit, and leave nothing alive.
#include "choices.h"

#include "language/program.h"
#include "runtime/exceptions.h"
#include "runtime/heap.h"

#include <studio/host.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using fuzz::Choices;

constexpr const char* kDeclarations = R"(
Class Node
  Dim Rest As Node
  Dim Held As Variant
  Sub Destructor()
    Count = Count + 1
  End Sub
  Shared Count As Integer
  Function Depth(n As Integer) As Integer
    If n <= 0 Or Rest Is Nil Then Return n
    Return Rest.Depth(n - 1)
  End Function
End Class
Function Recur(n As Integer, ByRef s As String) As Integer
  s = Left(s + Str(n), 50)
  If n <= 0 Then Return 1
  Return n * Recur(n - 1, s) Mod 1000
End Function
Dim i0, i1, i2 As Integer
Dim d0, d1 As Double
Dim s0, s1, s2 As String
Dim b0 As Boolean
Dim v0, v1 As Variant
Dim a0(), a1() As Integer
Dim t0() As String
Dim w0() As Variant
Dim o0 As New Dictionary
Dim n0, n1 As Node
Dim m0 As New MemoryBlock(16)
)";

// A container must not contain itself: nobody could release it.
constexpr const char* kEnd = "\nn0 = Nil\nn1 = Nil\n";

class Writer {
  public:
    explicit Writer(Choices& choices) : choices_(choices) {}

    std::string program() {
        std::string text = kDeclarations;
        for (int i = 0; i < 30 && choices_.left(); ++i) text += statement(3);
        return text + kEnd;
    }

  private:
    std::string oneOf(std::initializer_list<const char*> words) { return choices_.among(words); }

    std::string integer(int depth) {
        if (depth == 0 || !choices_.left())
            return oneOf({"i0", "i1", "i2", "0", "1", "-1", "7", "2147483647", "-2147483647"});
        switch (choices_.below(12)) {
        case 0:
            return oneOf({"i0", "i1", "i2"});
        case 1:
            return "(" + integer(depth - 1) +
                   oneOf({" + ", " - ", " * ", " \\ ", " Mod ", " And ", " Or ", " Xor "}) +
                   integer(depth - 1) + ")";
        case 2:
            return oneOf({"Len", "LenB", "Asc", "AscB"}) + "(" + text(depth - 1) + ")";
        case 3:
            return "InStr(" + text(depth - 1) + ", " + text(depth - 1) + ")";
        case 4:
            return oneOf({"Ubound(a0)", "Ubound(t0)", "Ubound(w0)", "o0.Count", "Node.Count", "m0.Size"});
        case 5:
            return oneOf({"a0", "a1"}) + "(" + integer(depth - 1) + ")";
        case 6:
            return "Recur(" + oneOf({"3", "i0 Mod 10", "0"}) + ", s2)";
        case 7:
            return "m0." + oneOf({"Byte", "Long", "Short", "Int32Value"}) + "(" + integer(depth - 1) + ")";
        case 8:
            return oneOf({"v0", "v1"}) + ".IntegerValue";
        case 9:
            return "a0.IndexOf(" + integer(depth - 1) + ")";
        case 10:
            return "n0.Depth(" + oneOf({"5", "i0 Mod 20"}) + ")";
        default:
            return "Bitwise." + oneOf({"ShiftLeft", "ShiftRight", "BitXor"}) + "(" + integer(depth - 1) +
                   ", " + oneOf({"1", "31", "33", "i0 Mod 64"}) + ")";
        }
    }

    std::string real(int depth) {
        if (depth == 0 || !choices_.left()) return oneOf({"d0", "d1", "0.5", "-1e300", "1e-300", "3.25"});
        switch (choices_.below(6)) {
        case 0:
            return "(" + real(depth - 1) + oneOf({" + ", " - ", " * ", " / ", " ^ "}) + real(depth - 1) + ")";
        case 1:
            return oneOf({"Sqrt", "Sin", "Exp", "Log", "Abs", "Floor", "Ceil", "Round", "Tan", "Atan"}) +
                   "(" + real(depth - 1) + ")";
        case 2:
            return oneOf({"Val", "CDbl"}) + "(" + text(depth - 1) + ")";
        case 3:
            return oneOf({"Min", "Max", "Pow"}) + "(" + real(depth - 1) + ", " + real(depth - 1) + ")";
        case 4:
            return integer(depth - 1);
        default:
            return oneOf({"v0", "v1"}) + ".DoubleValue";
        }
    }

    std::string text(int depth) {
        if (depth == 0 || !choices_.left())
            return oneOf(
                {"s0", "s1", "s2", "\"\"", "\"abc\"", "\"12.5e3\"", "\"a,b,,c\"", "Chr(0)", "Chr(8364)"});
        switch (choices_.below(12)) {
        case 0:
            return "(" + text(depth - 1) + " + " + text(depth - 1) + ")";
        case 1:
            return oneOf({"Left", "Right", "LeftB", "RightB"}) + "(" + text(depth - 1) + ", " +
                   integer(depth - 1) + ")";
        case 2:
            return oneOf({"Mid", "MidB"}) + "(" + text(depth - 1) + ", " + integer(depth - 1) + ", " +
                   integer(depth - 1) + ")";
        case 3:
            return oneOf({"Uppercase", "Lowercase", "Titlecase", "Trim", "EncodeBase64", "DecodeBase64",
                          "EncodeHex", "DecodeHex"}) +
                   "(" + text(depth - 1) + ")";
        case 4:
            return oneOf({"Replace", "ReplaceAll"}) + "(" + text(depth - 1) + ", " + text(depth - 1) + ", " +
                   text(depth - 1) + ")";
        case 5:
            return "Str(" + real(depth - 1) + ")";
        case 6:
            return "Format(" + real(depth - 1) + ", " +
                   oneOf({"\"0.00\"", "\"#,##0.###\"", "\"-000\"", "\"0e+00\"", "s0"}) + ")";
        case 7:
            return "NthField(" + text(depth - 1) + ", \",\", " + integer(depth - 1) + ")";
        case 8:
            return "Join(t0, " + text(depth - 1) + ")";
        case 9:
            return "t0(" + integer(depth - 1) + ")";
        case 10:
            return oneOf({"v0", "v1"}) + ".StringValue";
        default:
            return oneOf({"Hex", "Oct", "Bin"}) + "(" + integer(depth - 1) + ")";
        }
    }

    std::string condition(int depth) {
        switch (choices_.below(5)) {
        case 0:
            return integer(depth - 1) + oneOf({" < ", " = ", " <> ", " >= "}) + integer(depth - 1);
        case 1:
            return text(depth - 1) + oneOf({" < ", " = ", " > "}) + text(depth - 1);
        case 2:
            return oneOf({"v0 Is Nil", "n0 Is n1", "o0.HasKey(v0)", "v0 IsA Node", "v0 = v1"});
        case 3:
            return real(depth - 1) + oneOf({" < ", " = "}) + real(depth - 1);
        default:
            return oneOf({"b0", "Not b0", "True"});
        }
    }

    // No container among them, so that none comes to contain itself.
    std::string variant(int depth) {
        switch (choices_.below(5)) {
        case 0:
            return integer(depth);
        case 1:
            return text(depth);
        case 2:
            return real(depth);
        case 3:
            return oneOf({"Nil", "b0", "New Node", "RGB(1, 2, 3)", "New Date"});
        default:
            return oneOf({"v0", "v1"});
        }
    }

    std::string block(int depth) {
        std::string result;
        for (std::size_t n = 1 + choices_.below(3); n > 0; --n) result += statement(depth - 1);
        return result;
    }

    std::string statement(int depth) {
        if (depth <= 0) return "i0 = i0 + 1\n";
        switch (choices_.below(20)) {
        case 0:
            return oneOf({"i0", "i1", "i2"}) + " = " + integer(3) + "\n";
        case 1:
            return oneOf({"d0", "d1"}) + " = " + real(3) + "\n";
        case 2:
            return oneOf({"s0", "s1", "s2"}) + " = Left(" + text(3) + ", 500)\n";
        case 3:
            return oneOf({"v0", "v1"}) + " = " + variant(2) + "\n";
        case 4:
            return "If " + condition(3) + " Then\n" + block(depth) + "Else\n" + block(depth) + "End If\n";
        case 5: {
            std::string counter = "k" + std::to_string(++names_);
            return "For " + counter +
                   " As Integer = " + oneOf({"0 To 3", "3 DownTo 0", "1 To 3 Step 2", "0 To -1"}) + "\n" +
                   block(depth) + oneOf({"", "If b0 Then Exit\n", "If b0 Then Continue\n"}) + "Next\n";
        }
        case 6:
            return "Try\n" + block(depth) + "Catch e" + std::to_string(++names_) + " As " +
                   oneOf({"RuntimeException", "OutOfBoundsException", "NilObjectException",
                          "TypeMismatchException"}) +
                   "\n" + block(depth) + "Finally\n" + block(depth) + "End Try\n";
        case 7:
            return "Select Case " + integer(2) + "\nCase " + integer(1) + ", 2 To 5\n" + block(depth) +
                   "Case Is > " + integer(1) + "\n" + block(depth) + "Else\n" + block(depth) + "End Select\n";
        case 8:
            return "a0." + oneOf({"Append ", "Remove "}) + integer(2) + "\n";
        case 9:
            return oneOf({"a0", "a1"}) + ".Insert " + integer(2) + ", " + integer(2) + "\n";
        case 10:
            return "Redim " + oneOf({"a0", "t0", "w0"}) + "(" +
                   oneOf({"-1", "-2", "0", "5", "1000", "i0 Mod 100"}) + ")\n";
        case 11:
            return "t0 = Split(" + text(2) + ", " + text(1) + ")\n";
        case 12:
            return "o0.Value(" + variant(1) + ") = " + variant(1) + "\n";
        case 13:
            return oneOf({"v0 = o0.Value(v1)\n", "o0.Remove v0\n", "o0.Clear\n", "v0 = o0.Key(i0)\n",
                          "v0 = o0.Lookup(v1, i0)\n"});
        case 14:
            return oneOf({"n0 = New Node\n", "n1 = New Node\nn1.Rest = n0\nn0 = n1\nn1 = Nil\n",
                          "n0 = n0.Rest\n", "n0 = Nil\n", "n0.Held = i0\n", "v0 = n0.Held\n"});
        case 15:
            return "w0.Append " + variant(1) + "\n";
        case 16:
            return oneOf({"a0.Sort\n", "t0.Sort\n", "a0.Shuffle\n", "a1 = a0\n",
                          "s0 = Join(t0, s1)\ns0 = Left(s0, 500)\n"});
        case 17:
            return "m0." + oneOf({"Byte", "Long", "Short"}) + "(" + integer(1) + ") = " + integer(1) + "\n";
        case 18:
            return "Raise New " +
                   oneOf({"RuntimeException", "OutOfBoundsException", "KeyNotFoundException"}) + "\n";
        default:
            return "b0 = " + condition(2) + "\n";
        }
    }

    Choices& choices_;
    int names_ = 0;
};

void fail(const std::string& what, const std::string& program) {
    std::fprintf(stderr, "%s\n%s\n", program.c_str(), what.c_str());
    std::abort();
}

// False when the program's text is mistaken.
bool run(const std::string& text, std::string& mistake) {
    std::unique_ptr<studio::Program> program;
    try {
        program = studio::compileProgram("fuzz.rbs", text);
    } catch (const studio::SourceErrors& mistakes) {
        mistake = std::to_string(mistakes.errors[0].position.line) + ": " + mistakes.errors[0].what();
        return false;
    }
    try {
        studio::inMemory([&] {
            program->begin({});
            studio::throwPending();
        });
    } catch (const studio::Raised&) {
    } catch (const studio::QuitRequest&) {
    }
    program->end();
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    studio::Host host; // of its own: a program's classes stay with their host
    Choices choices(bytes, size);
    std::string text = Writer(choices).program(), mistake;
    if (!run(text, mistake)) fail("the fuzzer's program has a mistake: " + mistake, text);
    host.takePendingException();
    studio::Report report = host.report();
    if (!report.sound()) fail(report.faults(), text);
    return 0;
}
