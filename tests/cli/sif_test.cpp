// tessiva-cli sif: the factors of a Williams field's crack over a sequence,
// the CSV head with units, and cracks and arguments that print nothing.
#include "sifcommand.h"

#include <gtest/gtest.h>

#include <cmath>

#include "run.h"
#include "state/numtext.h"
#include "support/crackfield.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"

namespace tessiva::cli {
namespace {

using tessiva::testing::CrackTipLoad;

class Sif : public ::testing::Test {
 protected:
  // Patterns every 8 pixels from 16 to 384 on a 400 x 400 picture, the
  // crack's tip at (200, 200) on a pattern, the crack coming from the left.
  std::string WriteResult(const std::string& name, double ki) {
    tessiva::testing::ResultHead head;
    head.lima = head.hima = 400;
    head.moreSections = "[UNIT]\nUnitNameX=mm\nUnitNameY=mm\nUnitPX=0.01\nUnitPY=0.01\n"
                        "[MATERIAL]\nYOUNG=70000\nPOISSON=.33\n";
    const CrackTipLoad load{200, 200, 0, ki, 0, 70000, 0.33, 0.01};
    return WriteResultFile(dir.File(name), head,
                           tessiva::testing::GridPatterns(tessiva::testing::WilliamsField(load), 16, 16, 47, 47, 8, 8));
  }
  std::string Sequence() {
    WriteResult("a.res", 1e9);
    WriteResult("b.res", 2e9);
    return dir.Write("crack.seq", "a.don\nb.don\n");
  }

  tessiva::testing::TempDir dir;
};

std::vector<std::string> Lines(const std::string& text, const std::string& end) {
  auto lines = SplitText(text, end);
  if (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

TEST_F(Sif, OneRowAMemberWithItsFactorsAndDirection) {
  const std::string seq = Sequence();
  const Outcome tab = RunCommand({"sif", seq, "--crack", "200,200,40,200", "--radius", "160", "--klarg", "0.6"});
  ASSERT_EQ(tab.status, kDone) << tab.err;
  const auto rows = Lines(tab.out, "\r\n");
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0], "File\tJ\tKI\tKII\tKIfromJ\tJfromKs\tDirection");
  for (int m = 1; m <= 2; ++m) {
    const auto fields = SplitText(rows[static_cast<size_t>(m)], "\t");
    ASSERT_EQ(fields.size(), 7u);
    EXPECT_EQ(fields[0], m == 1 ? "a.res" : "b.res");
    EXPECT_NEAR(std::stod(fields[2]), 1e9 * m, 2e7 * m);
    EXPECT_NEAR(std::stod(fields[3]), 0, 2e7 * m);
    EXPECT_NEAR(std::stod(fields[4]), 1e9 * m, 2e7 * m);
    // Drawn from left to right, mode I's arrow lies along the crack.
    EXPECT_EQ(std::abs(std::stod(fields[6])), 180);
  }

  const Outcome csv = RunCommand({"sif", seq, "--crack", "200,200,40,200", "--radius", "160", "--klarg", "0.6", "--csv"});
  ASSERT_EQ(csv.status, kDone) << csv.err;
  const auto lines = Lines(csv.out, "\n");
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0],
            "File,J (Pa.mm),KI (Pa.mm^0.5),KII (Pa.mm^0.5),KIfromJ (Pa.mm^0.5),JfromKs (Pa.mm),Direction (deg)");
  EXPECT_NEAR(std::stod(SplitText(lines[2], ",")[2]), 2e9, 4e7);
}

TEST_F(Sif, BadCracksAndArgumentsPrintNothing) {
  const std::string res = WriteResult("a.res", 1e9);
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string err;
  };
  const Case cases[] = {
      {{"sif", res, "--crack", "200,200,180,200", "--radius", "160"}, kFailed, "is shorter than three grid steps (24"},
      {{"sif", res, "--crack", "200,200,450,200", "--radius", "160"}, kFailed, "leaves the picture"},
      {{"sif", res, "--crack", "395,395,395,300", "--radius", "2"}, kFailed, "no usable pattern of a.res lies in the ring"},
      {{"sif", res, "--crack", "200,200,40", "--radius", "160"}, kUsageError, "--crack takes XTIP,YTIP,XSTART,YSTART"},
      {{"sif", res, "--crack", "200,200,40,200", "--radius", "-3"}, kUsageError, "--radius: -3 is out of range (above 0)"},
      {{"sif", res, "--crack", "200,200,40,200", "--radius", "160", "--klarg", "0"}, kUsageError,
       "--klarg: 0 is out of range (above 0)"},
      {{"sif", res, "--radius", "160"}, kUsageError, "--crack is required"},
      {{"sif", dir.File("missing.res"), "--crack", "200,200,40,200", "--radius", "160"}, kUsageError, "missing.res not found"},
  };
  for (const Case& c : cases) {
    const Outcome outcome = RunCommand(c.args);
    EXPECT_EQ(outcome.status, c.status) << c.args[3];
    EXPECT_EQ(outcome.out, "") << c.args[3];
    EXPECT_NE(outcome.err.find(c.err), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("nan"), std::string::npos) << outcome.err;
  }
}

}  // namespace
}  // namespace tessiva::cli
