// The result reader: head keys, the pattern block and the
// files it refuses.
#include "results/resultfile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <tuple>

#include "results/analysisfixture.h"

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
  head.moreSections =
      "[CLF]\n  xstrict=0010  \n  ystrict=0020  \n"
      "[UNIT]\n  UnitNameX=  mm  \n  UnitPX= .05\n"
      "[STARTPOINTS]\n  Number=01  \n  x1=0100  \n  y1=0090  \n  du1=0002  \n";
  const std::string text = Replaced(ResultFileText(head, Block()), "  Number=00  \n",
                                    "  Number=01  \n  Nbox1=02\n  x1-1=10\n  y1-1=20\n  x1-2=-10000\n");
  ASSERT_TRUE(ReadText(text));
  EXPECT_EQ(std::tie(s.NbBox, s.YBox[1][1], s.XBox[1][2]), std::make_tuple(2, 20, -10000));
  EXPECT_EQ(std::tie(s.UnitNameX, s.UnitPX, window.UniteLabels[4]), std::make_tuple("mm", 0.05, "sqr(mm x pixel)"));
  EXPECT_FALSE(s.StartOk[1]) << "dv1 is missing";
  EXPECT_EQ(window.VueCourante, 16) << "forming-limit data show the FLC view";
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
  EXPECT_EQ(s.NbPatBad, 2);
  EXPECT_DOUBLE_EQ(s.NormPat[4], std::hypot(s.DuPat[4], s.DvPat[4]));
  double d1 = 0.0;
  for (int32_t i : {1, 2, 3, 4, 5, 8, 9, 10, 11}) d1 += s.D1Pat[i];
  EXPECT_DOUBLE_EQ(s.MoyD1, d1 / 9);
  EXPECT_EQ(frame.Text("Label1"), " Number of patterns : 11 includes 2 bad pattern(s)");

  for (ResultPattern& p : patterns) p.flag = 3;
  ASSERT_TRUE(ReadResult(SmallPicture(), patterns));
  EXPECT_EQ(s.NbPatBad, 11);
  EXPECT_EQ(s.MoyD1, 0.0);
}

TEST_F(ResultReaderTest, BlockLinesReadFieldByField) {
  struct Case {
    const char* what;
    const char* line;  // replaces one line of pattern 2
    int lineOfBlock;   // 1 to 3
    std::function<void(const AppState&)> check;
  };
  // File 1 has pattern 2 at (64, 72) with the shift field; file 2 the same
  // pattern with a damaged line.
  const ResultPattern before = Block()[1];
  const Case cases[] = {
      {"decimal commas on the first line", "-1 80 88 0,5 -0,25", 1,
       [](const AppState& st) {
         EXPECT_EQ(std::tie(st.XPat[2], st.YPat[2], st.D1Pat[2], st.D2Pat[2]), std::make_tuple(80, 88, 0.5, -0.25));
       }},
      {"a first line with two blanks sets flag and x only", "-1 80 88", 1,
       [&](const AppState& st) {
         EXPECT_EQ(std::tie(st.XPat[2], st.YPat[2], st.D1Pat[2]), std::make_tuple(80, before.y, before.d1));
       }},
      {"free-form numbers take exponents and commas", "1.5E-03,-2 , 3 4", 2,
       [](const AppState& st) {
         EXPECT_EQ(std::tie(st.AuPat[2], st.BuPat[2], st.DuPat[2]), std::make_tuple(0.0015, -2.0, 4.0));
       }},
      {"a bad number keeps its field", "0.5 abc 0 7", 3,
       [&](const AppState& st) {
         EXPECT_EQ(std::tie(st.AvPat[2], st.BvPat[2], st.DvPat[2]), std::make_tuple(0.5, before.v[1], 7.0));
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
    ASSERT_TRUE(ReadText(WithBlockLines(ResultFileText(SmallPicture(), Block()), 3 + c.lineOfBlock, 1, c.line), 2));
    c.check(s);
  }
}

TEST_F(ResultReaderTest, FilesThatCantBeUsedLeaveTheResultInPlace) {
  ResultHead absurd = SmallPicture();
  absurd.lima = 2147483647;
  const std::string good = ResultFileText(SmallPicture(), Block());
  struct Case {
    const char* what;
    std::string text;
    const char* told;  // what the message says beyond the file's name; "" for the file's format
  };
  const Case cases[] = {
      {"no PicRef", Replaced(good, "  PicRef=ref.bmp\n", ""), ""},
      {"no PicDef", Replaced(good, "  PicDef=def.bmp\n", ""), ""},
      {"no [RESULTS] line", Replaced(good, "\n[RESULTS]\n", "\n[RESULT]\n"), ""},
      {"more patterns than the grid of a 128 x 128 picture holds",
       ResultFileText(SmallPicture(), GridPatterns(kShift, 8, 8, 16, 16, 8, 8)) + "-1 8 8 0 0\n",
       "ref.bmp (128 x 128 pixels at a grid step of 8) can hold"},
      {"a picture of absurd size", ResultFileText(absurd, Block()), "take a larger grid step"},
  };
  for (const int32_t index : {1, 2}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.what) + " as member " + std::to_string(index));
      ASSERT_TRUE(ReadResult(SmallPicture(), Block()));
      const AppState before = s;
      ui.log.clear();
      EXPECT_FALSE(ReadText(c.text, index));
      ASSERT_EQ(ui.Messages().size(), 1u);
      const std::string message = ui.Messages()[0];
      if (*c.told == '\0')
        EXPECT_EQ(message, "This file :" + s.DataFile + " is not right formatted, no data could be retrieved from this file");
      else
        EXPECT_NE(message.find(c.told), std::string::npos) << message;
      EXPECT_EQ(s.NbPat, before.NbPat);
      EXPECT_EQ(s.FlagPat, before.FlagPat);
      EXPECT_EQ(s.DuPat, before.DuPat);
      EXPECT_EQ(s.TexteLignes, before.TexteLignes);
    }
  }
}

}  // namespace
}  // namespace tessiva
