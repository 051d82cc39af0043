// tessiva-cli film: one composed picture per member of a sequence, the stored
// selection replayed on each, and refusals that write nothing.

#include <gtest/gtest.h>

#include <filesystem>

#include "analysis/analysisfiles.h"
#include "analysis/pickrows.h"
#include "commands.h"
#include "run.h"
#include "setup/picture.h"
#include "state/colour.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"
#if TESSIVA_CLI_MAPS
#include <QImage>
#endif

namespace tessiva::cli {
namespace {

using tessiva::testing::Displacement;

#if TESSIVA_CLI_MAPS

constexpr int kSide = 256;

// The directory the command runs in, where correl.ini and the stored selections are.
class InDirectory {
 public:
  explicit InDirectory(const std::string& dir) : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(dir);
  }
  ~InDirectory() { std::filesystem::current_path(before_); }
  InDirectory(const InDirectory&) = delete;
  InDirectory& operator=(const InDirectory&) = delete;

 private:
  std::filesystem::path before_;
};

class Film : public ::testing::Test {
 protected:
  // Members m1, m2, m3 of test.seq: u = k x / 100 for member k.
  Film() {
    EXPECT_TRUE(SaveGreyBmp(dir.File("ref.bmp"), kSide, kSide, std::vector<uint8_t>(kSide * kSide, 128)));
    EXPECT_TRUE(SaveGreyBmp(dir.File("def.bmp"), kSide, kSide, std::vector<uint8_t>(kSide * kSide, 128)));
    for (int k = 1; k <= 3; ++k) {
      tessiva::testing::ResultHead head;
      head.lima = head.hima = kSide;
      head.lpatMin = head.lpatMax = head.lgrid = 10;
      const auto u = [k](double x, double) { return Displacement{k * x / 100.0, 0}; };
      tessiva::testing::WriteResultFile(dir.File("m" + std::to_string(k) + ".res"), head,
                                        tessiva::testing::GridPatterns(u, 60, 60, 11, 11, 10, 10));
    }
    sequence = dir.Write("test.seq", "m1.don\nm2.don\nm3.don\n");
  }

  tessiva::testing::TempDir dir;
  std::string sequence;
};

TEST_F(Film, EachMemberGivesOneComposedPictureUnderItsDefaultName) {
  const std::string frames = dir.File("frames");
  const Outcome o = RunCommand({"film", sequence, "--field", "1 DISPLACEMENT", "--out", frames});
  ASSERT_EQ(o.status, kDone) << o.err;
  for (int k = 1; k <= 3; ++k) {
    const std::string path = frames + "/m" + std::to_string(k) + "-1 displacement.png";
    EXPECT_NE(o.out.find(path + " written\n"), std::string::npos) << o.out;
    const QImage picture(QString::fromStdString(path));
    ASSERT_FALSE(picture.isNull()) << path;
    // The map less its frame band, the legend of 318 x 71 below it, which is wider.
    EXPECT_EQ(picture.width(), 318);
    EXPECT_EQ(picture.height(), kSide - 4 + 71);
    // The axes' picture, light yellow, stands over the map's corner.
    EXPECT_EQ(picture.pixel(2, 40) & 0xFFFFFFu, 0xFFFFC0u);
    // The legend is black on white: its frame's right end past the bar's labels is white.
    EXPECT_EQ(picture.pixel(317, picture.height() - 1) & 0xFFFFFFu, 0xFFFFFFu);
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(frames), {}), 3) << "nothing else is left there";
}

TEST_F(Film, AStoredSelectionIsReplayedOnEveryMember) {
  AppState stored;
  stored.StartDir = dir.Path();
  SelectionArea point;
  point.NboxAOS = kAosPoint;
  point.XAOS = {0.0, 110.0};
  point.YAOS = {0.0, 100.0};
  ASSERT_TRUE(SauveAOS(stored, point, GageStore{}, "spot"));
  dir.Write("correl.ini", "[PATH]\nExePath=solver\n[AOS]\nNUMBEROFAOS=1\nNAME1=spot\n");
  const std::string frames = dir.File("frames");
  const InDirectory here(dir.Path());
  const Outcome o = RunCommand({"film", sequence, "--field", "norm", "--out", frames, "--selection", "spot"});
  ASSERT_EQ(o.status, kDone) << o.err;
  for (int k = 1; k <= 3; ++k) {
    const QImage picture(QString::fromStdString(frames + "/m" + std::to_string(k) + "-Norm.png"));
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.pixel(110, 100) & 0xFFFFFFu, QBColor(12)) << "member " << k << " shows the point";
  }
  EXPECT_FALSE(std::filesystem::exists(dir.File("temp-AOS.ini"))) << "the working copy stays out of the user's directory";
}

TEST_F(Film, RefusalsSayWhyAndWriteNothing) {
  const std::string frames = dir.File("frames");
  dir.Write("gap.seq", "m1.don\nmissing.don\n");
  dir.Write("file", "not a directory");
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string said;
  };
  const Case cases[] = {
      {{"film", sequence, "--field", "strain", "--out", frames}, kUsageError, "unknown field strain"},
      {{"film", sequence, "--field", "norm", "--out", frames, "--selection", "nope"}, kFailed,
       "unknown selection nope; the stored selections are: none"},
      {{"film", dir.File("gap.seq"), "--field", "norm", "--out", frames}, kFailed, "missing.res of"},
      {{"film", sequence, "--field", "norm", "--out", dir.File("file")}, kFailed, "can't be written"},
      {{"film", sequence, "--field", "norm"}, kUsageError, "--out"},
  };
  for (const Case& c : cases) {
    const Outcome o = RunCommand(c.args);
    EXPECT_EQ(o.status, c.status) << c.said;
    EXPECT_NE(o.err.find(c.said), std::string::npos) << o.err;
    EXPECT_EQ(o.out, "") << c.said;
  }
  EXPECT_FALSE(std::filesystem::exists(frames));
  EXPECT_EQ(dir.Read("file"), "not a directory");
}

#else

TEST(Film, ABuildWithoutQtSaysItHasNoPictureOutput) {
  const Outcome o = RunCommand({"film", "s.seq", "--field", "norm", "--out", "d"});
  EXPECT_NE(o.status, kDone);
}

#endif

}  // namespace
}  // namespace tessiva::cli
