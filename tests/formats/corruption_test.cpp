// Damaged data and area files: a count the stores can't hold or a missing
// picture makes the file unusable, and a file that fails half way keeps what
// came before it consistent. Random damage is the fuzz targets' part.
#include <gtest/gtest.h>

#include <optional>

#include "formats/datafile.h"
#include "formats/sections.h"
#include "formats/setupwindow.h"
#include "formats/sidefiles.h"
#include "setup/areafiles.h"
#include "setup/picturecodecs.h"
#include "state/files.h"
#include "support/picturefiles.h"

namespace tessiva {
namespace {

using testing::SetupWindow;
void ExpectStoresHold(const SetupWindow& w) {
  const AppState& s = w.s;
  EXPECT_TRUE(s.NbBox >= 0 && s.NbBox <= AppState::kMaxAreas + 1) << s.NbBox;
  for (int32_t n : s.Nbox) EXPECT_LE(n, AppState::kMaxVertices);
  EXPECT_TRUE(s.NbStart >= 0 && static_cast<size_t>(s.NbStart) < s.XStart.size()) << s.NbStart;
  EXPECT_EQ(s.StartOk.size(), s.XStart.size());
  EXPECT_LT(static_cast<size_t>(s.CurStart), s.XStart.size());
  EXPECT_EQ(w.ui.busyDepth, 0);
}

TEST(DamagedFiles, AnImpossibleCountOrAMissingPictureMakesTheDataAndAoiFilesUnusable) {
  for (const std::string body :
       {"[OUTLINES]\n  Number=21\n", "[OUTLINES]\n  Number=-2\n", "[OUTLINES]\n  Number=1\n  Nbox1=52\n",
        "[OUTLINES]\n  Number=1\n  Nbox1=-3\n", "[STARTPOINTS]\n  Number=1000\n", "[STARTPOINTS]\n  Number=-3\n",
        "[STARTPOINTS]\n  Number=2147483647\n", "[GAGES]\n  Number=1000\n", "[EXTRA]\n  Number=1000\n",
        // Data files only: a picture name missing, a picture that isn't there.
        "[PICTURES]\n  PicDef=def.bmp\n", "[PICTURES]\n  PicRef=no.bmp\n  PicDef=def.bmp\n"}) {
    SCOPED_TRACE(body);
    SetupWindow w;
    const bool dataOnly = body.starts_with("[PICTURES]");
    w.dir.Write("a.don", dataOnly ? body : testing::kPicturesSection + body);
    w.Member("a.don");
    EXPECT_FALSE(LecDonArea(w.form, 1, false) || LecDonArea(w.form, 2, false));
    EXPECT_EQ(w.Status(), " " + NotRightFormattedMessage(w.dir.File("a.don")));
    ExpectStoresHold(w);
    if (dataOnly) continue;
    w.dir.Write("s-aoi.ini", body);
    EXPECT_FALSE(LecAOI(w.form, "s"));
    EXPECT_EQ(w.Status(), " " + w.dir.File("s-aoi.ini") + " can't be loaded");
    ExpectStoresHold(w);
  }
}

// A data file that fails half way keeps the sections before the one that
// can't be used, each whole: the areas with their count, the grid only with
// its areas, and no start point of a list that was refused.
TEST(DamagedFiles, ADataFileThatFailsHalfWayKeepsWhatCameBeforeConsistent) {
  const std::string areas = "[OUTLINES]\n  Number=1\n  Nbox1=5\n  x1-1=1\n  y1-1=1\n  x1-2=15\n  y1-2=1\n"
                            "  x1-3=15\n  y1-3=11\n  x1-4=1\n  y1-4=11\n  x1-5=1\n  y1-5=1\n"
                            "[PARAMETERS]\n  Lgrid=2\n[MATERIAL]\n  YOUNG=70000\n";
  struct Case {
    const char* what;
    std::string rest;
    bool gridLaid;
  };
  const Case cases[] = {
      {"gauges refused after the areas", "[GAGES]\n  Number=1000\n[STARTPOINTS]\n  Number=1\n  x1=5\n  y1=5\n", false},
      {"start points refused after the grid", "[STARTPOINTS]\n  Number=1000\n  x1=5\n  y1=5\n", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SetupWindow w;
    w.dir.Write("a.don", testing::kPicturesSection + areas + c.rest);
    w.Member("a.don");
    EXPECT_FALSE(LecDonArea(w.form, 1, false));
    EXPECT_EQ(w.Status(), " " + NotRightFormattedMessage(w.dir.File("a.don")));
    EXPECT_EQ(std::tie(w.s.Young, w.s.NbBox, w.s.Nbox[1], w.s.XBox[1][3]), std::make_tuple(70000.0, 2, 5, 15));
    EXPECT_EQ(w.s.NbPat > 0, c.gridLaid);
    EXPECT_EQ(w.form.Gages().Count(), 0);
    EXPECT_EQ(w.s.NbStart, 0);
    ExpectStoresHold(w);
  }
}

// A TIFF or PNG that can't be read, or a deformed one of another size than
// the reference, stops the data file's load with a message naming it; what
// was loaded before stays consistent.
TEST(DamagedFiles, APictureThatCantBeReadStopsTheLoadNamingIt) {
  using testing::BadPicture;
  struct Case {
    const char* name;
    std::string ref, def;  // the pictures the data file names; the faulty one is made below
    std::optional<BadPicture> damage;
  };
  const Case cases[] = {
      {"truncated TIFF", "bad.tif", "def.bmp", BadPicture::kTruncatedTiff},
      {"PNG with a bad checksum", "ref.bmp", "bad.png", BadPicture::kPngBadChecksum},
      {"32-bit float TIFF", "bad.tif", "def.bmp", BadPicture::kFloatTiff},
      {"deformed picture of another size", "ref.tif", "bad.tif", std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    SetupWindow w;
    const std::string bad = w.dir.File(c.ref.starts_with("bad") ? c.ref : c.def);
    std::string fault = "is 12 x 12 pixels, but the reference picture is 16 x 12";
    if (c.damage) {
      fault = testing::WriteBadPicture(bad, *c.damage, 16, 12);
    } else {
      ASSERT_TRUE(WriteGreyTiff16(w.dir.File("ref.tif"), 16, 12, std::vector<uint16_t>(16 * 12, 7000)));
      ASSERT_TRUE(WriteGreyTiff16(bad, 12, 12, std::vector<uint16_t>(12 * 12, 7000)));
    }
    const std::string before = w.dir.Read(FileNameOf(bad));
    w.dir.Write("a.don", "[PICTURES]\n  PicRef=" + c.ref + "\n  PicDef=" + c.def + "\n");
    w.Member("a.don");
    EXPECT_FALSE(LecDonArea(w.form, 1, false));
    EXPECT_NE(w.Status().find("picture " + bad + " " + fault), std::string::npos) << w.Status();
    EXPECT_EQ(w.dir.Read(FileNameOf(bad)), before);
    ExpectStoresHold(w);
  }
}

}  // namespace
}  // namespace tessiva
