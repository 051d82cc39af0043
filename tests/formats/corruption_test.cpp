// Every reader of the formats meets damaged files: truncated, with random bytes,
// absurd numbers or whole sections missing. None may crash, overflow a store or
// write any file.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "formats/datafile.h"
#include "formats/seqfile.h"
#include "formats/setupwindow.h"
#include "formats/sidefiles.h"

namespace tessiva {
namespace {

using testing::SetupWindow;
using testing::Snapshot;

constexpr unsigned kSeed = 20240611;

const char* const kAbsurdNumbers[] = {"99999999999999", "2147483647", "-2147483648", "1000", "-1",
                                      "52",             "21",         "0",           "-20000", "-10000"};

class Corrupter {
 public:
  explicit Corrupter(unsigned seed) : rng_(seed) {}

  // One to three damages of the kinds a disk or a hand editor causes.
  std::string Damage(std::string text) {
    const int damages = Pick(1, 3);
    for (int i = 0; i < damages && !text.empty(); ++i) {
      switch (Pick(0, 3)) {
        case 0: text.resize(static_cast<size_t>(Pick(0, static_cast<int>(text.size())))); break;
        case 1: ScrambleBytes(text); break;
        case 2: ReplaceNumber(text); break;
        default: DropSection(text); break;
      }
    }
    return text;
  }

  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }

 private:
  void ScrambleBytes(std::string& text) {
    static const char kTelling[] = {'\0', '\r', '\n', '[', ']', '=', ';', '-', ' ', '\xff'};
    for (int n = Pick(1, 8); n > 0; --n) {
      const auto at = static_cast<size_t>(Pick(0, static_cast<int>(text.size()) - 1));
      text[at] = Pick(0, 1) ? kTelling[Pick(0, 9)] : static_cast<char>(Pick(0, 255));
    }
  }

  void ReplaceNumber(std::string& text) {
    std::vector<std::pair<size_t, size_t>> runs;
    for (size_t i = 0; i < text.size();) {
      if (!std::isdigit(static_cast<unsigned char>(text[i]))) {
        ++i;
        continue;
      }
      const size_t start = i;
      while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
      runs.emplace_back(start, i - start);
    }
    if (runs.empty()) return;
    const auto [start, length] = runs[static_cast<size_t>(Pick(0, static_cast<int>(runs.size()) - 1))];
    text.replace(start, length, kAbsurdNumbers[Pick(0, 9)]);
  }

  void DropSection(std::string& text) {
    std::vector<size_t> starts;
    for (size_t i = 0; i < text.size(); ++i)
      if (text[i] == '[' && (i == 0 || text[i - 1] == '\n')) starts.push_back(i);
    if (starts.empty()) return;
    const size_t which = static_cast<size_t>(Pick(0, static_cast<int>(starts.size()) - 1));
    const size_t end = which + 1 < starts.size() ? starts[which + 1] : text.size();
    text.erase(starts[which], end - starts[which]);
  }

  std::mt19937 rng_;
};

void ExpectStoresHold(const SetupWindow& w, const std::string& label) {
  const AppState& s = w.s;
  EXPECT_GE(s.NbBox, 0) << label;
  EXPECT_LE(s.NbBox, AppState::kMaxAreas + 1) << label;
  for (int32_t n : s.Nbox) EXPECT_LE(n, AppState::kMaxVertices) << label;
  EXPECT_GE(s.NbStart, 0) << label;
  EXPECT_LE(s.NbStart, AppState::kMaxStartPoints) << label;
  EXPECT_GT(s.XStart.size(), static_cast<size_t>(s.NbStart)) << label;
  EXPECT_EQ(s.StartOk.size(), s.XStart.size()) << label;
  EXPECT_LT(static_cast<size_t>(s.CurStart), s.XStart.size()) << label;
  EXPECT_EQ(w.ui.busyDepth, 0) << label;
}

// A setup window with areas, gauges, start points and extra values.
void FillWindow(SetupWindow& w) {
  AppState& s = w.s;
  s.PicRefName = "ref.bmp";
  s.PicDefName = "def.bmp";
  s.NbBox = 4;
  for (size_t a = 1; a <= 3; ++a) {
    s.Nbox[a] = 5;
    s.TagBox[a] = a == 2 ? 7 : 0;
    s.XBox[a] = {0, 1, 9, 9, 1, 1};
    s.YBox[a] = {0, 1, 1, 9, 9, 1};
  }
  s.NbStart = 3;
  s.ResizeStartPoints(3);
  s.XStart = {0, 2, 4, 6};
  s.YStart = {0, 3, 5, 7};
  s.DuStart = {0, 1, -1, -10000};
  s.DvStart = {0, 1, 2, 3};
  s.ClfMode = true;
  s.FissureOn = true;
  w.form.Gages().Add({"a", 0, 1, 2, 3, 4});
  w.form.Gages().Add({"b", 1, 5, 6, 7, 8});
  w.form.Controls().SetItems("Combo2", {"n0", "n1"});
  w.form.Controls().SetItems("List2", {"v0", "v1"});
}

TEST(DamagedFiles, DataFileReaderNeverCrashesOrWrites) {
  SetupWindow w;
  FillWindow(w);
  w.Member(1, "base.don");
  w.form.Controls().SetText("Text1", "base.don");
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  const std::string base = w.dir.Read("base.don");
  Corrupter corrupt(kSeed);
  for (int k = 0; k < 200; ++k) {
    const std::string name = "case" + std::to_string(k) + ".don";
    w.dir.Write(name, corrupt.Damage(base));
    w.Member(1, name);
    const auto before = Snapshot(w.dir);
    LecDonArea(w.form, 1, corrupt.Pick(0, 4) == 0);
    EXPECT_EQ(Snapshot(w.dir), before) << name;
    ExpectStoresHold(w, name);
    std::filesystem::remove(w.dir.File(name));
  }
}

TEST(DamagedFiles, SequenceReadersNeverCrashOrWrite) {
  SetupWindow w;
  const std::string members[] = {"m1.don", "m2.don", "m3.don"};
  std::string seq;
  for (const std::string& m : members) seq += m + "\n";
  const std::string member = testing::kPicturesSection;
  const std::string result = "[PICTURES]\n  PicAna=ref.bmp\n";
  Corrupter corrupt(kSeed + 1);
  for (int k = 0; k < 100; ++k) {
    for (const std::string& m : members) {
      w.dir.Write(m, corrupt.Damage(member));
      w.dir.Write(m.substr(0, 2) + ".res", corrupt.Damage(result));
    }
    const std::string name = "case" + std::to_string(k) + ".seq";
    w.dir.Write(name, corrupt.Damage(seq));
    w.s.FileName = w.dir.File(name);
    const auto before = Snapshot(w.dir);
    LecSeq(w.form);
    EXPECT_GE(w.s.NbSeq, 0) << name;
    EXPECT_EQ(w.s.DataFilePath.size(), w.s.DataFileName.size()) << name;
    ControlRegistry analyse;
    LecSeqResults(w.s, w.ui, analyse);
    EXPECT_EQ(analyse.Get("Combo4").items.size() + 1, w.s.DataFileName.size()) << name;
    EXPECT_EQ(Snapshot(w.dir), before) << name;
    std::filesystem::remove(w.dir.File(name));
  }
}

TEST(DamagedFiles, SideFileReadersNeverCrashOrWrite) {
  SetupWindow w;
  FillWindow(w);
  ASSERT_TRUE(SauveAOI(w.form, "base"));
  GageStore gages;
  gages.Add({"g", 2, 1, 2, 3, 4});
  ASSERT_TRUE(SauveAOS(w.s, SelectionArea{3, {0, 1, 2, 3}, {0, 4, 5, 6}}, gages, "base"));
  const std::string aoi = w.dir.Read("base-aoi.ini");
  const std::string aos = w.dir.Read("base-AOS.ini");
  const std::string ini = "[PATH]\n  ExePath=x\n[AOI]\n  NUMBEROFAOI=3\n  NAME1=a\n  NAME2=b\n  NAME3=c\n"
                          "[AOS]\n  NUMBEROFAOS=2\n  NAME1=d\n  NAME2=e\n";
  Corrupter corrupt(kSeed + 2);
  for (int k = 0; k < 150; ++k) {
    const std::string name = "case" + std::to_string(k);
    w.dir.Write(name + "-aoi.ini", corrupt.Damage(aoi));
    w.dir.Write(name + "-AOS.ini", corrupt.Damage(aos));
    w.dir.Write(name + ".ini", corrupt.Damage(ini));
    w.s.IniPath = w.dir.File(name + ".ini");
    const auto before = Snapshot(w.dir);
    LecAOI(w.form, name);
    ExpectStoresHold(w, name);
    SelectionArea selection;
    LecAOS(w.s, w.ui, selection, gages, name);
    EXPECT_EQ(selection.XAOS.size(), static_cast<size_t>(std::max(selection.NboxAOS, 0)) + 1) << name;
    AreaSetList aoiNames, aosNames;
    InitAOI(w.form, aoiNames);
    InitAOS(w.s, w.form.Controls(), aosNames);
    EXPECT_LE(aoiNames.AreaCount, AreaSetList::kMaxNames) << name;
    EXPECT_EQ(aosNames.AreaNames.size(), static_cast<size_t>(aosNames.AreaCount) + 1) << name;
    EXPECT_EQ(Snapshot(w.dir), before) << name;
    for (const char* ending : {"-aoi.ini", "-AOS.ini", ".ini"}) std::filesystem::remove(w.dir.File(name + ending));
  }
}

}  // namespace
}  // namespace tessiva
