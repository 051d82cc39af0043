// tessiva-cli refuses a wrong command line before doing anything: the
// complaint names what was wrong, the status is the usage error, nothing is
// printed on standard output and no file is written. Help is there for the
// program and for each command.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "commands.h"
#include "run.h"
#include "state/files.h"
#include "support/tempdir.h"

namespace tessiva::cli {
namespace {

std::set<std::string> Listing(const std::string& dir) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) names.insert(entry.path().string());
  return names;
}

TEST(CliRefusals, SayWhatIsWrongAndWriteNothing) {
  tessiva::testing::TempDir dir;
  // The commands are refused before any file is read, so any file will do where one must be there.
  const std::string res = dir.Write("r.res", ""), text = dir.Write("notes.txt", "not a picture"),
                    out = dir.File("out.cfr"), missing = dir.File("missing.res");
  struct Case {
    std::vector<std::string> args;
    std::string said;
  };
  const Case cases[] = {
      {{}, "no command given"},
      {{"convert", res}, "unknown command convert"},
      // Unknown options and stray arguments, named.
      {{"export", res, "--cfr", out, "--colour"}, "unknown option --colour"},
      {{"export", res, res, "--cfr", out}, "unexpected argument " + res},
      {{"setup", dir.Path(), "-x"}, "unknown option -x"},
      // Missing values: at the end of the line, and where the next option follows.
      {{"export", res, "--unv"}, "--unv: 1 required OUT missing"},
      {{"setup", dir.Path(), "--ref", "--def", "b.bmp"}, "--ref: a value is missing before --def"},
      {{"setup", dir.Path(), "--area", "1", "2", "3"}, "--area: At least 4 required but received 3"},
      {{"map", res, "--png", out, "--field"}, "--field: 1 required NAME missing"},
      // Numbers that aren't, and numbers out of their range, with the range.
      {{"setup", dir.Path(), "--grid", "ten"}, "--grid: ten is not a whole number"},
      {{"setup", dir.Path(), "--grid", "8.5"}, "--grid: 8.5 is not a whole number"},
      {{"map", res, "--field", "norm", "--png", out, "--magnification", "big"}, "--magnification: big is not a number"},
      {{"synth", dir.File("pictures"), "translation", "3", "two"}, "VALUES: two is not a number"},
      {{"synth", dir.File("pictures"), "neck", "1", "2", "3", "4"}, "VALUES: a field takes at most 3 values, 4 given"},
      {{"pick", res, "--tool", "point", "--field", "norm", "--at", "80,x"}, "--at takes X1,Y1[,X2,Y2], numbers separated by commas, not 80,x"},
      {{"setup", dir.Path(), "--grid", "30"}, "--grid: 30 is out of range (2 to 20)"},
      {{"setup", dir.Path(), "--pattern", "4", "25"}, "--pattern: 4 is out of range (6 to 32)"},
      {{"setup", dir.Path(), "--pattern", "25", "21"}, "--pattern 25 21: the smaller size comes first"},
      {{"flc", res, "--position", "-1"}, "--position: -1 is out of range (0 to 100)"},
      {{"sif", res, "--crack", "1,2,3,4", "--radius", "0"}, "--radius: 0 is out of range (above 0)"},
      {{"synth", dir.File("pictures"), "translation", "--size", "8"}, "--size: 8 is out of range (16 to 8192)"},
      {{"synth", dir.File("pictures"), "translation", "--seed", "-1"}, "--seed: -1 is out of range (0 to 4294967295)"},
      {{"synth", dir.File("pictures"), "translation", "--noise", "-0.5"}, "--noise: -0.5 is out of range (0 or above)"},
      {{"synth", dir.File("pictures"), "sinusoid", "0.5"}, "the sinusoid's PERIOD must be above 0, not 0"},
      // Files that aren't there, and a picture that isn't one.
      {{"export", missing, "--cfr", out}, missing + " not found"},
      {{"setup", dir.File("nowhere")}, dir.File("nowhere") + " not found"},
      {{"setup", dir.Path(), "--ref", "none.bmp"}, dir.File("none.bmp") + " not found"},
      {{"setup", dir.Path(), "--ref", "notes.txt"}, text + " is not a"},
      // Corners given the wrong way round.
      {{"setup", dir.Path(), "--area", "100", "20", "20", "100"}, "--area 100 20 20 100: the corners are reversed"},
      // What a command needs.
      {{"export", res}, "give one of --cfr, --unv, --inp, --vtu and --csv with the file to write"},
      {{"export", res, "--cfr", out, "--unv", out}, "give only one of --cfr, --unv, --inp, --vtu and --csv"},
      {{"setup", dir.Path(), "--data", "job.res"}, "the data file's name must end in .don"},
      {{"sif", res, "--crack", "1,2,3,4"}, "--radius is required"},
      {{"synth", dir.File("pictures"), "spiral"}, "unknown field spiral; the fields are translation U V, strain EXX EYY"},
      {{"synth", dir.File("pictures"), "shear", "0.1", "--format", "jpeg"}, "--format: jpeg is not one of bmp, png16, tiff16"},
  };
  const std::set<std::string> before = Listing(dir.Path());
  for (const Case& c : cases) {
    const Outcome o = RunCommand(c.args);
    EXPECT_EQ(o.status, kUsageError) << c.said;
    EXPECT_TRUE(o.err.starts_with("tessiva-cli: ")) << o.err;
    EXPECT_NE(o.err.find(c.said), std::string::npos) << o.err;
    EXPECT_EQ(o.out, "") << c.said;
  }
  EXPECT_EQ(Listing(dir.Path()), before);
}

TEST(CliRefusals, HelpForTheProgramAndEachCommand) {
  struct Case {
    std::vector<std::string> args;
    std::vector<std::string> named;
  };
  const Case cases[] = {
      {{"--help"}, {"export", "film", "flc", "map", "pick", "setup", "sif", "synth", "tessiva-cli COMMAND --help"}},
      {{"export", "--help"}, {"RESULT", "--cfr", "--unv", "--inp", "--vtu", "--csv", "--show-bad-pattern", "--final-to-initial"}},
      {{"setup", "-h"}, {"DIR", "--ref", "--def", "--data", "--area", "--grid", "--pattern", "--bilinear", "--large-strain"}},
      {{"film", "--help"}, {"SEQUENCE", "--field", "--out", "--selection"}},
      {{"flc", "--help"}, {"INPUT", "--band", "--position", "--side", "--method", "--csv"}},
      {{"map", "--help"}, {"INPUT", "--field", "--png", "--smooth", "--on-final", "--magnification", "--palette", "--show-bad", "--list-fields"}},
      {{"pick", "--help"}, {"INPUT", "--tool", "--at", "--field", "--csv"}},
      {{"sif", "--help"}, {"INPUT", "--crack", "--radius", "--klarg", "--csv"}},
      {{"synth", "--help"}, {"DIR", "FIELD", "[VALUES...]", "--size", "--noise", "--seed", "--format", "neck STRAIN PEAK WIDTH"}},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand(c.args);
    EXPECT_EQ(o.status, kDone) << c.args[0];
    EXPECT_EQ(o.err, "") << c.args[0];
    EXPECT_TRUE(o.out.find("Usage: tessiva-cli " + (c.args.size() > 1 ? c.args[0] : "")) != std::string::npos)
        << o.out;
    for (const std::string& name : c.named) EXPECT_NE(o.out.find(name), std::string::npos) << c.args[0] << ": " << name;
  }
}

}  // namespace
}  // namespace tessiva::cli
