// The analysis window as a session over a sequence solved by the solver:
// three members stretched along x by 1, 2 and 3 % about the picture's
// middle. Navigation, the run with a point selection, the user's axes, and
// members that can't be read.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <sstream>

#include "analysis/axistool.h"
#include "analysis/fieldlist.h"
#include "formats/sections.h"
#include "results/fieldmap.h"
#include "results/ranges.h"
#include "runner.h"
#include "setup/picture.h"
#include "solver/synthetic_job.h"
#include "state/files.h"
#include "state/numtext.h"
#include "ui/pointer.h"
#include "ui/recordingcanvas.h"

namespace tessiva::testing {
namespace {

constexpr int32_t kSide = 128;
constexpr double kCentre = 64.0;
constexpr double kStretch[] = {0.01, 0.02, 0.03};
const char* const kMembers[] = {"p0-p1.res", "p0-p2.res", "p0-p3.res"};
constexpr double kPi = 3.14159265358979323846;

// The pictures p0 (reference) to p3, each member's data file and the
// sequence, solved once for the whole suite.
class SolvedSequence {
 public:
  SolvedSequence() {
    synth::SpeckleSettings st;
    st.width = st.height = kSide;
    const synth::Speckle speckle(st);
    Save("p0.bmp", synth::Render(speckle, st, nullptr, 3));
    std::string list;
    for (int i = 1; i <= 3; ++i) {
      synth::FieldSpec field{synth::FieldKind::UniformStrain, kStretch[i - 1], 0.0};
      field.cx = field.cy = kCentre;
      const std::string picture = "p" + std::to_string(i) + ".bmp";
      Save(picture, synth::Render(speckle, st, &field, 3));
      JobSetup job;
      std::tie(job.ref, job.def, job.startDisplacement) = std::tuple("p0.bmp", picture, std::pair{0, 0});
      job.lgrid = 8;
      job.lpatMin = job.lpatMax = 17;
      const std::string data = "p0-p" + std::to_string(i) + ".don";
      MakeDataFile(dir.Path(), data, job);
      list += data + "\n";
    }
    dir.Write("p0-p3-S.seq", list);
    dir.Write("entre.dat", "p0-p3-S.seq\n");
    std::ostringstream out;
    status = solver::RunJobs(dir.Path(), {2}, out);
    report = out.str();
  }

  TempDir dir;
  int status = -1;
  std::string report;

 private:
  void Save(const std::string& name, const std::vector<uint8_t>& grey) {
    ASSERT_TRUE(SaveGreyBmp(dir.File(name), kSide, kSide, grey));
  }
};

class Session : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { solved_ = std::make_unique<SolvedSequence>(); }
  static void TearDownTestSuite() { solved_.reset(); }

  Session() {
    s.StartDir = dir.Path();
    s.IniPath = dir.File("correl.ini");
    window.Repere = &repere;
  }

  // Opens the window on a sequence of `sequenceDir` and reads its first member.
  void Open(const std::string& sequenceDir, const std::string& sequence = "p0-p3-S.seq") {
    ASSERT_EQ(solved_->status, 0) << solved_->report;
    s.LastDir = sequenceDir;
    s.FileName = JoinPath(sequenceDir, sequence);
    s.FileTitle = sequence;
    window.Load();
    window.OnTimer1();
    ASSERT_EQ(s.NbSeq, 3);
  }
  void Open() { Open(solved_->dir.Path()); }

  // The member on show, told by its displacement 32 pixels right of the middle.
  int MemberShown() const {
    const double u = window.DonneIso(kCentre + 32, kCentre, kViewU);
    for (int i = 0; i < 3; ++i)
      if (std::abs(u - 32 * kStretch[i]) < 0.05) return i + 1;
    return 0;
  }

  static std::unique_ptr<SolvedSequence> solved_;
  TempDir dir;
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};
  RecordingCanvas repere{AxisTool::kSide, AxisTool::kSide};
};

std::unique_ptr<SolvedSequence> Session::solved_;

// Each key from the member on show: where it leads, and whether it reads.
TEST_F(Session, NavigationStepsEachWayAndStopsAtBothEnds) {
  Open();
  ASSERT_EQ(MemberShown(), 1);
  struct Step {
    const char* key;
    int32_t member;
    bool reads;
  };
  const Step steps[] = {
      {"PreviousFile", 1, false}, {"Initial", 1, false}, {"NextFile", 2, true},  {"NextFile", 3, true},
      {"NextFile", 3, false},     {"Final", 3, false},   {"PreviousFile", 2, true}, {"Initial", 1, true},
      {"Final", 3, true},         {"PreviousFile", 2, true},
  };
  for (const Step& step : steps) {
    s.DataFile.clear();
    EXPECT_TRUE(window.OnToolbar1Click(step.key));
    EXPECT_EQ(window.CurFile, step.member) << step.key;
    EXPECT_EQ(!s.DataFile.empty(), step.reads) << step.key << " to " << step.member;
    EXPECT_EQ(MemberShown(), step.member) << step.key;
    EXPECT_EQ(window.Controls().Get("Combo4").listIndex, step.member - 1) << step.key;
  }
  window.OnCombo4Click(0);
  EXPECT_EQ(MemberShown(), 1);
  EXPECT_EQ(ui.busyDepth, 0);
}

// A point typed in from the keyboard, then a run: one row per member, each
// with that member's name and displacement.
TEST_F(Session, RunReplaysThePointOnEveryMember) {
  Open();
  window.OnToolbar1Click("point");
  ui.inputAnswers = {"96 64", "96, 64"};
  window.KeyMNU();
  EXPECT_EQ(ui.Messages().back(), "Give the X and Y values separated by a comma, such as 12.5, 40");
  window.KeyMNU();
  const size_t head = SplitLines(window.Info.DataText()).size();
  window.OnToolbar1Click("Run");

  const std::vector<std::string> rows = SplitLines(window.Info.DataText());
  ASSERT_EQ(rows.size(), head + 3) << window.Info.DataText();
  for (int i = 0; i < 3; ++i) {
    const std::vector<std::string> fields = SplitText(rows[head + static_cast<size_t>(i)], "\t");
    ASSERT_GE(fields.size(), 6u);
    EXPECT_EQ(fields[0], kMembers[i]);
    EXPECT_EQ(std::stod(fields[2]), 96);
    EXPECT_EQ(std::stod(fields[3]), 64);
    EXPECT_NEAR(std::stod(fields[4]), 32 * kStretch[i], 0.02) << rows[head + static_cast<size_t>(i)];
    EXPECT_NEAR(std::stod(fields[5]), 0.0, 0.02) << rows[head + static_cast<size_t>(i)];
  }
  EXPECT_EQ(window.CurFile, 3);
}

// Axis 1 drawn at 30 degrees keeps its angle to hundredths of a radian; the
// Green Lagrange strain of the stretch, e + e^2/2 along x, is read in the
// turned axes; "No" brings the axes back.
TEST_F(Session, AxisDrawnAt30DegreesTurnsTheStrains) {
  Open();
  window.OnToolbar1Click("NextFile");
  const double e = kStretch[1], strain = 100 * (e + e * e / 2);
  const auto strainsAt = [this] {
    return std::array{window.DonneIso(kCentre, kCentre, kViewE11), window.DonneIso(kCentre, kCentre, kViewE22),
                      window.DonneIso(kCentre, kCentre, kViewE12)};
  };
  const auto unturned = strainsAt();
  EXPECT_NEAR(unturned[0], strain, 0.02);
  EXPECT_NEAR(unturned[1], 0.0, 0.02);

  ui.messageAnswers = {MsgAnswer::Cancel, MsgAnswer::Yes};
  window.Axes.OnRepereMouseUp(kRightButton);
  EXPECT_FALSE(window.Axes.AxisPick);
  window.Axes.OnRepereMouseUp(kRightButton);
  ASSERT_TRUE(window.Axes.AxisPick);
  const double x2 = 30 + 80 * std::cos(kPi / 6), y2 = 30 + 80 * std::sin(kPi / 6);
  window.OnPicAnaMouseDown(kLeftButton, 0, 30, 30);
  window.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
  window.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
  EXPECT_FALSE(window.Axes.AxisPick);
  EXPECT_EQ(window.Teta1, 0.52);
  EXPECT_EQ(window.Cos2Teta, std::cos(1.04));
  EXPECT_EQ(window.Sin2Teta, std::sin(1.04));
  EXPECT_EQ(window.CurFile, 2);
  const double c = std::cos(0.52), n = std::sin(0.52);
  const auto turned = strainsAt();
  EXPECT_NEAR(turned[0], strain * c * c, 0.02);
  EXPECT_NEAR(turned[1], strain * n * n, 0.02);
  EXPECT_NEAR(turned[2], -strain * c * n, 0.02);
  EXPECT_NEAR(window.DonneIso(kCentre + 32, kCentre, kViewU), c * 32 * e, 0.02);
  // Axis 1 in colour 12 from Repere's middle at Teta1, axis 2 in colour 9 a
  // quarter turn on, each with the three sides of its head.
  const auto drawn = repere.OfKind("line");
  ASSERT_GE(drawn.size(), 8u);
  const std::vector lines(drawn.end() - 8, drawn.end());
  EXPECT_EQ(lines[0].colour, QBColor(12));
  EXPECT_NEAR(lines[0].x2, 23 + 20 * c, 1e-9);
  EXPECT_NEAR(lines[0].y2, 23 + 20 * n, 1e-9);
  EXPECT_EQ(lines[4].colour, QBColor(9));
  EXPECT_NEAR(lines[4].x2, 23 - 20 * n, 1e-9);
  EXPECT_NEAR(lines[4].y2, 23 + 20 * c, 1e-9);

  ui.messageAnswers = {MsgAnswer::No};
  window.Axes.OnRepereMouseUp(kRightButton);
  EXPECT_EQ(window.Teta1, 0.0);
  EXPECT_EQ(window.Cos2Teta, 1.0);
  EXPECT_EQ(window.Sin2Teta, 0.0);
  EXPECT_FALSE(window.Controls().Visible("Line5"));
  EXPECT_EQ(strainsAt(), unturned);
}

// A member whose result is gone, or has no [RESULTS] block: the reader says
// so, the member before stays on show, and the others are still reached.
TEST_F(Session, UnreadableMemberIsToldAndPassedOver) {
  const std::string good = solved_->dir.Read(kMembers[1]);
  const struct {
    const char* name;
    std::optional<std::string> text;
  } cases[] = {{"missing", std::nullopt}, {"without results", good.substr(0, good.find("[RESULTS]"))}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::filesystem::remove_all(dir.File("seq"));
    std::filesystem::create_directory(dir.File("seq"));
    for (const char* file : {"p0.bmp", "p1.bmp", "p2.bmp", "p3.bmp", "p0-p1.res", "p0-p3.res"})
      std::filesystem::copy_file(solved_->dir.File(file), dir.File(std::string("seq/") + file));
    if (c.text) dir.Write("seq/p0-p2.res", *c.text);
    dir.Write("seq/p0-p3-S.seq", "p0-p1.don\np0-p2.don\np0-p3.don\n");
    Open(dir.File("seq"));
    ui.log.clear();

    window.OnToolbar1Click("NextFile");
    EXPECT_EQ(ui.Messages(), std::vector{NotRightFormattedMessage(dir.File("seq/p0-p2.res"))});
    EXPECT_EQ(MemberShown(), 1);
    window.OnToolbar1Click("NextFile");
    EXPECT_EQ(MemberShown(), 3);
    window.OnToolbar1Click("Initial");
    EXPECT_EQ(MemberShown(), 1);
  }
}

}  // namespace
}  // namespace tessiva::testing
