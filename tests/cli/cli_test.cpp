// tessiva-cli: exit statuses and messages for bad input, and exports equal
// to those of the analysis window for each of its settings.

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "analysis/analysisfiles.h"
#include "commands.h"
#include "run.h"
#include "results/analysisfixture.h"
#include "results/exports.h"
#include "state/files.h"

namespace tessiva::cli {
namespace {

using tessiva::testing::Displacement;

std::string NotRightFormatted(const std::string& path) {
  return "This file :" + path + " is not right formatted, no data could be retrieved from this file\n";
}

class Cli : public tessiva::testing::AnalysisFixture {};

TEST_F(Cli, ResultsThatCannotBeReadGetTheReadersMessage) {
  struct Case {
    const char* name;
    std::string result;
  };
  const Case cases[] = {
      {"no picture names", dir.Write("head.res", "[PARAMETERS]\n  Lgrid=10\n[RESULTS]\n-1 10 10 0 0\n")},
      {"no [RESULTS] line", dir.Write("block.res", "[PICTURES]\n  PicRef=a.bmp\n  PicDef=b.bmp\n-1 10 10 0 0\n")},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand({"export", c.result, "--cfr", dir.File("out.cfr")});
    EXPECT_EQ(o.status, kFailed) << c.name;
    EXPECT_EQ(o.err, NotRightFormatted(c.result)) << c.name;
    EXPECT_EQ(o.out, "") << c.name;
  }
  EXPECT_FALSE(FileExists(dir.File("out.cfr")));
}

// Pictures to data file without a window; a setup that can't be done says why
// and writes nothing.
TEST_F(Cli, SetupWritesTheDataFileOfSyntheticPictures) {
  const std::string pictures = dir.File("pictures");
  const Outcome synth = RunCommand({"synth", pictures, "translation", "3", "-2", "--size", "128"});
  ASSERT_EQ(synth.status, kDone) << synth.err;
  EXPECT_EQ(synth.out, JoinPath(pictures, "ref.bmp") + " written\n" + JoinPath(pictures, "def.bmp") + " written\n" +
                           JoinPath(pictures, "truth.txt") + " written\n");
  const Outcome outside = RunCommand({"setup", pictures, "--area", "10", "10", "300", "100"});
  EXPECT_EQ(outside.status, kFailed);
  EXPECT_NE(outside.err.find("doesn't lie inside the picture of 128 x 128 pixels"), std::string::npos) << outside.err;
  ASSERT_EQ(RunCommand({"synth", dir.File("small"), "translation", "--size", "60"}).status, kDone);
  const Outcome small = RunCommand({"setup", dir.File("small"), "--pattern", "32", "32"});
  EXPECT_NE(small.err.find("the picture of 60 x 60 pixels is too small for patterns of 32 pixels"), std::string::npos)
      << small.err;
  EXPECT_FALSE(FileExists(JoinPath(pictures, "data.don")) || FileExists(dir.File("small/data.don")));

  const Outcome made = RunCommand({"setup", pictures, "--data", "job.don", "--grid", "8"});
  ASSERT_EQ(made.status, kDone) << made.err;
  EXPECT_EQ(made.out, JoinPath(pictures, "job.don") + " written\n");
  const std::string text = ReadWholeFile(JoinPath(pictures, "job.don")).value_or("");
  EXPECT_NE(text.find("PicDef=def.bmp"), std::string::npos);
  // The start point at the area's middle, with the shift the start search found.
  for (const char* line : {"x1=0064", "y1=0064", "du1=0003", "dv1=-002"}) EXPECT_NE(text.find(line), std::string::npos) << line;
}

// A stretched block and a lone bad pattern away from it, so that both
// settings change the export.
TEST_F(Cli, ExportsWhatTheAnalysisWindowExportsForEachSetting) {
  tessiva::testing::ResultHead head;
  head.lpatMin = head.lpatMax = head.lgrid = 10;
  const auto field = [](double x, double) { return Displacement{0.1 * (x - 100), 0.0}; };
  std::vector<tessiva::testing::ResultPattern> patterns = tessiva::testing::GridPatterns(field, 60, 80, 6, 4, 10, 10);
  patterns.push_back(tessiva::testing::PatternOf(field, 200, 200, 10));
  patterns.back().flag = 0;
  const std::string result = WriteResultFile(dir.File("stretch.res"), head, patterns);
  struct Case {
    bool showBad, finalToInitial;
  };
  std::set<std::string> distinct;
  for (const Case c : {Case{false, false}, Case{true, false}, Case{false, true}}) {
    std::vector<std::string> args{"export", result, "--cfr", dir.File("cli.cfr")};
    if (c.showBad) args.push_back("--show-bad-pattern");
    if (c.finalToInitial) args.push_back("--final-to-initial");
    const Outcome o = RunCommand(args);
    ASSERT_EQ(o.status, kDone) << o.err;
    EXPECT_EQ(o.out, dir.File("cli.cfr") + " written\n");

    window.Controls().SetChecked("Bad", c.showBad);
    window.bInitial = !c.finalToInitial;
    UseSequence({result});
    ASSERT_TRUE(LecRes(window, 1, false));
    ASSERT_TRUE(SauveCfr(s, window.ShowBad(), dir.File("window.cfr")));
    EXPECT_EQ(dir.Read("cli.cfr"), dir.Read("window.cfr")) << c.showBad << c.finalToInitial;
    distinct.insert(dir.Read("cli.cfr"));
  }
  EXPECT_EQ(distinct.size(), 3u);
}

}  // namespace
}  // namespace tessiva::cli
