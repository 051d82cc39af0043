// Every reader of the formats meets damaged files: truncated, with random bytes,
// absurd numbers or whole sections missing. None may crash, overflow a store or
// write any file; a count the stores can't hold makes the file unusable.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <random>

#include "analysis/analysisfiles.h"
#include "formats/datafile.h"
#include "formats/sections.h"
#include "formats/seqfile.h"
#include "formats/setupwindow.h"
#include "formats/sidefiles.h"
#include "setup/areafiles.h"

namespace tessiva {
namespace {

using testing::SetupWindow;
using Rng = std::mt19937;

int Pick(Rng& rng, int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }
size_t PlaceIn(const std::string& t, Rng& r) { return static_cast<size_t>(Pick(r, 0, static_cast<int>(t.size()) - 1)); }

// The damages a disk or a hand editor causes; each is given a text that isn't empty.
const std::function<void(std::string&, Rng&)> kDamages[] = {
    [](std::string& t, Rng& r) { t.resize(PlaceIn(t, r)); },
    [](std::string& t, Rng& r) {  // bytes overwritten, half of them with ones the key syntax gives a meaning
      static const char kTelling[] = {'\0', '\r', '\n', '[', ']', '=', ';', '-', ' ', '\xff'};
      for (int n = Pick(r, 1, 8); n > 0; --n)
        t[PlaceIn(t, r)] = Pick(r, 0, 1) ? kTelling[Pick(r, 0, 9)] : static_cast<char>(Pick(r, 0, 255));
    },
    [](std::string& t, Rng& r) {  // the number at or after a random place made absurd
      static const char* const kAbsurd[] = {"99999999999999", "2147483647", "-2147483648", "1000", "-1",
                                            "52",             "21",         "0",           "-20000", "-10000"};
      const size_t at = t.find_first_of("0123456789", PlaceIn(t, r));
      if (at != std::string::npos)
        t.replace(at, std::min(t.find_first_not_of("0123456789", at), t.size()) - at, kAbsurd[Pick(r, 0, 9)]);
    },
    [](std::string& t, Rng& r) {  // from a random bracket up to the next section dropped
      const size_t at = t.find('[', PlaceIn(t, r));
      if (at != std::string::npos) t.erase(at, std::min(t.find("\n[", at), t.size() - 1) + 1 - at);
    },
};

std::map<std::string, std::string> Snapshot(const testing::TempDir& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    files[entry.path().filename().string()] = dir.Read(entry.path().filename().string());
  return files;
}

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

TEST(DamagedFiles, NoReaderCrashesOverflowsAStoreOrWrites) {
  SetupWindow w;
  testing::FillWindow(w);
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  ASSERT_TRUE(SauveAOI(w.form, "a"));
  ASSERT_TRUE(SauveAOS(w.s, {3, {0, 1, 2, 3}, {0, 4, 5, 6}}, w.form.Gages(), "a"));
  const std::string member = testing::kPicturesSection, result = "[PICTURES]\n  PicAna=ref.bmp\n";
  struct Reader {
    const char* name;
    std::map<std::string, std::string> files;  // each damaged anew for every read
    std::function<void(Rng&)> readAndCheck;
  };
  const Reader readers[] = {
      {"data file", {{"ref-def.don", w.dir.Read("ref-def.don")}},
       [&](Rng& rng) { LecDonArea(w.form, 1, Pick(rng, 0, 4) == 0); }},
      {"AOI side file", {{"a-aoi.ini", w.dir.Read("a-aoi.ini")}}, [&](Rng&) { LecAOI(w.form, "a"); }},
      {"AOS side file", {{"a-AOS.ini", w.dir.Read("a-AOS.ini")}},
       [&](Rng&) {
         SelectionArea selection;
         GageStore gages;
         LecAOS(w.s, w.ui, selection, gages, "a");
         EXPECT_EQ(selection.XAOS.size(), static_cast<size_t>(std::max(selection.NboxAOS, 0)) + 1);
       }},
      {"name lists",
       {{"correl.ini", "[PATH]\n  ExePath=x\n[AOI]\n  NUMBEROFAOI=3\n  NAME1=a\n  NAME2=b\n  NAME3=c\n"
                       "[AOS]\n  NUMBEROFAOS=2\n  NAME1=d\n  NAME2=e\n"}},
       [&](Rng&) {
         AreaSetList aoiNames, aosNames;
         InitAOI(w.form, aoiNames);
         InitAOS(w.s, w.form.Controls(), aosNames);
         EXPECT_LE(aoiNames.AreaCount, AreaSetList::kMaxNames);
         EXPECT_EQ(aosNames.AreaNames.size(), static_cast<size_t>(aosNames.AreaCount) + 1);
       }},
      {"sequence",
       {{"t.seq", "m1.don\nm2.don\nm3.don\n"}, {"m1.don", member}, {"m2.don", member}, {"m3.don", member},
        {"m1.res", result}, {"m2.res", result}, {"m3.res", result}},
       [&](Rng&) {
         w.s.FileName = w.dir.File("t.seq");
         LecSeq(w.form);
         EXPECT_EQ(w.s.DataFilePath.size(), w.s.DataFileName.size());
         ControlRegistry analyse;
         LecSeqResults(w.s, w.ui, analyse);
         EXPECT_EQ(analyse.Get("Combo4").items.size() + 1, w.s.DataFileName.size());
       }},
  };
  Rng rng(20240611);
  for (const Reader& reader : readers) {
    for (int k = 0; k < 120; ++k) {
      SCOPED_TRACE(std::string(reader.name) + " #" + std::to_string(k));
      for (const auto& [name, text] : reader.files) {
        std::string damaged = text;
        for (int n = Pick(rng, 1, 3); n > 0 && !damaged.empty(); --n) kDamages[Pick(rng, 0, 3)](damaged, rng);
        w.dir.Write(name, damaged);
      }
      const auto before = Snapshot(w.dir);
      reader.readAndCheck(rng);
      ExpectStoresHold(w);
      EXPECT_EQ(Snapshot(w.dir), before);
    }
  }
}

}  // namespace
}  // namespace tessiva
