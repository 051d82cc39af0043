#include "batch/managejobs.h"

#include <gtest/gtest.h>

#include "state/files.h"
#include "state/keyfile.h"
#include "support/tempdir.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

using testing::TempDir;

// Records each started program with its arguments kept apart; can refuse to start.
struct ProcessUi : ScriptedUi {
  using ScriptedUi::ScriptedUi;
  bool startFails = false;
  std::vector<std::pair<std::string, std::vector<std::string>>> started;
  bool StartProcess(const std::string& program, const std::vector<std::string>& arguments) override {
    started.emplace_back(program, arguments);
    return !startFails;
  }
};

struct JobsFixture : ::testing::Test {
  TempDir dir;
  AppState s;
  ControlRegistry frameControls;
  ProcessUi ui{frameControls};
  ManageJobs jobs{s, ui};

  void SetUp() override {
    s.StartDir = "/opt/tessiva";
    s.ExePath = "tessiva-solver";
    s.LastDir = "/elsewhere";
    s.IniPath = dir.Write("correl.ini", "[PATH]\nLastDir=/elsewhere\n");
    jobs.Load();
  }
  // The dialog answers with names of `dir`; one name uses the single-name form.
  void Pick(const std::vector<std::string>& names, const std::string& clicked = "Root") {
    if (names.size() == 1) {
      ui.dialogAnswers.push_back({JoinPath(dir.Path(), names[0]), names[0]});
    } else {
      std::string joined = dir.Path();
      for (const std::string& n : names) joined += std::string(1, '\0') + n;
      ui.dialogAnswers.push_back({joined, ""});
    }
    jobs.OnNodeClick(clicked);
  }
  // "key|text|tag|image|parent" of each node from `from` on (4: the jobs).
  std::vector<std::string> Rows(size_t from = 4) const {
    std::vector<std::string> out;
    for (size_t i = from; i < jobs.Nodes().size(); ++i) {
      const JobNode& n = jobs.Nodes()[i];
      out.push_back(n.key + "|" + n.text + "|" + n.tag + "|" + std::to_string(n.image) + "|" + n.parent);
    }
    return out;
  }
  std::vector<std::string> Column(std::string JobNode::*field) const {
    std::vector<std::string> out;
    for (size_t i = 4; i < jobs.Nodes().size(); ++i) out.push_back(jobs.Nodes()[i].*field);
    return out;
  }
  std::vector<std::string> Tags() const { return Column(&JobNode::tag); }
  bool StartOffered() const {
    const ControlRegistry& c = jobs.Controls();
    return c.Enabled("Command1") && c.Checked("Timer1") && c.Visible("FlashInfo");
  }
  void Drag(const std::string& from, const std::string& onto) {
    jobs.OnTreeMouseDown(1, from);
    jobs.OnTreeMouseMove(1);
    jobs.OnDragOver(onto);
    jobs.OnDragDrop();
  }
};

TEST_F(JobsFixture, LoadMakesTheFixedNodesWithStartOff) {
  EXPECT_EQ(Rows(0), (std::vector<std::string>{"Computer|My computer||6|", "Root|Queue of jobs||1|Computer",
                                               "Seq|Data or Sequence File Name||2|Root", "Trash|Trash for file||3|Root"}));
  EXPECT_FALSE(jobs.Controls().Enabled("Command1") || jobs.Controls().Checked("Timer1") ||
               jobs.Controls().Visible("FlashInfo"));
  for (const char* inert : {"Computer", "Trash"}) jobs.OnNodeClick(inert);
  EXPECT_TRUE(ui.dialogRequests.empty());
}

TEST_F(JobsFixture, AddedFilesShowWhetherTheirResultsExist) {
  dir.Write("b.res", "");
  dir.Write("t2.res", "");
  dir.Write("test.seq", "  t1.don \r\nt2.don\n");
  const std::string d = JoinPath(dir.Path(), "");
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"a.don", {"FicSeq0001|" + d + "a.don|a.don|4|Seq"}},
      {"b.don", {"FicSeq0001|" + d + "b.don|b.don|7|Seq"}},
      {"test.seq",
       {"FicSeq0001|" + d + "test.seq|test.seq|5|Seq", "FicSeq0001-0002|" + d + "t1.don|t1.don|4|FicSeq0001",
        "FicSeq0001-0003|" + d + "t2.don|t2.don|7|FicSeq0001"}},
  };
  for (const auto& [name, rows] : cases) {
    jobs.Load();
    Pick({name});
    EXPECT_EQ(Rows(), rows) << name;
    EXPECT_TRUE(StartOffered()) << name;
  }
  EXPECT_EQ(ReadKeyText("PATH", "LastDir", s.IniPath), dir.Path());
  EXPECT_EQ(ui.dialogRequests.front().initialDir, "/elsewhere");
  EXPECT_EQ(ui.dialogRequests.back().initialDir, dir.Path());
  EXPECT_EQ(ui.dialogRequests.back().filter, "Data|*.don|Sequence|*.seq");
}

TEST_F(JobsFixture, SeveralNamesTakeTheLastFirstAndTheFirstLast) {
  const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
      {{"a.don", "b.don"}, {"b.don", "a.don"}},
      {{"a.don", "b.don", "c.seq"}, {"c.seq", "b.don", "a.don"}},
      {{"a.don", "b.don", "c.don", "d.don"}, {"d.don", "b.don", "c.don", "a.don"}},
  };
  for (const auto& [picked, queued] : cases) {
    jobs.Load();
    dir.Write("c.seq", "");
    Pick(picked);
    EXPECT_EQ(Tags(), queued);
    EXPECT_EQ(s.NbSeq, static_cast<int32_t>(picked.size()));
  }
  EXPECT_EQ(frameControls.Text("Label1"), std::string(" ") + kSortHint);
  EXPECT_EQ(ReadKeyText("PATH", "LastDir", s.IniPath), dir.Path());
}

TEST_F(JobsFixture, CancelledDialogLeavesTheQueueButTurnsStartOff) {
  Pick({"a.don"});
  ASSERT_TRUE(StartOffered());
  jobs.OnNodeClick("Seq");  // no answer scripted: cancelled
  EXPECT_EQ(Tags(), std::vector<std::string>{"a.don"});
  EXPECT_EQ(s.LastDir, dir.Path());
  EXPECT_FALSE(jobs.Controls().Enabled("Command1") || jobs.Controls().Checked("Timer1") ||
               jobs.Controls().Visible("FlashInfo"));
  jobs.OnNodeClick("FicSeq0001");
  EXPECT_TRUE(StartOffered());
}

TEST_F(JobsFixture, UnreadableSequenceIsToldNotThrown) {
  Pick({"missing.seq"});
  EXPECT_TRUE(Tags().empty());
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_NE(ui.Messages()[0].find(JoinPath(dir.Path(), "missing.seq")), std::string::npos);
}

TEST_F(JobsFixture, DragSwapsJobsAndTheTrashRemovesThem) {
  dir.Write("s.seq", "a.don\nm2.don\n");  // its first member has the text of the first job
  const std::vector<std::string> unchanged = {"a.don", "b.don", "s.seq", "a.don", "m2.don"};
  const std::tuple<const char*, const char*, std::vector<std::string>> cases[] = {
      {"FicSeq0001", "FicSeq0002", {"b.don", "a.don", "s.seq", "a.don", "m2.don"}},
      {"FicSeq0003-0005", "FicSeq0001", {"m2.don", "b.don", "s.seq", "a.don", "a.don"}},
      {"FicSeq0003", "Trash", {"a.don", "b.don"}},
      {"FicSeq0003-0004", "Trash", {"a.don", "b.don", "s.seq", "m2.don"}},
      {"FicSeq0003-0004", "FicSeq0001", unchanged},
      {"FicSeq0001", "Root", unchanged},
      {"FicSeq0001", "", unchanged},
      {"Seq", "Trash", unchanged},
      {"Root", "FicSeq0001", unchanged},
      {"Trash", "FicSeq0001", unchanged},
  };
  for (const auto& [from, onto, tags] : cases) {
    jobs.Load();
    Pick({"a.don"});
    Pick({"b.don"});
    Pick({"s.seq"});
    const std::vector<std::string> keys = Column(&JobNode::key), parents = Column(&JobNode::parent);
    Drag(from, onto);
    EXPECT_EQ(Tags(), tags) << from << " onto " << onto;
    if (tags.size() == keys.size()) {  // a swap exchanges what nodes show, not their places
      EXPECT_EQ(Column(&JobNode::key), keys);
      EXPECT_EQ(Column(&JobNode::parent), parents);
    }
    EXPECT_EQ(jobs.DropHighlight(), "");
  }
}

TEST_F(JobsFixture, RightButtonOpensTheNodeFileInTheEditor) {
  Pick({"a.don"});
  jobs.OnTreeMouseUp(1, "FicSeq0001");
  jobs.OnTreeMouseUp(2, "FicSeq0001");
  jobs.OnTreeMouseUp(2, "");
#ifdef _WIN32
  ASSERT_EQ(ui.started.size(), 2u);
  EXPECT_EQ(ui.started[1], (std::pair<std::string, std::vector<std::string>>{"notepad.exe", {}}));
#else
  ASSERT_EQ(ui.started.size(), 1u) << "no file, nothing to open";
#endif
  EXPECT_EQ(ui.started[0].second, std::vector<std::string>{JoinPath(dir.Path(), "a.don")});
}

TEST_F(JobsFixture, StartWritesTheQueueLaunchesTheSolverAndCloses) {
  dir.Write("s.seq", "m1.don\nm2.DON\n");
  dir.Write("empty.seq", "");
  struct Case {
    std::vector<std::string> picked;
    bool startFails;
    std::string entre;  // entre.dat afterwards; it holds "old.don" before
    std::vector<std::string> messages;
  };
  const std::string running = "tessiva-solver is running";
  const Case cases[] = {
      {{"a.don", "s.seq"}, false, "m1.don\nm2.DON\na.don\n", {running}},
      {{"empty.seq"}, false, "old.don\n", {"There is no job in Entre.dat file ", running}},
      {{"a.don"}, true, "a.don\n", {"Can't run tessiva-solver"}},
  };
  for (const Case& c : cases) {
    dir.Write("entre.dat", "old.don\n");
    ui.log.clear();
    ui.started.clear();
    ui.startFails = c.startFails;
    frameControls.SetVisible("ManageJobs", true);
    jobs.Load();
    Pick(c.picked);
    jobs.OnCommand1();
    EXPECT_EQ(dir.Read("entre.dat"), c.entre) << c.picked[0];
    EXPECT_EQ(ui.Messages(), c.messages);
    EXPECT_EQ(ui.log[1].title, c.messages.size() == 2 ? "W A R N I N G" : "");
    ASSERT_EQ(ui.started.size(), 1u);
    EXPECT_EQ(ui.started[0].first, JoinPath("/opt/tessiva", "tessiva-solver"));
    EXPECT_EQ(ui.started[0].second, (std::vector<std::string>{dir.Path(), "/opt/tessiva"}));
    EXPECT_FALSE(frameControls.Visible("ManageJobs"));
  }
}

}  // namespace
}  // namespace tessiva
