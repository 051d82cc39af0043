// tessiva-cli map: the colours of written maps against linear fields, one
// picture per member of a sequence, and bad input that writes nothing.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sstream>

#include "commands.h"
#include "run.h"
#include "mapcommand.h"
#include "results/palette.h"
#include "setup/picture.h"
#include "state/files.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"
#if TESSIVA_CLI_MAPS
#include <QImage>
#endif

namespace tessiva::cli {
namespace {

using tessiva::testing::Displacement;
using tessiva::testing::DisplacementField;

#if !TESSIVA_CLI_MAPS

TEST(Map, ABuildWithoutQtSaysItHasNoPictureOutput) {
  const Outcome o = RunCommand({"map", "r.res", "--field", "norm", "--png", "r.png"});
  EXPECT_EQ(o.status, kFailed);
  EXPECT_NE(o.err.find("has no picture output"), std::string::npos) << o.err;
}

#else

constexpr int kSide = 256;
constexpr int32_t kGrey = 128;
// Patterns every 10 pixels, centres 60..160: the mesh's corners, where the
// ranges are taken, lie half a cell further out, from 55 to 165.
constexpr int32_t kFirst = 60, kCount = 11, kStep = 10;
constexpr double kLow = kFirst - kStep / 2.0, kHigh = kFirst + (kCount - 1) * kStep + kStep / 2.0;

class Map : public ::testing::Test {
 protected:
  Map() {
    EXPECT_TRUE(SaveGreyBmp(dir.File("ref.bmp"), kSide, kSide, std::vector<uint8_t>(kSide * kSide, kGrey)));
    EXPECT_TRUE(SaveGreyBmp(dir.File("def.bmp"), kSide, kSide, std::vector<uint8_t>(kSide * kSide, kGrey)));
  }

  std::string WriteResult(const std::string& name, const DisplacementField& field,
                          const std::string& picture = "ref.bmp") {
    tessiva::testing::ResultHead head;
    head.picRef = picture;
    head.lima = head.hima = kSide;
    head.lpatMin = head.lpatMax = head.lgrid = kStep;
    return WriteResultFile(dir.File(name), head,
                           tessiva::testing::GridPatterns(field, kFirst, kFirst, kCount, kCount, kStep, kStep));
  }

  // The map's pixel (x, y) in the written picture, where the map stands at the top left.
  static QRgb MapPixel(const QImage& picture, int x, int y) { return picture.pixel(x, y) & 0xFFFFFFu; }

  tessiva::testing::TempDir dir;
};

// The palette's colour of `value` in [min, max], give or take one colour step.
void ExpectColourOf(QRgb pixel, double value, double min, double max, int palette, const std::string& where) {
  const ColourScale scale;
  bool found = false;
  for (const int step : {-1, 0, 1}) {
    double t = (value - min) / (max - min) + step / double(scale.NbCouleurs());
    found = found || scale.CouleurEchelle(t, palette) == pixel;
  }
  EXPECT_TRUE(found) << where << ": pixel " << std::hex << pixel << std::dec << " isn't the colour of " << value
                     << " in [" << min << ", " << max << "]";
}

// Smoothed 10 x 10 a pattern, the map gives each pixel the field's value there,
// within half a pixel; on the final picture the value of the point that moved there.
TEST_F(Map, EachPixelTakesThePaletteColourOfTheFieldValueThere) {
  struct Case {
    const char* name;
    std::string field;
    std::vector<std::string> options;
    DisplacementField displacement;
    // The value shown at map pixel (x, y), and the range of the map.
    std::function<double(double x, double y)> truth;
    double min, max;
    int palette;
  };
  const auto u = [](double x, double) { return 0.02 * x; };
  const auto v = [](double, double y) { return -0.03 * y; };
  // u = 6 + 0.02 x: the point x moves to X = 6 + 1.02 x.
  const auto shifted = [](double x, double) { return 6 + 0.02 * x; };
  const auto before = [](double x) { return (x - 6) / 1.02; };
  const Case cases[] = {
      {"u = 0.02 x", "1 DISPLACEMENT", {}, [&](double x, double y) { return Displacement{u(x, y), 0}; }, u,
       u(kLow, 0), u(kHigh, 0), kClassicalPalette},
      {"v = -0.03 y in grey levels", "2 displacement", {"--palette", "1"},
       [&](double x, double y) { return Displacement{0, v(x, y)}; }, v, v(0, kHigh), v(0, kLow), kGreyPalette},
      {"moved by u = 6 + 0.02 x", "1 displacement", {"--on-final"},
       [&](double x, double y) { return Displacement{shifted(x, y), 0}; },
       [&](double x, double y) { return shifted(before(x), y); }, shifted(kLow, 0), shifted(kHigh, 0),
       kClassicalPalette},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<std::string> args{"map", WriteResult("linear.res", c.displacement), "--field", c.field, "--png",
                                  dir.File("map.png"), "--smooth", "10"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const Outcome o = RunCommand(args);
    ASSERT_EQ(o.status, kDone) << o.err;
    EXPECT_EQ(o.out, dir.File("map.png") + " written\n");
    const QImage picture(QString::fromStdString(dir.File("map.png")));
    ASSERT_FALSE(picture.isNull());
    for (const auto& [x, y] : {std::pair{70, 71}, {100, 100}, {133, 152}, {157, 64}})
      ExpectColourOf(MapPixel(picture, x, y), c.truth(x, y), c.min, c.max, c.palette,
                     std::to_string(x) + ", " + std::to_string(y));
    EXPECT_EQ(MapPixel(picture, 20, 20), qRgb(kGrey, kGrey, kGrey) & 0xFFFFFFu) << "the picture under the map";
  }
}

// A picture that can't be read: the map stands on a blank picture of the
// result's size, said on standard error; without that size it isn't painted.
TEST_F(Map, BadInputFailsAndWritesNothing) {
  const auto u = [](double x, double) { return Displacement{0.02 * x, 0}; };
  const std::string good = WriteResult("good.res", u);
  const std::string pictureless = WriteResult("gone.res", u, "gone.bmp");
  dir.Write("file", "not a directory");
  dir.Write("bad.seq", "good.don\nmissing.don\n");
  const std::string png = dir.File("out.png");
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string said;
  };
  const Case cases[] = {
      {{"map", dir.File("missing.res"), "--field", "norm", "--png", png}, kUsageError, "missing.res not found"},
      {{"map", good, "--field", "strain", "--png", png}, kUsageError, "unknown field strain; the fields are:\n  1 displacement\n"},
      {{"map", good, "--field", "norm", "--png", png, "--smooth", "11"}, kUsageError, "--smooth: 11 is out of range (1 to 10)"},
      {{"map", good, "--field", "norm", "--png", png, "--palette", "3"}, kUsageError, "--palette: 3 is out of range (0 to 2)"},
      {{"map", good, "--field", "norm"}, kUsageError, "give the picture to write with --png OUT"},
      {{"map", "--list-fields", good}, kUsageError, "--list-fields takes no other argument"},
      {{"map", good, "--field", "norm", "--png", dir.File("none/out.png")}, kFailed, "could not be written"},
      {{"map", pictureless, "--field", "norm", "--png", png}, kFailed, "No map of " + pictureless + " is made: picture " + dir.File("gone.bmp") + " not found"},
      {{"map", good, "--field", "FLC Determination", "--png", png}, kFailed, "not available with this results file"},
      {{"map", dir.File("bad.seq"), "--field", "norm", "--png", dir.File("maps")}, kFailed, "missing.res"},
      {{"map", dir.File("bad.seq"), "--field", "norm", "--png", dir.File("file")}, kFailed, "could not be made"},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand(c.args);
    EXPECT_EQ(o.status, c.status) << c.said;
    EXPECT_NE(o.err.find(c.said), std::string::npos) << o.err;
    EXPECT_EQ(o.out, "") << c.said;
  }
  EXPECT_FALSE(std::filesystem::exists(png));
  EXPECT_FALSE(std::filesystem::exists(dir.File("none")));
  EXPECT_FALSE(std::filesystem::exists(dir.File("maps"))) << "a sequence with a bad member";
  EXPECT_EQ(dir.Read("file"), "not a directory");
  const Outcome list = RunCommand({"map", "--list-fields"});
  EXPECT_EQ(list.status, kDone);
  EXPECT_TRUE(list.out.starts_with("1 displacement\n2 displacement\nNorm\n")) << list.out;
  EXPECT_EQ(list.out.find("---"), std::string::npos) << "rules aren't fields";
}

// Each member is painted with its own range: u rising in one, falling in the other.
TEST_F(Map, ASequenceWritesOnePicturePerMemberNamedAfterIt) {
  WriteResult("rise.res", [](double x, double) { return Displacement{0.02 * x, 0}; });
  WriteResult("fall.res", [](double x, double) { return Displacement{-0.02 * x, 0}; });
  const std::string maps = dir.File("maps/u");
  const Outcome o = RunCommand({"map", dir.Write("test.seq", "rise.don\nfall.don\n"), "--field", "1 displacement",
                                "--png", maps, "--smooth", "10"});
  ASSERT_EQ(o.status, kDone) << o.err;
  EXPECT_EQ(o.out, "2 maps written in " + maps + "\n");
  std::vector<std::string> written;
  for (const auto& entry : std::filesystem::directory_iterator(maps)) written.push_back(entry.path().filename());
  std::sort(written.begin(), written.end());
  EXPECT_EQ(written, (std::vector<std::string>{"fall-1_displacement.png", "rise-1_displacement.png"}));
  const QImage rise(QString::fromStdString(JoinPath(maps, "rise-1_displacement.png")));
  const QImage fall(QString::fromStdString(JoinPath(maps, "fall-1_displacement.png")));
  ExpectColourOf(MapPixel(rise, 70, 100), 0.02 * 70, 0.02 * kLow, 0.02 * kHigh, kClassicalPalette, "rise");
  ExpectColourOf(MapPixel(fall, 70, 100), -0.02 * 70, -0.02 * kHigh, -0.02 * kLow, kClassicalPalette, "fall");

  struct Name {
    const char *result, *field, *picture;
  };
  for (const Name& n : {Name{"r1.res", "Teta(1,I)", "r1-Teta_1_I.png"},
                        Name{"a.b.res", "Epsilon III=-(EI+EII)", "a.b-Epsilon_III_-_EI_EII.png"}})
    EXPECT_EQ(MemberPictureName(n.result, n.field), n.picture);
}

#endif

}  // namespace
}  // namespace tessiva::cli
