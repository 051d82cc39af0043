// The solver against ground truth: synthetic speckle pictures with a known
// field, a data file made by the setup engine, the job run, and the result
// read back through the analysis (reader, mesh, strains).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <cstdlib>
#include <sstream>

#include "job.h"
#include "runner.h"
#include "setup/picture.h"
#include "support/picturefiles.h"
#include "solver/synthetic_job.h"
#include "formats/seqfile.h"
#include "state/files.h"

namespace tessiva {
namespace {

using synth::FieldKind;
using synth::FieldSpec;
using testing::JobSetup;
using testing::ResultView;
using testing::TempDir;

synth::SpeckleSettings Pictures(int32_t size, double noise = 0.0) {
  synth::SpeckleSettings st;
  st.width = st.height = size;
  st.noiseSigma = noise;
  return st;
}

// Pictures and data file "job.don" in `dir`, the job solved and its result read.
void SolveAndRead(const TempDir& dir, const synth::SpeckleSettings& st, const FieldSpec& field, const JobSetup& job,
                  ResultView& view, int32_t threads = 2) {
  ASSERT_TRUE(synth::WriteSyntheticPair(dir.Path(), st, field));
  testing::MakeDataFile(dir.Path(), "job.don", job);
  const solver::JobOutcome outcome = solver::RunDataFile(dir.Path(), "job.don", {threads});
  ASSERT_TRUE(outcome.ok) << outcome.message;
  ASSERT_TRUE(view.Read(dir.Path(), dir.File("job.res")));
}

int32_t GoodPatterns(const AppState& s) {
  int32_t good = 0;
  for (int32_t i = 1; i <= s.NbPat; ++i) good += s.FlagPat[i] == -1 ? 1 : 0;
  return good;
}

// The largest displacement error of the good patterns against the true field.
double LargestPatternError(const AppState& s, const FieldSpec& field) {
  double largest = 0.0;
  for (int32_t i = 1; i <= s.NbPat; ++i) {
    if (s.FlagPat[i] != -1) continue;
    const synth::Vec2 d = synth::Displacement(field, s.XPat[i], s.YPat[i]);
    largest = std::max({largest, std::abs(s.D1Pat[i] - d.u), std::abs(s.D2Pat[i] - d.v)});
  }
  return largest;
}

// Fields the first-order warp holds exactly: every pattern finds the true
// displacement, with no bias over the mesh.
TEST(SolverGroundTruth, AffineFieldsAreFoundWithoutBiasAtEveryPattern) {
  struct Case {
    const char* name;
    FieldSpec field;
    int32_t size = 160;
    int32_t interpolation = 1;
    double meanError = 0.005, largestError = 0.02;  // pixels
  };
  auto centred = [](FieldSpec f, double centre) {
    f.cx = f.cy = centre;
    return f;
  };
  const Case cases[] = {
      {"translation 0.2, 0", {FieldKind::Translation, 0.2, 0.0}},
      {"translation 0.5, -0.3", {FieldKind::Translation, 0.5, -0.3}},
      {"translation -0.75, 0.6", {FieldKind::Translation, -0.75, 0.6}},
      {"translation 2.9, 1.1", {FieldKind::Translation, 2.9, 1.1}},
      // Bilinear sampling carries a bias of its own between the pixels.
      {"translation 0.3, -0.6, bilinear", {FieldKind::Translation, 0.3, -0.6}, 128, 0, 0.015, 0.05},
      {"simple shear 0.02", centred({FieldKind::SimpleShear, 0.02}, 64), 128},
      {"rotation by 2 degrees", centred({FieldKind::Rotation, 2.0}, 64), 128},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    ResultView view;
    JobSetup job;
    job.interpolation = c.interpolation;
    if (c.field.kind != FieldKind::Translation) job.startDisplacement = std::pair{0, 0};  // the centre stays
    SolveAndRead(dir, Pictures(c.size), c.field, job, view);
    const AppState& s = view.s;
    ASSERT_GT(s.NbPat, 40);
    EXPECT_EQ(GoodPatterns(s), s.NbPat) << "a well-textured area has no bad pattern";
    EXPECT_LE(LargestPatternError(s, c.field), c.largestError);
    double sumU = 0, sumV = 0;
    int32_t nodes = 0;
    for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
      const MeshNode& node = s.Noeuds[n];
      if (!node.Valide) continue;
      const synth::Vec2 d = synth::Displacement(c.field, node.X, node.Y);
      sumU += node.U - d.u;
      sumV += node.V - d.v;
      ++nodes;
    }
    ASSERT_GT(nodes, 40);
    EXPECT_LE(std::abs(sumU / nodes), c.meanError);
    EXPECT_LE(std::abs(sumV / nodes), c.meanError);
  }
}

TEST(SolverGroundTruth, UniformStretchGivesItsStrainAtEveryNode) {
  struct Case {
    const char* name;
    double exx;
    int32_t largeStrain;
    double tolerance;           // of the mean strain, percent
    double largestStrainError;  // at any inner node, percent
  };
  const Case cases[] = {{"2 %", 0.02, 0, 0.02, 0.1}, {"60 % with LargeStrain", 0.60, 1, 0.5, 0.25}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    ResultView view;
    JobSetup job;
    job.largeStrain = c.largeStrain;
    job.area = JobSetup::Corners{60, 60, 132, 132};
    job.startDisplacement = std::pair{0, 0};  // the field's centre stays
    FieldSpec field{FieldKind::UniformStrain, c.exx, 0.0};
    field.cx = field.cy = 96;
    SolveAndRead(dir, Pictures(192), field, job, view);
    const AppState& s = view.s;
    EXPECT_EQ(GoodPatterns(s), s.NbPat);
    const double e11 = ((1 + c.exx) * (1 + c.exx) - 1) / 2 * 100;  // Green-Lagrange, percent
    double sumE11 = 0, sumE22 = 0, largestE = 0;
    int32_t nodes = 0;
    for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
      const MeshNode& node = s.Noeuds[n];
      if (!node.Valide || node.Nval < 4) continue;  // inner nodes: averaged over four cells
      EXPECT_NEAR(node.U, c.exx * (node.X - 96), 0.01) << node.X << ", " << node.Y;
      EXPECT_NEAR(node.V, 0.0, 0.01) << node.X << ", " << node.Y;
      sumE11 += node.E11;
      sumE22 += node.E22;
      largestE = std::max({largestE, std::abs(node.E11 - e11), std::abs(node.E22)});
      ++nodes;
    }
    ASSERT_GT(nodes, 20);
    EXPECT_NEAR(sumE11 / nodes, e11, c.tolerance);
    EXPECT_NEAR(sumE22 / nodes, 0.0, c.tolerance);
    EXPECT_LE(largestE, c.largestStrainError);
    EXPECT_LE(LargestPatternError(s, field), 0.02);
  }
}

#ifdef TESSIVA_SOLVER_PATH
// The real program on all cores gives what one thread of the library gives.
TEST(SolverProgram, RunsEntreDatAndMatchesOneThread) {
  TempDir dir;
  ASSERT_TRUE(synth::WriteSyntheticPair(dir.Path(), Pictures(160, 2.0), {FieldKind::Rotation, 1.5}));
  JobSetup job;
  job.startDisplacement = std::pair{0, 0};
  testing::MakeDataFile(dir.Path(), "job.don", job);
  ASSERT_TRUE(solver::RunDataFile(dir.Path(), "job.don", {1}).ok);
  ResultView single;
  ASSERT_TRUE(single.Read(dir.Path(), dir.File("job.res")));
  dir.Write("entre.dat", "job.don\n");
  const std::string command = std::string("\"") + TESSIVA_SOLVER_PATH + "\" \"" + dir.Path() + "\" \"" + dir.Path() +
                              "\" > \"" + dir.File("out.txt") + "\"";
  ASSERT_EQ(std::system(command.c_str()), 0) << dir.Read("out.txt");
  EXPECT_NE(dir.Read("out.txt").find("file 1 of 1"), std::string::npos);
  ResultView all;
  ASSERT_TRUE(all.Read(dir.Path(), dir.File("job.res")));
  ASSERT_EQ(all.s.NbPat, single.s.NbPat);
  for (int32_t i = 1; i <= all.s.NbPat; ++i) {
    EXPECT_EQ(all.s.FlagPat[i], single.s.FlagPat[i]);
    EXPECT_NEAR(all.s.D1Pat[i], single.s.D1Pat[i], 1e-4);
    EXPECT_NEAR(all.s.D2Pat[i], single.s.D2Pat[i], 1e-4);
  }
}
#endif

// An incremental sequence of three pictures stretched by 1 % then 2.5 %: the
// second member correlates pictures 1 and 2 and writes the displacement from
// picture 0 at picture 0's pattern positions, shown over picture 0.
TEST(SolverSequences, IncrementalMembersAccumulateFromTheFirstPicture) {
  TempDir dir;
  synth::SpeckleSettings st = Pictures(160);
  const synth::Speckle speckle(st);
  const double strains[] = {0.0, 0.01, 0.025};
  for (int i = 0; i < 3; ++i) {
    FieldSpec field{FieldKind::UniformStrain, strains[i], 0.0};
    field.cx = field.cy = 80;
    ASSERT_TRUE(SaveGreyBmp(dir.File("p" + std::to_string(i) + ".bmp"), 160, 160,
                            synth::Render(speckle, st, i == 0 ? nullptr : &field, 3)));
  }
  AppState s;
  std::tie(s.NbSeq, s.SeqRefChange, s.FileName, s.PicRefPath, s.PicRefName) =
      std::tuple(2, 1, dir.File("p0-p2-I.seq"), dir.File("p0.bmp"), "p0.bmp");
  SequenceMembers members;
  members.FicDefText = {"", "p1.bmp", "p2.bmp"};
  members.FicDefTag = {"", dir.File("p1.bmp"), dir.File("p2.bmp")};
  ASSERT_TRUE(SauveSeq(s, members));
  JobSetup first;
  std::tie(first.ref, first.def, first.startDisplacement) = std::tuple("p0.bmp", "p1.bmp", std::pair{0, 0});
  testing::MakeDataFile(dir.Path(), "p0-p1.don", first);
  dir.Write("entre.dat", "p0-p2-I.seq\n");
  std::ostringstream out;
  ASSERT_EQ(solver::RunJobs(dir.Path(), {2}, out), 0) << out.str();
  EXPECT_NE(out.str().find("file 2 of 2"), std::string::npos) << out.str();

  ResultView firstResult, second;
  ASSERT_TRUE(firstResult.Read(dir.Path(), dir.File("p0-p1.res")));
  ASSERT_TRUE(second.Read(dir.Path(), dir.File("p1-p2.res")));
  EXPECT_NE(dir.Read("p1-p2.res").find("PicAna=p0.bmp"), std::string::npos);
  ASSERT_EQ(second.s.NbPat, firstResult.s.NbPat);
  EXPECT_EQ(GoodPatterns(second.s), second.s.NbPat);
  for (int32_t i = 1; i <= second.s.NbPat; ++i) {
    EXPECT_EQ(second.s.XPat[i], firstResult.s.XPat[i]);
    EXPECT_NEAR(second.s.D1Pat[i], 0.025 * (second.s.XPat[i] - 80), 0.01) << i;
    EXPECT_NEAR(second.s.D2Pat[i], 0.0, 0.01) << i;
  }
}

// Each bad job is skipped with a message naming its file, leaves no result,
// and the good job beside it is still solved.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

// A picture file whose header says `width` x `height` over the pixels of `source`.
std::string WithSize(std::string bmp, int32_t width, int32_t height) {
  for (int i = 0; i < 4; ++i) {
    bmp[18 + i] = static_cast<char>((static_cast<uint32_t>(width) >> (8 * i)) & 0xFF);
    bmp[22 + i] = static_cast<char>((static_cast<uint32_t>(height) >> (8 * i)) & 0xFF);
  }
  return bmp;
}

TEST(SolverJobs, BadInputSkipsThatJobOnlyAndLeavesEveryFileAsItWas) {
  struct Case {
    const char* name;
    std::string data;      // the bad data file, "" for an unreadable entre.dat
    std::string expected;  // text of the message
    // Writes the bad data file (and what it names) from the good one's text.
    std::function<void(const TempDir&, const std::string& good)> make;
  };
  const auto faulty = [](const std::string& from, const std::string& to, const std::string& file) {
    return [=](const TempDir& dir, const std::string& good) { dir.Write(file, Replaced(good, from, to)); };
  };
  const auto picture = [](int32_t width, int32_t height) {
    return [=](const TempDir& dir, const std::string& good) {
      dir.Write("odd.bmp", WithSize(dir.Read("ref.bmp"), width, height));
      dir.Write("odd.don", Replaced(good, "PicRef=ref.bmp", "PicRef=odd.bmp"));
    };
  };
  // A TIFF or PNG in place of the deformed picture.
  const auto coded = [](const std::string& name, const std::function<void(const std::string&)>& write) {
    return [=](const TempDir& dir, const std::string& good) {
      write(dir.File(name));
      dir.Write("odd.don", Replaced(good, "PicDef=def.bmp", "PicDef=" + name));
    };
  };
  const auto damaged = [](testing::BadPicture kind) {
    return [kind](const std::string& path) { testing::WriteBadPicture(path, kind, 160, 160); };
  };
  const Case cases[] = {
      {"missing picture", "gone.don", "gone.bmp", faulty("PicDef=def.bmp", "PicDef=gone.bmp", "gone.don")},
      {"a truncated TIFF", "odd.don", "odd.tif is damaged or cut short",
       coded("odd.tif", damaged(testing::BadPicture::kTruncatedTiff))},
      {"a PNG with a bad checksum", "odd.don", "odd.png is damaged or cut short (libpng: IDAT: CRC error)",
       coded("odd.png", damaged(testing::BadPicture::kPngBadChecksum))},
      {"a 32-bit float TIFF", "odd.don", "odd.tif is a TIFF of 32-bit floating-point levels",
       coded("odd.tif", damaged(testing::BadPicture::kFloatTiff))},
      {"a deformed picture of another size", "odd.don", "odd.tif is 160 x 150 pixels, but the reference picture",
       coded("odd.tif",
             [](const std::string& path) { WriteGreyTiff16(path, 160, 150, std::vector<uint16_t>(160 * 150, 9000)); })},
      // Levels 257 times those of an 8-bit picture are as flat.
      {"a start point on a blank 16-bit region", "odd.don", "odd.don",
       [](const TempDir& dir, const std::string& good) {
         const std::vector<uint16_t> flat(160 * 160, 90 * 257);
         ASSERT_TRUE(WriteGreyPng16(dir.File("flat.png"), 160, 160, flat));
         dir.Write("odd.don", Replaced(Replaced(good, "ref.bmp", "flat.png"), "def.bmp", "flat.png"));
       }},
      {"no start point", "nostart.don", "nostart.don",
       [](const TempDir& dir, const std::string&) {
         JobSetup bad;
         bad.withStart = false;
         testing::MakeDataFile(dir.Path(), "nostart.don", bad);
       }},
      {"start point on a blank region", "blank.don", "blank.don",
       [](const TempDir& dir, const std::string& good) {
         ASSERT_TRUE(SaveGreyBmp(dir.File("flat.bmp"), 160, 160, std::vector<uint8_t>(160 * 160, 90)));
         dir.Write("blank.don", Replaced(Replaced(good, "ref.bmp", "flat.bmp"), "def.bmp", "flat.bmp"));
       }},
      {"missing data file", "absent.don", "absent.don", nullptr},
      {"unreadable entre.dat", "", "entre.dat", nullptr},
      {"start point beyond 32 bits", "far.don", "start point 1 at (-2147483648, ",
       [](const TempDir& dir, const std::string& good) {
         const size_t at = good.find("  x1=");
         dir.Write("far.don", good.substr(0, at) + "  x1=-2147483648\n" + good.substr(good.find('\n', at) + 1));
       }},
      {"a header claiming more pixels than the file holds", "odd.don", "odd.bmp is cut short", picture(32768, 2048)},
      {"a picture stored top-down", "odd.don", "odd.bmp stores its rows from the top down", picture(160, -160)},
      {"a result given as data", "copy.res", "written over the data file itself",
       [](const TempDir& dir, const std::string& good) { dir.Write("copy.res", good); }},
      {"a directory as the previous result", "next.don", "next.don",
       [](const TempDir& dir, const std::string& good) {
         dir.Write("next.don", good + "[INCREMENTAL]\n  ResultFrom=.\n");
       }},
      {"the previous result as this member's result", "loop.don", "written over its previous result",
       [](const TempDir& dir, const std::string& good) {
         dir.Write("loop.res", "[RESULTS]\n");
         dir.Write("loop.don", good + "[INCREMENTAL]\n  ResultFrom=loop.res\n");
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    ASSERT_TRUE(synth::WriteSyntheticPair(dir.Path(), Pictures(160), {FieldKind::Translation, 1.0, 0.0}));
    testing::MakeDataFile(dir.Path(), "good.don", JobSetup{});
    if (c.make) c.make(dir, dir.Read("good.don"));
    const std::string before = c.data.empty() ? "" : dir.Read(c.data);
    const std::string resultBefore = c.data.empty() ? "" : dir.Read(Stem(c.data) + ".res");
    if (!c.data.empty()) dir.Write("entre.dat", c.data + "\ngood.don\n");
    std::ostringstream out;
    EXPECT_EQ(solver::RunJobs(dir.Path(), {2}, out), 1);
    EXPECT_NE(out.str().find(c.expected), std::string::npos) << out.str();
    if (c.data.empty()) continue;
    EXPECT_EQ(dir.Read(c.data), before) << "the data file is untouched";
    EXPECT_EQ(dir.Read(Stem(c.data) + ".res"), resultBefore) << "no result is written";
    EXPECT_NE(out.str().find("1 of 2 jobs solved"), std::string::npos) << out.str();
  }
}

}  // namespace
}  // namespace tessiva
