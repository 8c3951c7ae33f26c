// Running programs: they leave nothing behind, and exceptions know where they were raised.
#include "framework/exceptions.h"
#include "language/program.h"
#include "runtime/exceptions.h"
#include "runtime/objects.h"
#include "test_plugin.h"

#include <studio/host.h>

#include <gtest/gtest.h>

using namespace studio;

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
