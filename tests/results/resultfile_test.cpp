// The result reader: head keys and their defaults, the pattern block, the
// files it refuses, and what only the first file of a sequence does.
#include "results/resultfile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "results/analysisfixture.h"
#include "setup/picture.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::GridPatterns;
using testing::PatternOf;
using testing::ResultHead;
using testing::ResultPattern;

const testing::DisplacementField kShift = [](double x, double y) { return Displacement{0.01 * x + 1, -0.02 * y}; };

ResultHead SmallPicture() {
  ResultHead head;
  head.lima = 128;
  head.hima = 128;
  return head;
}

// The [RESULTS] line and the block of a written file.
std::string BlockText(const std::vector<ResultPattern>& patterns) {
  const std::string text = ResultFileText({}, patterns);
  return text.substr(text.find("[RESULTS]\n"));
}

// Replaces `count` lines of the block, from line `first` after [RESULTS] (0
// is pattern 1's first line), by `with`.
std::string WithBlockLines(std::string text, int first, int count, const std::string& with) {
  size_t start = text.find("[RESULTS]\n") + 10;
  for (int n = 0; n < first; ++n) start = text.find('\n', start) + 1;
  size_t end = start;
  for (int n = 0; n < count; ++n) end = text.find('\n', end) + 1;
  return text.replace(start, end - start, with + "\n");
}

// Replaces the first occurrence of `from`.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

class ResultReaderTest : public AnalysisFixture {
 protected:
  std::vector<ResultPattern> Block() const { return GridPatterns(kShift, 64, 64, 3, 3, 8, 8); }
};

TEST_F(ResultReaderTest, HeadKeysTakeTheFilesValues) {
  ResultHead head;
  head.hima = 128;
  head.lpatMin = 10;
  head.lpatMax = 12;
  head.moreSections =
      "[EXTRA]\n  number=2\n  name0=Load\n  value0=12,5\n  name1=Temp\n"
      "[CLF]\n  xstrict=0010  \n  ystrict=0020  \n"
      "[UNIT]\n  UnitNameX=  mm  \n  UnitPX= .05\n"
      "[STARTPOINTS]\n  Number=01  \n  x1=0100  \n  y1=0090  \n  du1=0002  \n";
  const std::string text = Replaced(ResultFileText(head, Block()), "  Number=00  \n",
                                    "  Number=01  \n  Nbox1=02\n  x1-1=10\n  y1-1=20\n  x1-2=-10000\n");
  ASSERT_TRUE(ReadText(text));
  EXPECT_EQ(s.FileDate, 20240611);
  EXPECT_EQ(s.PicDefPath, dir.File("def.bmp"));
  EXPECT_EQ(s.Hima, 128);
  EXPECT_EQ(s.LpatEven, 10);
  EXPECT_EQ(s.Lpas, 8);
  EXPECT_EQ(s.NbBox, 2);
  EXPECT_EQ(s.YBox[1][1], 20);
  EXPECT_EQ(s.XBox[1][2], -10000);
  EXPECT_EQ(s.UnitNameX, "mm");
  EXPECT_EQ(s.UnitNameY, "pixel");
  EXPECT_EQ(s.UnitPX, 0.05);
  EXPECT_EQ(window.UniteLabels[4], "sqr(mm x pixel)");
  EXPECT_EQ(window.Controls().Get("Combo3").items, (std::vector<std::string>{"Load", "Temp"}));
  EXPECT_EQ(window.Controls().Get("List3").items, (std::vector<std::string>{"12,5", ""}));
  EXPECT_FALSE(s.StartOk[1]) << "dv1 is missing";
  EXPECT_EQ(s.CurStart, 1);
  EXPECT_EQ(window.VueCourante, 16) << "forming-limit data show the FLC view";
  EXPECT_EQ(window.Controls().Get("Label1").text, " ref.bmp (256x128)");
}

TEST_F(ResultReaderTest, MissingHeadKeysTakeTheirDefaults) {
  ASSERT_TRUE(ReadText("[PICTURES]\n  PicRef=ref.bmp\n  PicDef=def.bmp\n" + BlockText(Block())));
  EXPECT_EQ(s.FileDate, TodayNumber());
  EXPECT_EQ(s.Lima, 2048) << "no size and no picture";
  EXPECT_EQ(s.Hima, 2048);
  EXPECT_EQ(s.LpatMin, 9);
  EXPECT_EQ(s.Lgrid, 9);
  EXPECT_EQ(s.UnitNameX, "pixel");
  EXPECT_EQ(s.UnitPY, 1.0);
  EXPECT_FALSE(s.ClfMode);
  EXPECT_EQ(s.NbPat, 9);
}

TEST_F(ResultReaderTest, PictureSizeComesFromTheReferencePictureWhenTheFileHasNone) {
  ASSERT_TRUE(SaveGreyBmp(dir.File("ref.bmp"), 96, 80, std::vector<uint8_t>(96 * 80, 7)));
  ResultHead head;
  head.lima = 0;
  ASSERT_TRUE(ReadResult(head, Block()));
  EXPECT_EQ(s.Lima, 96);
  EXPECT_EQ(s.Hima, 80);
  EXPECT_EQ(window.PicAnaTemp.Pixels(5, 5), 7);
  EXPECT_TRUE(window.PicAnaTemp2.Pixels.Empty()) << "no deformed picture on disk";
}

TEST_F(ResultReaderTest, FirstPictureOfAnIncrementalSequenceStandsForTheReference) {
  const std::string text = Replaced(ResultFileText({}, Block()), "  PicDef=", "  PicRefini=first.bmp\n  PicDef=");
  ASSERT_TRUE(ReadText(text));
  EXPECT_EQ(window.Incremental, 1);
  EXPECT_EQ(s.PicRefName, "first.bmp");
  EXPECT_EQ(s.PicRefPath, dir.File("first.bmp"));
  ASSERT_TRUE(ReadResult({}, Block()));
  EXPECT_EQ(window.Incremental, 0);
}

// Two patterns the file calls bad stand apart from the block, after its
// centre pattern, so that the mesh leaves their flags as read.
TEST_F(ResultReaderTest, FlagsMeansAndTheStatusLine) {
  std::vector<ResultPattern> patterns = Block();
  ResultPattern zero = PatternOf(kShift, 24, 112, 8), seven = PatternOf(kShift, 112, 24, 8);
  zero.flag = 0;
  seven.flag = 7;
  patterns.insert(patterns.begin() + 5, {zero, seven});
  ASSERT_TRUE(ReadResult(SmallPicture(), patterns));
  EXPECT_EQ(s.FlagPat[6], 1) << "a 0 in the file is stored as 1";
  EXPECT_EQ(s.FlagPat[7], 1);
  EXPECT_EQ(s.NbPatBad, 2);
  EXPECT_EQ(s.NormPat[6], 0.0);
  EXPECT_DOUBLE_EQ(s.NormPat[4], std::hypot(s.DuPat[4], s.DvPat[4]));
  double d1 = 0.0, norm = 0.0;
  for (int32_t i : {1, 2, 3, 4, 5, 8, 9, 10, 11}) {
    d1 += s.D1Pat[i];
    norm += s.NormPat[i];
  }
  EXPECT_DOUBLE_EQ(s.MoyD1, d1 / 9);
  EXPECT_DOUBLE_EQ(s.MoyNorm, norm / 9);
  EXPECT_EQ(frame.Text("Label1"), " Number of patterns : 11 includes 2 bad pattern(s)");
  EXPECT_EQ(s.TexteLignes[static_cast<size_t>(s.NbLignesEntete)], "[RESULTS]");
  EXPECT_EQ(s.TexteLignes[0], "1 8 0") << "the last line read";

  for (ResultPattern& p : patterns) p.flag = 3;
  ASSERT_TRUE(ReadResult(SmallPicture(), patterns));
  EXPECT_EQ(s.NbPatBad, 11);
  EXPECT_EQ(s.MoyD1, 0.0);
  EXPECT_EQ(s.MoyD2, 0.0);
  EXPECT_EQ(s.MoyNorm, 0.0);
  for (int32_t i = 1; i <= 11; ++i) EXPECT_EQ(s.NormPat[i], 0.0);
}

TEST_F(ResultReaderTest, BlockLinesReadFieldByField) {
  struct Case {
    const char* what;
    const char* line;  // replaces one line of pattern 2
    int lineOfBlock;   // 1 to 4
    std::function<void(const AppState&)> check;
  };
  // File 1 has pattern 2 at (64, 72) with the shift field; file 2 the same
  // pattern with a damaged line.
  const ResultPattern before = Block()[1];
  const Case cases[] = {
      {"decimal commas on the first line", "-1 80 88 0,5 -0,25", 1,
       [](const AppState& st) {
         EXPECT_EQ(st.XPat[2], 80);
         EXPECT_EQ(st.YPat[2], 88);
         EXPECT_EQ(st.D1Pat[2], 0.5);
         EXPECT_EQ(st.D2Pat[2], -0.25);
       }},
      {"an exponent ends a first-line number", "-1 80 88 1.5E-03 2", 1,
       [](const AppState& st) { EXPECT_EQ(st.D1Pat[2], 1.5); }},
      {"a first line with two blanks sets flag and x only", "-1 80 88", 1,
       [&](const AppState& st) {
         EXPECT_EQ(st.XPat[2], 80);
         EXPECT_EQ(st.YPat[2], before.y);
         EXPECT_EQ(st.D1Pat[2], before.d1);
       }},
      {"free-form numbers take exponents and commas", "1.5E-03,-2 , 3 4", 2,
       [](const AppState& st) {
         EXPECT_EQ(st.AuPat[2], 0.0015);
         EXPECT_EQ(st.BuPat[2], -2.0);
         EXPECT_EQ(st.DuPat[2], 4.0);
       }},
      {"a bad number keeps its field", "0.5 abc 0 7", 3,
       [&](const AppState& st) {
         EXPECT_EQ(st.AvPat[2], 0.5);
         EXPECT_EQ(st.BvPat[2], before.v[1]);
         EXPECT_EQ(st.DvPat[2], 7.0);
       }},
      {"the reserved line", "7 x 0.5", 4,
       [](const AppState& st) {
         EXPECT_EQ(st.Res1Pat[2], 7);
         EXPECT_EQ(st.Res2Pat[2], 8);
         EXPECT_EQ(st.Res3Pat[2], 0.5);
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
    ASSERT_TRUE(ReadText(WithBlockLines(ResultFileText(SmallPicture(), Block()), 3 + c.lineOfBlock, 1, c.line), 2));
    c.check(s);
  }
}

TEST_F(ResultReaderTest, ABracketLineTakesAPatternNumberAndLeavesItsValues) {
  ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
  const int32_t oldX2 = s.XPat[2];
  const std::vector<ResultPattern> moved = GridPatterns(kShift, 72, 72, 3, 3, 8, 8);
  // Pattern 2's four lines become one section line: pattern 3 still takes number 3.
  ASSERT_TRUE(ReadText(WithBlockLines(ResultFileText(SmallPicture(), moved), 4, 4, "  [NOTE]"), 2));
  EXPECT_EQ(s.NbPat, 9);
  EXPECT_EQ(s.XPat[1], 72);
  EXPECT_EQ(s.XPat[2], oldX2);
  EXPECT_EQ(s.YPat[3], moved[2].y);
}

TEST_F(ResultReaderTest, ATrailingBlankLineIsOneMorePattern) {
  ASSERT_TRUE(ReadText(ResultFileText(SmallPicture(), Block()) + "\n"));
  EXPECT_EQ(s.NbPat, 10);
  EXPECT_EQ(s.XPat[10], 0);
  EXPECT_EQ(s.D1Pat[10], 0.0);
  EXPECT_EQ(s.NbPatBad, 1) << "its empty flag isn't -1";
  EXPECT_NE(s.FlagPat[10], -1);
}

TEST_F(ResultReaderTest, ExtentsOnlyWiden) {
  ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
  EXPECT_EQ(s.XPatMin, 0.0);
  EXPECT_EQ(s.XPatMax, 80.0);
  EXPECT_EQ(s.YPatMax, 80.0);
  ASSERT_TRUE(ReadResult(SmallPicture(), GridPatterns(kShift, 24, 24, 2, 2, 8, 8), 2));
  EXPECT_EQ(s.XPatMax, 80.0);
  EXPECT_EQ(s.XPatMin, 0.0);
  ASSERT_TRUE(ReadResult(SmallPicture(), GridPatterns(kShift, 24, 24, 2, 2, 8, 8), 1));
  EXPECT_EQ(s.XPatMax, 80.0) << "not even a new sequence resets them";
}

TEST_F(ResultReaderTest, LaterFilesKeepTheGridOfTheFirst) {
  ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
  const int32_t arrays = s.NbPatMax;
  ResultHead coarse = SmallPicture();
  coarse.lgrid = 16;
  coarse.lpatMin = 16;
  ASSERT_TRUE(ReadResult(coarse, Block(), 2));
  EXPECT_EQ(s.Lgrid, 8);
  EXPECT_EQ(s.Lpas, 8);
  EXPECT_EQ(s.LpatMin, 8);
  EXPECT_EQ(s.NbPatMax, arrays);
  EXPECT_EQ(s.FlagPat[5], -1);
}

TEST_F(ResultReaderTest, FilesThatCantBeUsedLeaveTheResultInPlace) {
  ResultHead absurd = SmallPicture();
  absurd.lima = 2147483647;
  const std::string good = ResultFileText(SmallPicture(), Block());
  struct Case {
    const char* what;
    std::string text;
  };
  const Case cases[] = {
      {"no PicRef", Replaced(good, "  PicRef=ref.bmp\n", "")},
      {"no PicDef", Replaced(good, "  PicDef=def.bmp\n", "")},
      {"no [RESULTS] line", Replaced(good, "\n[RESULTS]\n", "\n[RESULT]\n")},
      {"more patterns than the grid of a 128 x 128 picture holds",
       ResultFileText(SmallPicture(), GridPatterns(kShift, 8, 8, 16, 16, 8, 8)) + "-1 8 8 0 0\n"},
      {"a picture of absurd size", ResultFileText(absurd, Block())},
  };
  for (const int32_t index : {1, 2}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.what) + " as member " + std::to_string(index));
      ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
      const AppState before = s;
      ui.log.clear();
      EXPECT_FALSE(ReadText(c.text, index));
      const std::string message =
          "This file :" + s.DataFile + " is not right formatted, no data could be retrieved from this file";
      EXPECT_EQ(ui.Messages(), std::vector<std::string>{message});
      EXPECT_EQ(frame.Text("Label1"), " " + message);
      EXPECT_EQ(s.NbPat, before.NbPat);
      EXPECT_EQ(s.NbPatMax, before.NbPatMax);
      EXPECT_EQ(s.FlagPat, before.FlagPat);
      EXPECT_EQ(s.XPat, before.XPat);
      EXPECT_EQ(s.DuPat, before.DuPat);
      EXPECT_EQ(s.NbMailles, before.NbMailles);
      EXPECT_EQ(s.Noeuds.size(), before.Noeuds.size());
      EXPECT_EQ(s.TexteLignes, before.TexteLignes);
    }
  }
}

// Records the calls the reader makes into the tools of a loaded result.
class RecordingAnalyse : public NewAnalyse {
 public:
  using NewAnalyse::NewAnalyse;
  std::vector<std::string> calls;
  void CalculKI() override { calls.push_back("CalculKI"); }
  void AfficheKI(bool head) override { calls.push_back(head ? "AfficheKI(true)" : "AfficheKI(false)"); }
  void AfficheEtTraiteAOS(bool head) override { calls.push_back(head ? "AOS(true)" : "AOS(false)"); }
};

TEST_F(ResultReaderTest, CrackAndGaugeAnalysesRunOnTheFirstFileOnly) {
  ResultHead head = SmallPicture();
  head.moreSections =
      "[FISSURE]\n  XFissureDep=10\n  YFissureDep=20\n  XFissureArr=30\n  YFissureArr=40\n  RayonFissure=5\n"
      "[GAGES]\n  Number=03\n  name1=g1\n  type1=0000\n  xdep1=10\n  ydep1=10\n  xarr1=20\n  yarr1=20\n"
      "  name2=g2\n  type2=0001\n  xdep2=10\n  ydep2=10\n  xarr2=20\n  yarr2=20\n"
      "  name3=g3\n  type3=0001\n  xdep3=10\n  ydep3=10\n  xarr3=20\n";
  UseSequence(
      {dir.Write("first.res", ResultFileText(head, Block())), dir.Write("second.res", ResultFileText(head, Block()))});
  RecordingAnalyse recorder(s, ui, param);
  frame.SetVisible("Info", false);
  ui.messageAnswers = {MsgAnswer::Yes, MsgAnswer::No};
  ASSERT_TRUE(LecRes(recorder, 1, false));
  EXPECT_EQ(recorder.calls, (std::vector<std::string>{"CalculKI", "AfficheKI(true)", "AOS(true)"}));
  EXPECT_TRUE(frame.Visible("Info"));
  EXPECT_EQ(ui.Messages(),
            (std::vector<std::string>{"Do you want to use this gage : g1 ?", "Do you want to use this gage : g2 ?"}))
      << "g3 lacks a corner and isn't offered";
  ASSERT_EQ(recorder.Gages().Count(), 1);
  EXPECT_EQ(recorder.Gages().Get(1).name, "g1");

  recorder.calls.clear();
  ASSERT_TRUE(LecRes(recorder, 2, true));
  EXPECT_TRUE(recorder.calls.empty());
}

}  // namespace
}  // namespace tessiva
