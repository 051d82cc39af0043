// tessiva-cli flc: a neck written as a displacement field whose undisturbed
// strain is known, read by both determinations; a side mirrored; the section
// carried along a sequence; bad input that prints nothing.
#include "flccommand.h"

#include <gtest/gtest.h>

#include <cmath>

#include "commands.h"
#include "run.h"
#include "state/numtext.h"
#include "support/neckfield.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"

namespace tessiva::cli {
namespace {

using tessiva::testing::DisplacementField;
using tessiva::testing::kNeckAt;
using tessiva::testing::kNeckHalfWidth;
using tessiva::testing::Neck;
constexpr double kUndisturbed = tessiva::testing::kUndisturbedStrain;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines = SplitText(text, "\n");
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

// The rows of the limit table: those after the blank line.
std::vector<std::vector<std::string>> LimitRows(const std::string& out, const std::string& by) {
  const std::vector<std::string> lines = Lines(out);
  std::vector<std::vector<std::string>> rows;
  bool past = false;
  for (const std::string& line : lines) {
    if (line.empty()) {
      past = true;
    } else if (past) {
      rows.push_back(SplitText(line, by));
    }
  }
  if (!rows.empty()) rows.erase(rows.begin());  // the head
  return rows;
}

std::vector<std::vector<std::string>> SectionRows(const std::string& out) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line : Lines(out)) {
    if (line.empty()) break;
    rows.push_back(SplitText(line, "\t"));
  }
  if (!rows.empty()) rows.erase(rows.begin());
  return rows;
}

class Flc : public ::testing::Test {
 protected:
  // Patterns every 8 pixels over x 24..232, y 96..160; a quarter millimetre a pixel.
  std::string WriteResult(const std::string& name, const DisplacementField& field, const std::string& more = "") {
    tessiva::testing::ResultHead head;
    head.moreSections = "[UNIT]\nUnitNameX=mm\nUnitNameY=mm\nUnitPX=0.25\nUnitPY=0.25\n" + more;
    return WriteResultFile(dir.File(name), head, tessiva::testing::GridPatterns(field, 24, 96, 27, 9, 8, 8));
  }

  tessiva::testing::TempDir dir;
};

TEST_F(Flc, BothMethodsReadTheUndisturbedLimitOfANeckOnceItsPointsAreRejected) {
  const std::string result = WriteResult("neck.res", Neck(8.0));
  for (const std::string method : {"cosine", "iso12004"}) {
    const Outcome o = RunCommand({"flc", result, "--band", "40,128,220,128", "--method", method});
    ASSERT_EQ(o.status, kDone) << method << ": " << o.err;
    const auto section = SectionRows(o.out);
    ASSERT_EQ(section.size(), 79u) << method;
    for (const auto& row : section) {
      ASSERT_EQ(row.size(), 5u);
      const double x = 40 + std::stod(row[1]);
      // The neck is rejected, the undisturbed points fitted.
      if (std::abs(x - kNeckAt) < kNeckHalfWidth - 8) {
        EXPECT_EQ(row[4], "-1") << method << " at x " << x;
      } else if (std::abs(x - kNeckAt) > kNeckHalfWidth + 8) {
        EXPECT_EQ(row[4], "1") << method << " at x " << x;
      }
    }
    const auto limits = LimitRows(o.out, "\t");
    ASSERT_EQ(limits.size(), 1u) << o.out;
    EXPECT_EQ(limits[0][0], "neck.res");
    EXPECT_NEAR(std::stod(limits[0][1]), kUndisturbed, 0.5) << method;
    EXPECT_NEAR(std::stod(limits[0][2]), 0.0, 0.5) << method << ": plane strain";
  }
}

TEST_F(Flc, ASideRepeatsItsStrainsMirroredAboutTheMiddleOfTheSection) {
  // The neck off the band's middle, so that the mirror differs from the section.
  const std::string result = WriteResult("neck.res", Neck(8.0));
  const Outcome o = RunCommand({"flc", result, "--band", "60,128,220,128", "--side", "left"});
  ASSERT_EQ(o.status, kDone) << o.err;
  const auto rows = SectionRows(o.out);
  ASSERT_EQ(rows.size(), 79u);
  for (size_t i = 41; i <= 79; ++i) {
    const auto& mirror = rows[80 - i - 1];
    EXPECT_EQ(rows[i - 1][2], mirror[2]) << "point " << i;
    EXPECT_EQ(rows[i - 1][3], mirror[3]) << "point " << i;
  }
}

TEST_F(Flc, ASequenceGivesARowAMemberWithTheNeckStillRejected) {
  WriteResult("a.res", Neck(4.0));
  WriteResult("b.res", Neck(8.0));
  const std::string sequence = dir.Write("test.seq", "a.don\nb.don\n");
  const Outcome o = RunCommand({"flc", sequence, "--band", "40,128,220,128", "--csv"});
  ASSERT_EQ(o.status, kDone) << o.err;
  const auto limits = LimitRows(o.out, ",");
  ASSERT_EQ(limits.size(), 2u) << o.out;
  EXPECT_EQ(limits[0][0], "a.res");
  EXPECT_EQ(limits[1][0], "b.res");
  for (const auto& row : limits) EXPECT_NEAR(std::stod(row[1]), kUndisturbed, 0.5) << row[0];
}

TEST_F(Flc, BadInputPrintsNothing) {
  const std::string plain = WriteResult("plain.res", Neck(8.0));
  struct Case {
    std::vector<std::string> args;
    std::string complaint;
  };
  const Case cases[] = {
      {{"flc", plain}, "Sorry this option is not available with this results file"},
      {{"flc", plain, "--band", "40,128,400,128"}, "lies off the picture"},
      {{"flc", plain, "--band", "40,128,40,128"}, "has no length"},
      {{"flc", plain, "--band", "40,128,220"}, "--band takes X1,Y1,X2,Y2"},
      {{"flc", plain, "--position", "101"}, "--position: 101 is out of range (0 to 100)"},
      {{"flc", plain, "--side", "up"}, "--side: up is not one of left, right"},
      {{"flc", plain, "--method", "spline"}, "--method: spline is not one of cosine, iso12004"},
      {{"flc"}, "INPUT is required"},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand(c.args);
    EXPECT_NE(o.status, kDone) << c.complaint;
    EXPECT_TRUE(o.out.empty()) << c.complaint;
    EXPECT_NE(o.err.find(c.complaint), std::string::npos) << o.err;
  }
}

}  // namespace
}  // namespace tessiva::cli
