#include "batch/miseendonne.h"

#include <gtest/gtest.h>

#include "formats/datafile.h"
#include "formats/sections.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "support/tempdir.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

using testing::TempDir;

struct InputFixture : ::testing::Test {
  TempDir dir;
  AppState s;
  ControlRegistry frameControls;
  ScriptedUi ui{frameControls};
  MiseEnDonne input{s, ui};

  void SetUp() override {
    s.LastDir = "/elsewhere";
    s.IniPath = dir.Write("correl.ini", "[PATH]\nLastDir=/elsewhere\n");
    input.Load();
  }
  std::string P(const std::string& name) const { return JoinPath(dir.Path(), name); }
  // The dialog answers with names of `in` (this directory by default); one
  // name uses the single-name form, an empty list cancels.
  void Pick(const std::string& clicked, const std::vector<std::string>& names, std::string in = "") {
    if (in.empty()) in = dir.Path();
    if (names.size() == 1) {
      ui.dialogAnswers.push_back({JoinPath(in, names[0]), names[0]});
    } else if (!names.empty()) {
      std::string joined = in;
      for (const std::string& n : names) joined += std::string(1, '\0') + n;
      ui.dialogAnswers.push_back({joined, ""});
    }
    input.OnNodeClick(clicked);
  }
  std::string Text(const std::string& key) const {
    const JobNode* n = input.Find(key);
    return n ? n->text : "<none>";
  }
  // "key=text" of every node, in the tree's order.
  std::vector<std::string> Tree() const {
    std::vector<std::string> out;
    for (const JobNode& n : input.Nodes()) out.push_back(n.key + "=" + n.text);
    return out;
  }
  bool StartOffered() const {
    const ControlRegistry& c = input.Controls();
    return c.Enabled("Command1") && c.Checked("Timer1") && c.Visible("FlashInfo");
  }
  bool OptionsEnabled() const {
    return input.Controls().Enabled("Option1(0)") && input.Controls().Enabled("Option1(1)");
  }
  void Drag(const std::string& from, const std::string& onto) {
    input.OnTreeMouseDown(1, from);
    input.OnTreeMouseMove(1);
    input.OnDragOver(onto);
    input.OnDragDrop();
  }
  // A data file as the setup window writes it, trimmed to what the list shows.
  void WriteMember(const std::string& name, const std::string& picRef, bool named = true) {
    dir.Write(name, std::string("[RELEASE]\n") + (named ? "Name=Tessiva\n" : "") +
                        "Date=20240131\nVersion=4.65\n[PICTURES]\nPicRef=" + picRef +
                        "\nPicDef=d.bmp\n[PARAMETERS]\nLpatMin=10\nLgrid=05\nInterpolation=1\nCorrelation=0\n"
                        "LargeStrain=0\nPrecision=0100\n");
  }
};

TEST(TriBulle, SortsAsTextFromTheGivenElement) {
  const std::tuple<std::vector<std::string>, size_t, std::vector<std::string>> cases[] = {
      {{"dir", "p9", "p10", "p1"}, 1, {"dir", "p1", "p10", "p9"}},
      {{"z", "c", "b", "a"}, 1, {"z", "a", "b", "c"}},
      {{"b", "a"}, 0, {"a", "b"}},
      {{"only"}, 1, {"only"}},
      {std::vector<std::string>{}, 1, std::vector<std::string>{}},
  };
  for (auto [list, first, sorted] : cases) {
    TriBulle(list, first);
    EXPECT_EQ(list, sorted);
  }
}

TEST_F(InputFixture, LoadShowsTheEmptyTree) {
  EXPECT_EQ(Tree(), (std::vector<std::string>{"Root=Data File Name", "Rp=Reference Picture"}));
  EXPECT_FALSE(input.Controls().Enabled("Command1") || input.Controls().Checked("Timer1") ||
               input.Controls().Visible("FlashInfo"));
  EXPECT_EQ(input.Controls().Text("Label1").substr(0, 41), "Click on the Reference Picture node to lo");
  EXPECT_EQ(s.SeqRefChange, 0);
}

TEST_F(InputFixture, ReferenceNamesTheNodesAfterTheKindOfSequence) {
  for (int kind : {0, 1}) {
    input.Load();
    input.OnOption1Click(kind);
    Pick("Rp", {"ref.bmp"});
    EXPECT_EQ(Tree(), (std::vector<std::string>{"Root=" + P("ref-"), kind ? "Rp=First Picture" : "Rp=Reference Picture",
                                                "FicRef=ref.bmp", kind ? "Dp=Other Pictures" : "Dp=Deformed Picture"}));
    EXPECT_EQ(input.Controls().Text("Label2"), "ref.bmp\n");
    EXPECT_EQ(input.PreviewPath(), P("ref.bmp"));
    EXPECT_FALSE(OptionsEnabled() || StartOffered());
  }
  EXPECT_EQ(ReadKeyText("PATH", "LastDir", s.IniPath), dir.Path());
  EXPECT_EQ(ui.dialogRequests[0].filter, "Image|*.bmp;*.tif;*.tiff;*.png");
}

TEST_F(InputFixture, DeformedPicturesNameTheSequenceOrTheDataFile) {
  struct Case {
    int kind;
    std::vector<std::string> picked;
    std::vector<std::string> nodes;  // texts of the FicDef nodes
    std::string ending;
    bool options;
  };
  const Case cases[] = {
      {0, {"p9.bmp", "p10.bmp", "p1.bmp"}, {"p1.bmp", "p10.bmp", "p9.bmp"}, "-p9-S.seq", true},
      {1, {"b.bmp", "a.bmp"}, {"a.bmp", "b.bmp"}, "-b-I.seq", true},
      {0, {"d.bmp"}, {"d.bmp"}, "-d.don", false},
      // Names lose their picture extension, whatever its length or case.
      {1, {"b.tiff", "a.png"}, {"a.png", "b.tiff"}, "-b-I.seq", true},
      {0, {"d.TIF"}, {"d.TIF"}, "-d.don", false},
  };
  for (const Case& c : cases) {
    input.Load();
    input.OnOption1Click(c.kind);
    Pick("Rp", {"ref.bmp"});
    Pick("Dp", c.picked);
    std::vector<std::string> nodes;
    for (size_t i = 1; i <= c.nodes.size(); ++i) nodes.push_back(Text("FicDef" + std::string(i < 10 ? "000" : "00") + std::to_string(i)));
    EXPECT_EQ(nodes, c.nodes) << c.ending;
    EXPECT_EQ(input.Find("FicDef0001")->tag, P(c.nodes[0]));
    EXPECT_EQ(s.NbSeq, static_cast<int>(c.picked.size()));
    EXPECT_EQ(s.FileName, P("ref" + c.ending));
    EXPECT_EQ(s.FileTitle, "ref" + c.ending);
    EXPECT_EQ(Text("Root"), s.FileName);
    EXPECT_EQ(OptionsEnabled(), c.options) << c.ending;
    EXPECT_TRUE(StartOffered());
  }
  EXPECT_EQ(input.Controls().Text("Label2"), "ref.bmp\nd.TIF\n");
  // A second selection replaces the first.
  Pick("Dp", {"e.bmp"});
  EXPECT_EQ(Text("FicDef0001"), "e.bmp");
  EXPECT_EQ(input.Controls().Text("Label2"), "ref.bmp\ne.bmp\n");
}

TEST_F(InputFixture, DeformedPicturesElsewhereOrCancelledAddNothing) {
  const std::vector<std::string> chosen = {"Root=" + P("ref-"), "Rp=Reference Picture", "FicRef=ref.bmp",
                                           "Dp=Deformed Picture"};
  const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
      {{"a.bmp", "b.bmp"}, {"Root=Data File Name", chosen[1], chosen[2], chosen[3]}},
      {{"a.bmp"}, {"Root=Data File Name", chosen[1], chosen[2], chosen[3]}},
      {{}, chosen},
  };
  for (const auto& [picked, tree] : cases) {
    input.Load();
    Pick("Rp", {"ref.bmp"});
    ui.log.clear();
    Pick("Dp", picked, "/other");
    EXPECT_EQ(Tree(), tree);
    EXPECT_EQ(ui.Messages(), picked.empty() ? std::vector<std::string>{}
                                            : std::vector<std::string>{"Error, The deformed and the reference\n"
                                                                       "pictures must be in the same directory"});
    EXPECT_FALSE(StartOffered());
  }
  // A cancelled reference leaves an empty tree.
  input.OnNodeClick("Rp");
  EXPECT_EQ(Tree(), (std::vector<std::string>{"Root=Data File Name", "Rp=Reference Picture"}));
}

TEST_F(InputFixture, DropsSwapOnlyDeformedPicturesAndFollowTheLastOne) {
  const std::vector<std::string> unchanged = {"a.bmp", "b.bmp", "c.bmp"};
  const std::tuple<const char*, const char*, std::vector<std::string>, const char*> cases[] = {
      {"FicDef0001", "FicDef0002", {"b.bmp", "a.bmp", "c.bmp"}, "c"},
      {"FicDef0003", "FicDef0001", {"c.bmp", "b.bmp", "a.bmp"}, "a"},
      {"FicDef0002", "FicDef0003", {"a.bmp", "c.bmp", "b.bmp"}, "b"},
      {"FicDef0001", "FicRef", unchanged, "c"},
      {"FicRef", "FicDef0001", unchanged, "c"},
      {"FicDef0001", "Dp", unchanged, "c"},
      {"FicDef0001", "Root", unchanged, "c"},
      {"FicDef0001", "", unchanged, "c"},
      {"Rp", "FicDef0001", unchanged, "c"},
      {"Dp", "FicDef0002", unchanged, "c"},
  };
  for (const auto& [from, onto, texts, last] : cases) {
    input.Load();
    Pick("Rp", {"ref.bmp"});
    Pick("Dp", {"a.bmp", "b.bmp", "c.bmp"});
    Drag(from, onto);
    EXPECT_EQ((std::vector<std::string>{Text("FicDef0001"), Text("FicDef0002"), Text("FicDef0003")}), texts)
        << from << " onto " << onto;
    EXPECT_EQ(input.Find("FicDef0001")->tag, P(texts[0]));
    EXPECT_EQ(s.FileName, P(std::string("ref-") + last + "-S.seq")) << from << " onto " << onto;
    EXPECT_EQ(Text("FicRef"), "ref.bmp");
    EXPECT_EQ(input.DropHighlight(), "");
  }
}

TEST_F(InputFixture, OpenedFilesListTheirMembers) {
  WriteMember("m1.don", "ref.bmp");
  WriteMember("m2.don", "ref.bmp");
  WriteMember("i2.don", "m1.bmp");
  WriteMember("bad.don", "ref.bmp", false);
  dir.Write("seq-S.seq", "m1.don\nm2.don\n");
  dir.Write("seq-I.seq", "m1.don\r\ni2.don\r\n");
  dir.Write("broken.seq", "m1.don\nbad.don\n");
  const std::string m1 =
      "   Date : 20240131,  Version n\u00b0 4.65\n   Reference picture : ref.bmp\n   Deformed picture  : d.bmp\n"
      "     -> LpatMin= 10\n     -> Lgrid= 5\n     -> Interpolation  :  1\n     -> Correlation  :  0\n"
      "     -> LargeStrain  :  0\n     -> Precision  :  100\n    -> m1.don\n";
  struct Case {
    std::string file;
    bool listed;
    int seqRefChange;  // -1: no sequence, the buttons disabled
    std::string label2Start;
  };
  const Case cases[] = {
      {"m1.don", true, -1, m1},
      {"seq-S.seq", true, 0, m1},
      {"seq-I.seq", true, 1, m1},
      {"bad.don", false, -1, NotRightFormattedMessage(P("bad.don"))},
      {"broken.seq", false, -1, NotRightFormattedMessage(P("bad.don"))},
  };
  for (const Case& c : cases) {
    input.Load();
    Pick("Rp", {"ref.bmp"});
    Pick("Root", {c.file});
    EXPECT_EQ(input.Controls().Text("Label2").substr(0, c.label2Start.size()), c.label2Start) << c.file;
    EXPECT_EQ(StartOffered(), c.listed) << c.file;
    EXPECT_EQ(input.Find("FicRef"), nullptr);
    EXPECT_EQ(OptionsEnabled(), c.seqRefChange >= 0) << c.file;
    if (c.seqRefChange >= 0) {
      EXPECT_EQ(s.SeqRefChange, c.seqRefChange) << c.file;
      EXPECT_TRUE(input.Controls().Checked("Option1(" + std::to_string(c.seqRefChange) + ")"));
    }
    if (c.listed) {
      EXPECT_TRUE(input.FromFile());
      EXPECT_EQ(Text("Root"), P(c.file));
    }
  }
  EXPECT_EQ(ui.busyDepth, 0);
}

TEST_F(InputFixture, StartWritesTheSequenceAndOpensTheSetup) {
  struct Case {
    std::vector<std::string> picked;  // empty: an opened sequence
    std::vector<std::string> written;
  };
  const Case cases[] = {
      {{"b.bmp", "a.bmp"}, {"ref-b-S.seq", "ref-a.don", "ref-b.don"}},
      {{"d.bmp"}, {"ref-d.don"}},
      {{}, {}},
  };
  WriteMember("m1.don", "ref.bmp");
  dir.Write("open.seq", "m1.don\nm1.don\n");
  for (const Case& c : cases) {
    input.Load();
    frameControls.SetVisible("MiseEnDonne", true);
    frameControls.SetVisible("AreaForm", false);
    if (c.picked.empty()) {
      Pick("Root", {"open.seq"});
    } else {
      Pick("Rp", {"ref.bmp"});
      Pick("Dp", c.picked);
    }
    input.OnCommand1();
    for (const std::string& name : c.written) EXPECT_TRUE(FileExists(P(name))) << name;
    if (!c.written.empty()) {
      EXPECT_EQ(s.FileName, P(c.written[0]));
    }
    EXPECT_FALSE(frameControls.Visible("MiseEnDonne"));
    EXPECT_TRUE(frameControls.Visible("AreaForm"));
  }
  EXPECT_EQ(dir.Read("ref-b-S.seq"), "ref-a.don\nref-b.don\n");
  EXPECT_EQ(dir.Read("open.seq"), "m1.don\nm1.don\n");
  EXPECT_TRUE(ui.Messages().empty());
}

TEST_F(InputFixture, StartAsksBeforeAStubReplacesADataFileHoldingASetup) {
  struct Case {
    const char* existing;
    std::vector<MsgAnswer> answers;
    bool asks;
    bool replaced;
  };
  const Case cases[] = {
      {"[PICTURES]\nPicRef=ref.bmp\n[OUTLINES]\nNumber=1\n", {MsgAnswer::No}, true, false},
      {"[STARTPOINTS]\nNumber=2\n", {MsgAnswer::Yes}, true, true},
      {"[GAGES]\nNumber=1\n", {}, true, false},  // a box closed without answer keeps the file
      {"[OUTLINES]\nNumber=0\n[STARTPOINTS]\nNumber=0\n", {}, false, true},  // nothing to lose
  };
  for (const Case& c : cases) {
    dir.Write("ref-d.don", c.existing);
    ui.log.clear();
    ui.messageAnswers.assign(c.answers.begin(), c.answers.end());
    input.Load();
    Pick("Rp", {"ref.bmp"});
    Pick("Dp", {"d.bmp"});
    input.OnCommand1();
    ASSERT_EQ(ui.Messages().size(), c.asks ? 1u : 0u) << c.existing;
    if (c.asks) {
      EXPECT_NE(ui.Messages()[0].find(P("ref-d.don")), std::string::npos);
    }
    EXPECT_EQ(dir.Read("ref-d.don") != c.existing, c.replaced) << c.existing;
    EXPECT_TRUE(frameControls.Visible("AreaForm"));
  }
}

TEST_F(InputFixture, EditButtonOpensTheFileInTheEditor) {
  Pick("Rp", {"ref.bmp"});
  Pick("Dp", {"d.bmp"});
  input.OnEditButton();
  ASSERT_EQ(ui.log.size(), 3u);
  EXPECT_EQ(ui.log[2].kind, "process");
  EXPECT_NE(ui.log[2].text.find(P("ref-d.don")), std::string::npos);
}

}  // namespace
}  // namespace tessiva
