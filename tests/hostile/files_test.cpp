// Files that are none, that are enormous, or that change; and saves that fail.
#include "studio_run.h"

using Files = hostile::StudioRun;
using hostile::Outcome;

namespace {

// Everything that reads: a picture, an image of each class, text. Each line prints what came of it.
constexpr const char* kReadEverything = R"(
Dim f As FolderItem = GetFolderItem(Args(0))
Try
  Dim p As Picture = Picture.Open(f)
  Print "a picture"
Catch e As IOException
  Print "no picture"
End Try
Try
  Dim t As TextInputStream = TextInputStream.Open(f)
  Print "text of " + Str(LenB(t.ReadAll))
Catch e As IOException
  Print e.Message
End Try
If CIImageKaz.imageWithContentsOfFile(f) Is Nil Then Print "no image"
If CIImageKaz.imageWithContentsOfPath(f.NativePath, Nil) Is Nil Then Print "no image of the path"
Dim n As New NSImageKaz(f)
If n.Handle = 0 Then Print "no NSImage"
)";

constexpr const char* kNothing = "no image\nno image of the path\nno NSImage\n";

} // namespace

TEST_F(Files, APipeOrADeviceIsRefusedAtOnce) {
    shell("mkfifo pipe; ln -s loop loop; mkdir folder");
    for (auto [name, reason] : {std::pair("pipe", "it is not a regular file"),
                                {"/dev/zero", "it is not a regular file"},
                                {"folder", "it is a folder"},
                                {"loop", "Too many levels of symbolic links"}}) {
        Outcome run = program(kReadEverything, "ulimit -t 5; ulimit -v 600000;", name);
        EXPECT_EQ(run.code, 0) << name;
        EXPECT_NE(run.output.find(reason), std::string::npos) << run.output;
        EXPECT_NE(run.output.find(kNothing), std::string::npos) << run.output;
    }
}

TEST_F(Files, ASparseFileOfFiveGigabytesIsRefusedAtOnce) {
    shell("truncate -s 5G sparse");
    Outcome run = program(kReadEverything, "ulimit -t 5; ulimit -v 600000;", "sparse");
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.output.find("no picture\ncannot read "), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("it is too large\n" + std::string(kNothing)), std::string::npos) << run.output;
}

TEST_F(Files, APipeAsATargetIsRefusedAtOnce) {
    shell("mkfifo pipe");
    Outcome run = program("Dim f As FolderItem = GetFolderItem(\"pipe\")\n"
                          "Try\n  Dim t As TextOutputStream = TextOutputStream.Create(f)\n"
                          "Catch e As IOException\n  Print \"refused\"\nEnd Try\n"
                          "Try\n  Dim p As New Picture(2, 2)\n  p.Save(f, Picture.SaveAsPNG)\n"
                          "Catch e As IOException\n  Print \"refused\"\nEnd Try\n",
                          "ulimit -t 5;");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "refused\nrefused\n");
}

TEST_F(Files, AFailedSaveLeavesTheOldFile) {
    for (const char* type : {"SaveAsPNG", "SaveAsJPEG"}) {
        shell("echo -n precious > old");
        Outcome run = program("Dim p As New Picture(500, 500)\n"
                              "For i As Integer = 0 To 499\n"
                              "  p.Graphics.ForeColor = RGB(i Mod 256, i * 7 Mod 256, i * 31 Mod 256)\n"
                              "  p.Graphics.FillRect(i, i, 3, 400)\nNext\n"
                              "Try\n  p.Save(GetFolderItem(\"old\"), Picture." +
                                  std::string(type) +
                                  ")\n"
                                  "Catch e As IOException\n  Print \"failed\"\nEnd Try\n",
                              "trap '' XFSZ; ulimit -f 1;"); // as a disk that is full after 1 KB
        EXPECT_EQ(run.code, 0);
        EXPECT_EQ(run.output, "failed\n");
        EXPECT_EQ(shell("cat old; ls -A").output, "preciousold\np.rbs\n");
    }
}

TEST_F(Files, TextThatDoesNotFitOnTheDiskIsToldOnClose) {
    Outcome run =
        program("Dim t As TextOutputStream = TextOutputStream.Create(GetFolderItem(\"/dev/full\"))\n"
                "t.WriteLine \"lost\"\nt.Close\n");
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("IOException: cannot write: No space left on device"), std::string::npos)
        << run.output;
}

// A file that is read is read whole, so what happens to it afterwards changes nothing.
TEST_F(Files, AnImageKeepsItsPixelsWhenItsFileChanges) {
    Outcome run = program("Dim p As New Picture(64, 64, 32)\n"
                          "p.Graphics.ForeColor = RGB(10, 200, 30)\np.Graphics.FillRect(0, 0, 64, 64)\n"
                          "For Each how As String In Array(\"shrinks\", \"goes\", \"replaced\")\n"
                          "  Dim f As FolderItem = GetFolderItem(how)\n"
                          "  p.Save(f, Picture.SaveAsPNG)\n"
                          "  Dim c As CIImageKaz = CIImageKaz.imageWithContentsOfFile(f)\n"
                          "  Dim n As New NSImageKaz(f)\n"
                          "  Select Case how\n"
                          "  Case \"goes\"\n    f.Delete\n"
                          "  Case \"replaced\"\n    Dim q As New Picture(9, 9, 32)\n"
                          "    q.Save(f, Picture.SaveAsJPEG)\n"
                          "  Else\n    Dim t As TextOutputStream = TextOutputStream.Create(f)\n"
                          "  End Select\n"
                          "  Dim drawn As Picture = c.RenderPicture\n"
                          "  Dim shown As Color = drawn.RGBSurface.Pixel(5, 5)\n"
                          "  Print Str(shown.Green)\n"
                          "Next\n");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "200\n200\n200\n");
}

TEST_F(Files, AFolderThatTakesNoFilesIsTold) {
    Outcome run = program("Dim f As FolderItem = GetFolderItem(\"/proc/kaz.png\")\n"
                          "Try\n  Dim t As TextOutputStream = TextOutputStream.Create(f)\n"
                          "Catch e As IOException\n  Print e.Message\nEnd Try\n"
                          "Try\n  Dim p As New Picture(2, 2)\n  p.Save(f, Picture.SaveAsPNG)\n"
                          "Catch e As IOException\n  Print e.Message\nEnd Try\n");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2) << run.output;
    EXPECT_EQ(run.output.find("cannot write"), 0u) << run.output;
}

// Names in UTF-8 open. Cocoa has no text for any other, which is no image, or raises as a path.
TEST_F(Files, ANameMayHoldAnyByte) {
    program("Dim p As New Picture(3, 3, 32)\np.Save(GetFolderItem(\"a.png\"), Picture.SaveAsPNG)\n");
    std::filesystem::create_directory(folder / "names");
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/')
            std::filesystem::copy_file(folder / "a.png",
                                       folder / "names" / (std::string("x") + char(byte) + "y.png"));
    Outcome run = program(R"(
Dim all As FolderItem = GetFolderItem("names")
Dim images, pictures As Integer
For i As Integer = 1 To all.Count
  Dim f As FolderItem = all.Item(i)
  If Not (CIImageKaz.imageWithContentsOfFile(f) Is Nil) Then images = images + 1
  Try
    If Not (CIImageKaz.imageWithContentsOfPath(f.NativePath, Nil) Is Nil) Then images = images + 1
  Catch e As RuntimeException
    Print e.Message
  End Try
  Try
    Dim p As Picture = Picture.Open(f)
    If p.Width = 3 Then pictures = pictures + 1
  Catch e As IOException
  End Try
Next
Print Str(all.Count) + " files"
If images >= 2 * 126 And pictures >= 126 Then Print "ASCII opens" Else Print Str(images) + " " + Str(pictures)
)");
    EXPECT_EQ(run.code, 0);
    EXPECT_NE(run.output.find("254 files\nASCII opens\n"), std::string::npos) << run.output;
}

// A chunk of a few bytes can claim a gigabyte.
TEST_F(Files, APNGFileOfFiftySevenBytesCostsNoMemory) {
    const char header[] = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01\x08\x02\0\0\0\x90\x77\x53\xde"
                          "\x3f\xff\xff\xf0tEXtname\0\0abcdefghij";
    std::ofstream(folder / "small.png", std::ios::binary).write(header, sizeof header - 1);
    Outcome run = program(R"(
Function Peak() As Double
  Dim text As String = TextInputStream.Open(GetFolderItem("/proc/self/status")).ReadAll
  Return Val(Trim(Mid(text, InStr(text, "VmPeak:") + 7)))
End Function
Dim before As Double = Peak
If CIImageKaz.imageWithContentsOfFile(GetFolderItem("small.png")) Is Nil Then Print "no image"
If Peak - before > 100000 Then Print "cost " + Str(Peak - before) + " KB"
)");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "no image\n");
}
