// Drawing near the ends of the numbers: it costs by what is visible, and nothing overflows.
#include "studio_run.h"

using Drawing = hostile::StudioRun;
using hostile::Outcome;

TEST_F(Drawing, AnyNumbersEndAtOnce) {
    Outcome run = program(R"(
Dim p As New Picture(120, 80)
Dim stamp As New Picture(7, 5)
Dim g As Graphics = p.Graphics
Dim ends() As Integer = Array(-2147483647 - 1, -1000000000, -1, 3, 2147483647)
g.ForeColor = RGB(200, 100, 50)
For Each pen As Integer In Array(1, 3, 2147483647)
  g.PenWidth = pen
  g.PenHeight = pen
  For Each x As Integer In ends
    For Each y As Integer In ends
      For Each w As Integer In Array(-2147483647 - 1, -1, 5, 2147483647)
        For Each h As Integer In Array(-1, 9, 2147483647)
          If pen < 4 Or (x = 3 And y = 3) Then
            g.DrawLine(x, y, w, h)
            g.DrawRect(x, y, w, h)
            If w < 6 Or x < 0 Then g.DrawOval(x, y, w, h)
          End If
          If pen = 1 And (x + y) Mod 2 = 0 Then
            g.FillRect(x, y, w, h)
            g.ClearRect(x, y, w, h)
            g.FillOval(x, y, w, h)
            If h < 10 Then g.DrawPicture(stamp, x, y, w, h, y, x, h, w)
            If w < 6 Then g.DrawPicture(stamp, x, y, w, h, 0, 0, w, h)
          End If
        Next
      Next
    Next
  Next
Next
Print "drawn"
)",
                          "ulimit -t 10;");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "drawn\n");
}

// The visible part is that of the whole: an oval of 2^31 pixels fills what lies inside of it, a line crosses.
TEST_F(Drawing, WhatIsVisibleOfAnEnormousShapeIsDrawn) {
    Outcome run = program(R"(
Dim p As New Picture(100, 100, 32)
Dim g As Graphics = p.Graphics
Function Shown(p As Picture, x As Integer, y As Integer) As String
  Dim c As Color = p.RGBSurface.Pixel(x, y)
  If c = RGB(0, 0, 0) Then Return "#"
  Return "."
End Function
g.FillOval(-1000000000, -1000000000, 2000000000, 2000000000)
Print Shown(p, 0, 0) + Shown(p, 99, 99)
g.ClearRect(-2000000000, -2000000000, 2147483647, 2147483647)
Print Shown(p, 0, 0) + Shown(p, 99, 99)
g.ClearRect(0, 0, 100, 100)
g.DrawLine(-1000000000, -1000000000, 1000000000, 1000000000)
Print Shown(p, 50, 50) + Shown(p, 50, 52) + Shown(p, 99, 99)
g.ClearRect(0, 0, 100, 100)
g.PenWidth = 5
g.PenHeight = 5
g.DrawLine(1000000000, -1000000000, -1000000000, 1000000000)
Print Shown(p, 2, 1) + Shown(p, 50, 50) + Shown(p, 3, 1) + Shown(p, 4, 0)
)",
                          "ulimit -t 5;");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "##\n..\n#.#\n#.##\n");
}
