#include <gtest/gtest.h>

#include <tuple>

#include "ui/controls.h"
#include "ui/recordingcanvas.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

TEST(ControlRegistry, ObserversSeeEveryChangeAndMayLeaveWhileTold) {
  ControlRegistry controls;
  std::vector<std::string> seen;
  int id = 0;
  id = controls.Subscribe([&](const std::string& name, const ControlState& c) {
    seen.push_back(name + "=" + c.text);
    controls.Unsubscribe(id);
  });
  controls.SetText("Label1", " hello");
  controls.SetText("Label1", " again");
  EXPECT_EQ(seen, std::vector<std::string>{"Label1= hello"});
  EXPECT_EQ(controls.Text("Label1"), " again");
  EXPECT_TRUE(controls.Get("Never.Written").enabled);
}

TEST(ScriptedUi, AnswersFromTheScriptThenCancels) {
  ControlRegistry frame;
  ScriptedUi ui(frame);
  ui.messageAnswers = {MsgAnswer::Yes};
  EXPECT_EQ(ui.MessageBox("a", "t", MsgButtons::YesNo, MsgIcon::Question), MsgAnswer::Yes);
  EXPECT_EQ(ui.MessageBox("b", "t", MsgButtons::YesNo, MsgIcon::Question), MsgAnswer::No);
  EXPECT_EQ(ui.MessageBox("c", "t", MsgButtons::YesNoCancel, MsgIcon::Question), MsgAnswer::Cancel);
  EXPECT_FALSE(ui.InputBox("p", "t", "d").has_value());
  EXPECT_TRUE(ui.OpenFileDialog({}).FileName.empty());
  EXPECT_EQ(ui.Messages(), (std::vector<std::string>{"a", "b", "c"}));
  ui.StatusLine("working");
  ui.StatusPos("(1, 2)");
  EXPECT_EQ(frame.Text("Label1"), " working");
  EXPECT_EQ(frame.Text("Label2"), " (1, 2)");
}

TEST(Canvas, UserScaleMapsToScreenPixelsBothWays) {
  RecordingCanvas canvas(400, 200);
  canvas.SetScale(-10, -20, 100, 50);  // 4 screen pixels per unit both ways
  struct Case {
    double user, pixel;
  };
  for (const Case& c : {Case{-10, 0}, Case{0, 40}, Case{90, 400}}) {
    EXPECT_DOUBLE_EQ(canvas.ToPixelX(c.user), c.pixel);
    EXPECT_DOUBLE_EQ(canvas.ToUserX(c.pixel), c.user);
  }
  EXPECT_EQ(std::tuple(canvas.ToPixelY(-20), canvas.ToPixelY(30), canvas.ToUserY(100)), std::tuple(0.0, 200.0, 5.0));
}

TEST(Canvas, ClassicColourTable) {
  EXPECT_EQ(std::tuple(QBColor(0), QBColor(12), QBColor(14), QBColor(15)),
            std::tuple(0x000000u, 0xFF0000u, 0xFFFF00u, 0xFFFFFFu));
}

}  // namespace
}  // namespace tessiva
