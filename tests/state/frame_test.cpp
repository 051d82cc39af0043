#include "frame/mdiform.h"

#include <gtest/gtest.h>

#include <tuple>

#include "state/keyfile.h"
#include "support/tempdir.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

using testing::TempDir;

const char* const kTools[] = {"ManageJobs", "Param", "NewAnalyse", "AreaForm", "MiseEnDonne"};

struct FrameFixture : ::testing::Test {
  TempDir dir;
  AppState s;
  ControlRegistry frameControls;
  ScriptedUi ui{frameControls};
  MDIForm1 frame{s, ui};

  bool Start(const std::string& ini) {
    dir.Write("correl.ini", ini);
    return frame.Load(dir.Path(), 1920, 1080);
  }
  bool AnyToolShown() const {
    for (const char* tool : kTools)
      if (frameControls.Visible(tool)) return true;
    return false;
  }
};

TEST_F(FrameFixture, StartReadsTheConfiguration) {
  ASSERT_TRUE(Start("[PATH]\n  LastDir=/data/tests\n  ExePath=tessiva-solver\n"));
  EXPECT_EQ(s.IniPath, dir.File("correl.ini"));
  EXPECT_EQ(s.LastDir, "/data/tests");
  EXPECT_EQ(s.ExePath, "tessiva-solver");
  EXPECT_EQ(frameControls.Text("Label1"), std::string(" ") + kStartMessage);
  const ControlState& bounds = frameControls.Get("MDIForm1");
  EXPECT_EQ(std::tie(bounds.left, bounds.top, bounds.width, bounds.height), std::make_tuple(560, 240, 800, 600));
  EXPECT_TRUE(frameControls.Visible("Pub"));
  EXPECT_FALSE(AnyToolShown());
}

// Forming-limit mode is on unless its key says 0; LastDir falls back to the
// start directory only when the key is missing or reads "not found".
TEST_F(FrameFixture, ClfModeAndLastDirDefaults) {
  const std::tuple<const char*, bool, bool> cases[] = {
      {"", true, true},
      {"[CLFSEC]\nCLF=0\n", false, true},
      {"LastDir=not found\n[CLFSEC]\nCLF=-1\n", true, true},
      {"LastDir=/no/such/dir\n[CLFSEC]\nCLF=1\n", true, false},
  };
  for (auto [ini, clf, fallsBack] : cases) {
    ASSERT_TRUE(Start(std::string("[PATH]\nExePath=s\n") + ini));
    EXPECT_EQ(s.ClfMode, clf) << ini;
    EXPECT_EQ(s.LastDir, fallsBack ? dir.Path() : "/no/such/dir") << ini;
  }
}

TEST_F(FrameFixture, StartEndsWithoutExePath) {
  for (const char* ini : {"[PATH]\nLastDir=/x\n", ""}) {
    ui.log.clear();
    EXPECT_FALSE(Start(ini));
    EXPECT_EQ(ui.Messages(), std::vector<std::string>{"Please, verify ExePath variable in 'correl.ini' file"});
    EXPECT_EQ(ui.endStatus, 1);
  }
  ui.log.clear();
  EXPECT_FALSE(frame.Load(dir.File("missing-dir"), 1920, 1080)) << "a start without correl.ini ends too";
}

// A cancelled dialog leaves the frame empty and correl.ini as it was; a chosen
// result opens the analysis and its directory is remembered.
TEST_F(FrameFixture, AnalyseOpensTheChosenResultAndRemembersItsDirectory) {
  ASSERT_TRUE(Start("[PATH]\nExePath=s\nLastDir=/data\n"));
  const std::string iniBefore = dir.Read("correl.ini");
  frameControls.SetVisible("ManageJobs", true);
  frame.OnCommand1(MDIForm1::kAnalyse);
  ASSERT_EQ(ui.dialogRequests.size(), 1u);
  const FileDialogRequest& r = ui.dialogRequests[0];
  EXPECT_EQ(std::tie(r.initialDir, r.defaultExt, r.filter, r.title),
            std::make_tuple("/data", "res", "Data|*.res|Sequence|*.seq", "Reading result file or sequence file"));
  EXPECT_FALSE(s.AnalyseOpen);
  EXPECT_FALSE(AnyToolShown());
  EXPECT_EQ(s.LastDir, "/data");
  EXPECT_EQ(dir.Read("correl.ini"), iniBefore);

  ui.dialogAnswers.push_back({"/tests/run 1/a-b.res", "a-b.res"});
  frame.OnCommand1(MDIForm1::kAnalyse);
  EXPECT_TRUE(s.AnalyseOpen);
  EXPECT_TRUE(frameControls.Visible("NewAnalyse"));
  EXPECT_EQ(s.FileName, "/tests/run 1/a-b.res");
  EXPECT_EQ(s.LastDir, "/tests/run 1");
  EXPECT_EQ(ReadKeyText("PATH", "LastDir", s.IniPath), "/tests/run 1");
}

TEST_F(FrameFixture, CommandsUnloadEveryToolInOrderThenShowTheirOwn) {
  ASSERT_TRUE(Start("[PATH]\nExePath=s\n"));
  std::vector<std::string> changes;
  frameControls.Subscribe([&](const std::string& name, const ControlState& c) {
    changes.push_back(name + (c.visible ? "+" : "-"));
  });
  frame.OnCommand1(MDIForm1::kInputData);
  EXPECT_EQ(changes, (std::vector<std::string>{"ManageJobs-", "Param-", "NewAnalyse-", "AreaForm-", "MiseEnDonne-",
                                               "MiseEnDonne+"}));
  frame.OnCommand1(MDIForm1::kManageJobs);
  EXPECT_TRUE(frameControls.Visible("ManageJobs"));
  EXPECT_FALSE(frameControls.Visible("MiseEnDonne"));
}

TEST_F(FrameFixture, OpenDataInputIsKeptUnlessTheUserConfirms) {
  ASSERT_TRUE(Start("[PATH]\nExePath=s\n"));
  frameControls.SetVisible("AreaForm", true);
  s.AreaOpen = true;

  ui.messageAnswers.push_back(MsgAnswer::No);
  frame.OnCommand1(MDIForm1::kManageJobs);
  EXPECT_EQ(ui.log.back().text, "Do you really want to erase the previous data input ?");
  EXPECT_EQ(ui.log.back().title, "WARNING");
  EXPECT_TRUE(s.AreaOpen);
  EXPECT_TRUE(frameControls.Visible("AreaForm"));
  EXPECT_FALSE(frameControls.Visible("ManageJobs"));

  ui.messageAnswers.push_back(MsgAnswer::Yes);
  frame.OnCommand1(MDIForm1::kManageJobs);
  EXPECT_FALSE(s.AreaOpen);
  EXPECT_FALSE(frameControls.Visible("AreaForm"));
  EXPECT_TRUE(frameControls.Visible("ManageJobs"));
}

TEST_F(FrameFixture, ResizeKeepsTheMinimumSizeAndFillsTheClientWithTheOpenTool) {
  ASSERT_TRUE(Start("[PATH]\nExePath=s\n"));
  frameControls.SetBounds("Pub", 0, 0, 300, 200);
  frame.OnResize(500, 400, 490, 340);
  EXPECT_EQ(frameControls.Get("MDIForm1").width, 640);
  EXPECT_EQ(frameControls.Get("MDIForm1").height, 480);
  EXPECT_EQ(frameControls.Get("Pub").left, 95);
  EXPECT_EQ(frameControls.Get("Pub").top, 70);

  s.AnalyseOpen = true;
  frame.OnResize(1000, 700, 990, 640);
  const ControlState& tool = frameControls.Get("NewAnalyse");
  EXPECT_EQ(tool.width, 990);
  EXPECT_EQ(tool.height, 640);
}

TEST_F(FrameFixture, FormingLimitCurveWidensTheDiagramBounds) {
  ASSERT_TRUE(Start("[PATH]\nExePath=s\n[CLFSEC]\nNUMBER=3\nX1=-40\nY1=60\nX2=0\nY2=30\nX3=20\nY3=-20\n"));
  ReadFormingLimitCurve(s);
  EXPECT_EQ(std::tie(s.ClfNumber, s.ClfX[1], s.ClfY[3]), std::make_tuple(3, -40, -20));
  EXPECT_EQ(std::tie(s.ClfXMin, s.ClfXMax, s.ClfYMin, s.ClfYMax), std::make_tuple(-40, 20, -20, 60));
}

}  // namespace
}  // namespace tessiva
