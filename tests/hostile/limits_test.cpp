// Programs that run out of something: memory, stack, a sensible length.
#include "studio_run.h"

using Limits = hostile::StudioRun;
using hostile::Outcome;

namespace {

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

constexpr const char* kLittleMemory = "ulimit -v 450000;";

} // namespace

#ifndef KAZ_SANITIZED // sanitizers reserve more address space than that

TEST_F(Limits, AStringWithoutMemoryRaises) {
    Outcome run = program("Dim s As String = \"0123456789\"\n"
                          "Try\n"
                          "  Do\n    s = s + s\n  Loop\n"
                          "Catch e As OutOfMemoryException\n"
                          "  Print \"caught: \" + e.Message\n"
                          "End Try\n",
                          kLittleMemory);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "caught: There is not enough memory.\n");
}

TEST_F(Limits, AnUnhandledLackOfMemoryIsAnExceptionWithItsPlace) {
    Outcome run = program("Dim s As String = \"0123456789\"\nDo\n  s = s + s\nLoop\n", kLittleMemory);
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.output, "Unhandled OutOfMemoryException: There is not enough memory.\n  at p.rbs:3\n");
}

// The second copy of the pixels is made below a plugin's frame, in a service.
TEST_F(Limits, APictureThatIsTooLargeToCopyRaises) {
    Outcome run = program("Dim p As New Picture(7000, 7000, 32)\n"
                          "Try\n"
                          "  p.Save(GetFolderItem(\"p.png\"), Picture.SaveAsPNG)\n"
                          "Catch e As OutOfMemoryException\n"
                          "  Print \"not saved\"\n"
                          "End Try\n"
                          "Try\n"
                          "  Dim c As CIImageKaz = CIImageKaz.imageWithPicture(p)\n"
                          "  If c Is Nil Then Print \"nothing\"\n"
                          "Catch e As OutOfMemoryException\n"
                          "  Print \"not handed over\"\n"
                          "End Try\n",
                          kLittleMemory);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "not saved\nnot handed over\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "p.png"));
}

#endif

TEST_F(Limits, ALongListIsReleased) {
    Outcome run = program("Class Node\n  Dim Rest As Node\nEnd Class\n"
                          "Dim list As Node\n"
                          "For i As Integer = 1 To 50000\n"
                          "  Dim n As New Node\n  n.Rest = list\n  list = n\n"
                          "Next\n"
                          "list = Nil\n"
                          "Print \"released\"\n");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "released\n");
}

TEST_F(Limits, NestedDictionariesAndArraysAreReleased) {
    Outcome run = program("Dim d As New Dictionary\n"
                          "For i As Integer = 1 To 20000\n"
                          "  Dim outer As New Dictionary\n  outer.Value(\"in\") = d\n  d = outer\n"
                          "Next\n"
                          "d = Nil\n"
                          "Dim v As Variant\n"
                          "For i As Integer = 1 To 20000\n"
                          "  Dim outer() As Variant\n  outer.Append v\n  v = outer\n"
                          "Next\n"
                          "v = Nil\n"
                          "Print \"released\"\n");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "released\n");
}

// Destructors run in order all the same.
TEST_F(Limits, EveryDestructorOfALongListRuns) {
    Outcome run = program("Dim count As Integer\n"
                          "Class Node\n  Dim Rest As Node\n"
                          "  Sub Destructor()\n    count = count + 1\n  End Sub\nEnd Class\n"
                          "Dim list As Node\n"
                          "For i As Integer = 1 To 3000\n"
                          "  Dim n As New Node\n  n.Rest = list\n  list = n\n"
                          "Next\n"
                          "list = Nil\n"
                          "Print Str(count)\n");
    EXPECT_EQ(run.output, "3000\n");
    EXPECT_EQ(run.code, 0);
}

TEST_F(Limits, ANestingTooDeepIsAMistakeWithItsPlace) {
    Outcome run = program("Dim x As Integer = " + repeated("(", 10000) + "1" + repeated(")", 10000) + "\n");
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.output, "p.rbs:1:519: error: this is nested too deeply\n");
    for (const char* prefix : {"Not ", "- ", "2 ^ "})
        EXPECT_EQ(program("Print " + repeated(prefix, 10000) + "1\n").code, 2) << prefix;
    run = program(repeated("If True Then\n", 10000) + repeated("End If\n", 10000));
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.output.find("this is nested too deeply"), std::string::npos);
}

TEST_F(Limits, AReasonableNestingRuns) {
    Outcome run = program("Dim x As Integer = " + repeated("(", 400) + "1" + repeated(" + 1)", 400) + "\n" +
                          repeated("If True Then\n", 400) + "Print Str(x)\n" + repeated("End If\n", 400));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "401\n");
}

TEST_F(Limits, ALongSumCompilesInLinearTime) {
    // Quadratic time took 7 s of 10,000 terms.
    Outcome run = program("Dim x As Integer = 1\nDim s As String = \"a\"\n"
                          "Print Str(x" +
                              repeated(" + x", 9999) +
                              ")\n"
                              "Print Str(Len(s" +
                              repeated(" + s", 9999) + "))\n",
                          "ulimit -t 3;");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "10000\n10000\n");
}

TEST_F(Limits, AnEndlessSumIsAMistake) {
    Outcome run = program("Dim x As Integer = 1\nPrint Str(x" + repeated(" + x", 100000) + ")\n");
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.output.find("this expression is too long"), std::string::npos);
}

TEST_F(Limits, PrintingToAFullDeviceFails) {
    Outcome run = program("Print \"lost\"\n", "", "> /dev/full");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("not all of the output could be written"), std::string::npos) << run.output;
    run = program("For i As Integer = 1 To 100000\n  Print \"lost\"\nNext\n", "", "> /dev/full");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("Unhandled IOException: cannot print: No space left on device\n  at p.rbs:2"),
              std::string::npos)
        << run.output;
}

// Ctrl-C gives up whatever runs, also a render that would take minutes.
TEST_F(Limits, AnInterruptEndsARenderWithinASecond) {
    Outcome run = program(
        "Dim wide As CIImageKaz = CIImageKaz.imageWithColor(NewCIColorKaz(1, 0, 0))\n"
        "Dim f As CIFilterKaz = CIFilterKaz.FilterWithName(\"CIZoomBlur\")\n"
        "f.SetDefaults\n"
        "f.ValueAsCIImage(\"inputImage\") = wide.imageByCroppingToRect(New CGRectKaz(0, 0, 3000, 2000))\n"
        "f.ValueAsNumber(\"inputAmount\") = 100\n"
        "Dim p As Picture = f.ValueAsCIImage(\"outputImage\").RenderPicture\n"
        "Print \"rendered\"\n",
        "start=$(date +%s%N); timeout -s INT --preserve-status 1",
        "; code=$?; echo $(( ($(date +%s%N) - start) / 1000000 )); exit $code");
    EXPECT_EQ(run.code, 130);
    EXPECT_LT(std::atoi(run.output.c_str()), 3000) << run.output; // 1 s of it is the render's own
}
