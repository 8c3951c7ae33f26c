// Dictionaries and arrays as options, however deep, and those that contain themselves.
#include "studio_run.h"

using Cycles = hostile::StudioRun;
using hostile::Outcome;

namespace {

const std::string kHelpers = R"(
Sub Adjust(options As Dictionary)
  Try
    Dim image As CIImageKaz = CIImageKaz.imageWithPicture(New Picture(8, 8, 32))
    Dim filters() As CIFilterKaz = image.autoAdjustmentFiltersWithOptions(options)
    Print "adjusted"
  Catch e As RuntimeException
    Print e.Message
  End Try
End Sub
Sub Detect(options As Dictionary)
  Try
    Dim detector As CIDetectorKaz = New CIDetectorKaz(CIDetectorKaz.CIDetectorTypeFace, Nil, options)
    Print "detects"
  Catch e As RuntimeException
    Print e.Message
  End Try
End Sub
Function Chain(levels As Integer, arrays As Boolean) As Dictionary
  Dim inner As Variant = "the innermost"
  For i As Integer = 1 To levels
    If arrays Then
      Dim outer() As Variant
      outer.Append inner
      inner = outer
    Else
      Dim outer As New Dictionary
      outer.Value("in") = inner
      inner = outer
    End If
  Next
  Dim result As New Dictionary
  result.Value("chain") = inner
  Return result
End Function
)";

#ifdef KAZ_SANITIZED
constexpr const char* kStack = "ulimit -s 60000;"; // frames are larger
#else
constexpr const char* kStack = "ulimit -s 8192;";
#endif

} // namespace

TEST_F(Cycles, TenThousandLevelsWork) {
    Outcome run = program(kHelpers + "Adjust(Chain(10000, False))\nAdjust(Chain(10000, True))\n"
                                     "Detect(Chain(10000, False))\nDetect(Chain(10000, True))\n",
                          kStack);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "adjusted\nadjusted\ndetects\ndetects\n");
}

TEST_F(Cycles, MoreThanTheStackHoldsRaises) {
    Outcome run = program(kHelpers + "Adjust(Chain(100000, False))\nAdjust(Chain(100000, True))\n"
                                     "Adjust(Chain(10, True))\n",
                          kStack);
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.output.find("dictionaries or arrays are nested too deeply"), std::string::npos)
        << run.output;
    EXPECT_EQ(run.output.substr(run.output.rfind("adjusted")), "adjusted\n"); // nothing is left over
}

// Of any length, also behind a chain that leads into it.
TEST_F(Cycles, OneThatContainsItselfRaises) {
    Outcome run = program(kHelpers + R"(
For Each length As Integer In Array(1, 2, 3, 7, 100)
  Dim first As New Dictionary
  Dim inner As Dictionary = first
  For i As Integer = 2 To length
    Dim outer As New Dictionary
    outer.Value("in") = inner
    inner = outer
  Next
  first.Value("in") = inner
  Dim chain As Dictionary = Chain(5, False)
  chain.Value("cycle") = first
  Adjust(first)
  Adjust(chain)
  Detect(chain)
  first.Clear
Next
Dim a() As Variant
a.Append a
Dim d As New Dictionary
d.Value("array") = a
Adjust(d)
a.Remove(0)
Adjust(d)
)",
                          kStack);
    EXPECT_EQ(run.code, 0) << run.output;
    std::size_t raised = 0;
    for (std::size_t at = 0;
         (at = run.output.find("\na dictionary or array contains itself\n", at)) != std::string::npos; ++at)
        ++raised;
    EXPECT_EQ(raised, 16u) << run.output;
    EXPECT_EQ(run.output.substr(run.output.rfind('\n', run.output.size() - 2) + 1), "adjusted\n");
}
