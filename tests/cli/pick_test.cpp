// tessiva-cli pick: rows of a point and a line against a linear field in the
// user's units, the CSV head, the replay over a sequence, and bad input that
// prints nothing and leaves no file.
#include "pickcommand.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>

#include "commands.h"
#include "run.h"
#include "state/numtext.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"

namespace tessiva::cli {
namespace {

using tessiva::testing::Displacement;
using tessiva::testing::DisplacementField;

constexpr double kUnitX = 0.5, kUnitY = 0.25;  // mm per pixel along x and y

// u and v linear in x and y about (100, 100).
Displacement LinearField(double x, double y) {
  return {0.02 * (x - 100) + 0.01 * (y - 100), 0.005 * (x - 100) - 0.01 * (y - 100)};
}
DisplacementField Stretch(double e) {
  return [e](double x, double) { return Displacement{e * (x - 100), 0}; };
}

std::vector<std::string> Split(const std::string& text, const std::string& by) {
  auto parts = SplitText(text, by);
  if (!parts.empty() && parts.back().empty()) parts.pop_back();
  return parts;
}
std::vector<double> Numbers(const std::string& row, size_t from, const std::string& by = "\t") {
  std::vector<double> numbers;
  const auto fields = SplitText(row, by);
  for (size_t i = from; i < fields.size(); ++i) numbers.push_back(std::stod(fields[i]));
  return numbers;
}
// The collector writes five significant digits.
void ExpectNumbers(const std::vector<double>& got, const std::vector<double>& expected, const std::string& where) {
  ASSERT_EQ(got.size(), expected.size()) << where;
  for (size_t j = 0; j < got.size(); ++j)
    EXPECT_NEAR(got[j], expected[j], 1e-4 * std::max(1.0, std::abs(expected[j]))) << where << ", column " << j;
}

class Pick : public ::testing::Test {
 protected:
  // 11 x 11 patterns centred 60..140 every 8 pixels: the mesh covers 56..144.
  std::string WriteResult(const std::string& name, const DisplacementField& field, const std::string& extra = "") {
    tessiva::testing::ResultHead head;
    head.moreSections = "[UNIT]\nUnitNameX=mm\nUnitNameY=mm\nUnitPX=0.5\nUnitPY=0.25\n" + extra;
    return WriteResultFile(dir.File(name), head, tessiva::testing::GridPatterns(field, 60, 60, 11, 11, 8, 8));
  }
  std::set<std::string> Listing() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) names.insert(entry.path().filename());
    return names;
  }

  tessiva::testing::TempDir dir;
};

TEST_F(Pick, PointAndLineRowsGiveTheLinearFieldInUserUnits) {
  const std::string result = WriteResult("linear.res", LinearField);
  const double normUnit = std::sqrt(kUnitX * kUnitY);
  const auto expected = [&](double x, double y) {
    const Displacement d = LinearField(x, y);
    return std::vector<double>{x * kUnitX, y * kUnitY, d.u * kUnitX, d.v * kUnitY, std::hypot(d.u, d.v) * normUnit};
  };

  Outcome o = RunCommand({"pick", result, "--tool", "point", "--at", "80,90", "--field", "norm"});
  ASSERT_EQ(o.status, kDone) << o.err;
  auto rows = Split(o.out, "\r\n");
  ASSERT_EQ(rows.size(), 3u) << "title, columns, one row, each ending in CR LF: " << o.out;
  EXPECT_EQ(rows[0], "linear.res, Displacements in mm");
  EXPECT_EQ(SplitText(rows[2], "\t")[0], "linear.res");
  ExpectNumbers(Numbers(rows[2], 2), expected(80, 90), "point");

  // A line of length 50 is sampled every Lpas / 3 = 8/3 pixels: 19 samples.
  o = RunCommand({"pick", result, "--tool", "line", "--at", "70,80,100,120", "--field", "2 displacement"});
  ASSERT_EQ(o.status, kDone) << o.err;
  rows = Split(o.out, "\r\n");
  ASSERT_EQ(rows.size(), 2u + 19);
  for (int i = 0; i < 19; ++i) {
    const double t = i * 8.0 / 3, x = 70 + t * 0.6, y = 80 + t * 0.8;
    auto want = expected(x, y);
    want.insert(want.begin(), t * normUnit);
    ExpectNumbers(Numbers(rows[static_cast<size_t>(2 + i)], 1), want, "sample " + std::to_string(i));
  }
}

TEST_F(Pick, CsvNamesEachColumnWithItsUnit) {
  const std::string result = WriteResult("a,b.res", LinearField, "[EXTRA]\nnumber=1\nname0=Force\nvalue0=12.5\n");
  struct Case {
    const char *tool, *at, *field;
    std::string head;
  };
  const Case cases[] = {
      {"point", "80,90", "norm", "File,Force,X (mm),Y (mm),Displ.1 (mm),Displ.2 (mm),Norm (mm)"},
      {"line", "70,80,100,120", "Epsilon I Major Hencky", "File,Force,Ds (mm),X (mm),Y (mm),Epsi 1 (%),Epsi 2 (%),Epsi 3 (%)"},
      {"point", "80,90", "Teta(1,I)", "File,Force,X (mm),Y (mm),\"Teta(1,I) (deg)\""},
      {"rosette", "70,80,90,90", "norm",
       "File,Force,E1 (%),E2 (%),Teta (deg),Epsi11 (%),Epsi12 (%),Epsi22 (%),Surface ratio"},
      {"slider", "70,80,100,80", "norm", "File,Force,Lini (px),Lfin (px),Lamda"},
      {"rectangle", "70,70,90,90", "1 displacement", "File,X (mm),Y (mm),1 displacement (mm)"},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand({"pick", result, "--tool", c.tool, "--at", c.at, "--field", c.field, "--csv"});
    ASSERT_EQ(o.status, kDone) << c.tool << ": " << o.err;
    EXPECT_EQ(o.out.find('\r'), std::string::npos) << c.tool;
    const auto lines = Split(o.out, "\n");
    ASSERT_GE(lines.size(), 2u) << c.tool;
    EXPECT_EQ(lines[0], c.head) << c.tool;
    EXPECT_TRUE(lines[1].starts_with("\"a,b.res\",")) << c.tool << ": the file name is quoted: " << lines[1];
  }
}

TEST_F(Pick, ASequenceGivesAPointRowAndAGaugeRowPerMember) {
  for (int m = 1; m <= 3; ++m) WriteResult("member" + std::to_string(m) + ".res", Stretch(0.1 * m));
  const std::string seq = dir.Write("test.seq", "member1.don\nmember2.don\nmember3.don\n");
  const auto before = Listing();

  Outcome o = RunCommand({"pick", seq, "--tool", "point", "--at", "80,80", "--field", "1 displacement"});
  ASSERT_EQ(o.status, kDone) << o.err;
  auto rows = Split(o.out, "\r\n");
  ASSERT_EQ(rows.size(), 2u + 3);
  for (int m = 1; m <= 3; ++m) {
    EXPECT_EQ(SplitText(rows[1 + m], "\t")[0], "member" + std::to_string(m) + ".res");
    EXPECT_NEAR(Numbers(rows[1 + m], 4)[0], 0.1 * m * (80 - 100) * kUnitX, 1e-4);
  }

  // A slider along x reads 1 + stretch on each member.
  o = RunCommand({"pick", seq, "--tool", "slider", "--at", "70,80,100,80", "--field", "norm", "--csv"});
  ASSERT_EQ(o.status, kDone) << o.err;
  rows = Split(o.out, "\n");
  ASSERT_EQ(rows.size(), 1u + 3);
  for (int m = 1; m <= 3; ++m) ExpectNumbers(Numbers(rows[m], 1, ","), {30, 30 * (1 + 0.1 * m), 1 + 0.1 * m}, rows[m]);

  // A line starts its table again on each member: three tables, each titled with its member.
  o = RunCommand({"pick", seq, "--tool", "line", "--at", "70,80,100,80", "--field", "norm"});
  ASSERT_EQ(o.status, kDone) << o.err;
  size_t titles = 0;
  for (const std::string& row : Split(o.out, "\r\n")) titles += row.starts_with("test.seq, member");
  EXPECT_EQ(titles, 3u);
  EXPECT_EQ(Listing(), before) << "the working copy of the selection isn't left beside the results";
}

// TMPDIR pointed elsewhere for a scope, then put back.
class ScopedTmpDir {
 public:
  explicit ScopedTmpDir(const std::string& path) {
    if (const char* old = std::getenv("TMPDIR")) old_ = old;
    ::setenv("TMPDIR", path.c_str(), 1);
  }
  ~ScopedTmpDir() {
    if (old_) {
      ::setenv("TMPDIR", old_->c_str(), 1);
    } else {
      ::unsetenv("TMPDIR");
    }
  }
  ScopedTmpDir(const ScopedTmpDir&) = delete;
  ScopedTmpDir& operator=(const ScopedTmpDir&) = delete;

 private:
  std::optional<std::string> old_;
};

TEST_F(Pick, BadInputIsRefusedWithItsReasonAndLeavesNoFile) {
  const std::string result = WriteResult("r.res", LinearField);
  WriteResult("good.res", LinearField);
  const std::string seq = dir.Write("bad.seq", "good.don\nmissing.don\n");
  // The scratch directories go to a temporary directory of this test's own,
  // where the tests running beside it make and remove none of theirs.
  const std::string tmp = dir.File("tmp");
  std::filesystem::create_directory(tmp);
  const ScopedTmpDir scopedTmp(tmp);
  const auto before = Listing();
  const auto scratch = [&] {
    return std::distance(std::filesystem::directory_iterator(tmp), std::filesystem::directory_iterator());
  };
  const auto scratchBefore = scratch();
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string said;
  };
  const auto pick = [&](const std::string& tool, const std::string& at, const std::string& field = "norm",
                        const std::string& input = "") {
    return std::vector<std::string>{"pick", input.empty() ? result : input, "--tool", tool, "--at", at, "--field", field};
  };
  const Case cases[] = {
      {pick("ruler", "80,90"), kUsageError, "unknown tool ruler; the tools are point, line, rectangle, slider, gauge, rosette"},
      {pick("point", "80,90", "strain"), kUsageError, "unknown field strain; the fields are:\n  1 displacement\n"},
      {pick("point", "80,90", "FLC Diagram"), kUsageError, "don't work on the FLC Diagram view"},
      {pick("line", "70,80,100,80", "Deformed Mesh"), kUsageError, "the line reads no value from the Deformed Mesh view"},
      {pick("point", "80;90"), kUsageError, "--at takes X1,Y1[,X2,Y2], numbers separated by commas, not 80;90"},
      {pick("line", "80,90"), kUsageError, "the line takes two positions, --at X1,Y1,X2,Y2"},
      {pick("point", "80,90,100,90"), kUsageError, "the point takes one position"},
      {pick("point", "300,80"), kFailed, "The position 300,80 lies off the picture of r.res"},
      {pick("point", "20,20"), kFailed, "No pattern of r.res covers the point 20,20"},
      {pick("line", "70,80,80,80"), kFailed, "shorter than three grid steps (24 pixels)"},
      {pick("rectangle", "70,80,80,80"), kFailed, "shorter than three grid steps"},
      {pick("line", "10,10,40,10"), kFailed, "crosses no pattern of r.res"},
      {pick("gauge", "70,80,73,80"), kFailed, "shorter than the grid step (8 pixels)"},
      {pick("gauge", "40,80,90,80"), kFailed, "A corner of the gauge from 40,80 to 90,80 lies where no pattern"},
      {pick("point", "80,90", "norm", dir.File("none.res")), kUsageError, dir.File("none.res") + " not found"},
      {pick("point", "80,90", "norm", seq), kFailed, "missing.res"},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand(c.args);
    EXPECT_EQ(o.status, c.status) << c.said;
    EXPECT_NE(o.err.find(c.said), std::string::npos) << o.err;
    EXPECT_EQ(o.out, "") << c.said;
  }
  EXPECT_EQ(Listing(), before);
  EXPECT_EQ(scratch(), scratchBefore) << "the scratch directories are removed";
}

}  // namespace
}  // namespace tessiva::cli
