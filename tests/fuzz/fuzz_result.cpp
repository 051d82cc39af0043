// Result files (.res): the input is read by the analysis window as the one
// member of a sequence, in a directory that also holds its pictures ref.bmp
// and def.bmp. Read or refused, the counts index the arrays; read, the means
// are finite; and neither the result nor a picture changes.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "fuzz/fuzzcheck.h"
#include "results/resultfile.h"
#include "setup/param.h"
#include "setup/picture.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "state/parameters.h"
#include "ui/scriptedui.h"

using namespace tessiva;

namespace {

// A grid of more cells than this is passed over: the reader takes it, but
// sizing and meshing it would spend the run on arrays of zeros.
constexpr int64_t kMostCells = int64_t{1} << 12;
// The side the reader takes for a picture the file doesn't size and that can't be read.
constexpr int32_t kUnsizedSide = 2048;

// The grid the reader will lay: the file's picture size, else its reference picture's.
bool GridTooLarge(std::string_view text, const std::string& dir) {
  const KeyFile keys = KeyFile::Parse(text);
  int32_t lima = keys.Int("PICTURES", "Lima", 0), hima = keys.Int("PICTURES", "Hima", 0);
  if (lima == 0 || hima == 0) {
    const auto ref = keys.Text("PICTURES", "PicRefini") ? keys.Text("PICTURES", "PicRefini") : keys.Text("PICTURES", "PicRef");
    GreyArray picture;
    const bool read = ref && ReadWholePicture(JoinPath(dir, *ref), picture).empty();
    lima = read ? picture.UpperX() : kUnsizedSide;
    hima = read ? picture.UpperY() : kUnsizedSide;
  }
  const int32_t lgrid = keys.Int("PARAMETERS", "Lgrid", Parameters{}.lgrid);
  return PatternCapacity(lima, hima, 2 * (lgrid / 2)) > kMostCells;
}

const std::string& Dir() {
  static const std::string dir = [] {
    const std::string& d = fuzz::ScratchDir("result");
    std::vector<uint8_t> levels(64 * 64);
    for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>((i * 37) % 251);
    FUZZ_CHECK(SaveGreyBmp(d + "/ref.bmp", 64, 64, levels) && SaveGreyBmp(d + "/def.bmp", 64, 64, levels),
               "can't write the pictures");
    return d;
  }();
  return dir;
}

void CheckCounts(const AppState& s) {
  const int32_t slots = PatternSlots(s);
  FUZZ_CHECK(s.NbPat >= 0 && s.NbPat <= slots, "NbPat " + fuzz::Num(s.NbPat) + " of " + fuzz::Num(slots));
  FUZZ_CHECK(s.NbPatBad >= 0 && s.NbPatBad <= s.NbPat, "NbPatBad " + fuzz::Num(s.NbPatBad));
  FUZZ_CHECK(s.XPat.size() == s.YPat.size(), "pattern coordinates of different sizes");
  FUZZ_CHECK(s.NbMailles >= 0 && static_cast<size_t>(s.NbMailles) < std::max<size_t>(s.Mailles.size(), 1),
             "NbMailles " + fuzz::Num(s.NbMailles) + " of " + fuzz::Num(static_cast<double>(s.Mailles.size())));
  FUZZ_CHECK(s.NbNoeuds >= 0 && static_cast<size_t>(s.NbNoeuds) < std::max<size_t>(s.Noeuds.size(), 1),
             "NbNoeuds " + fuzz::Num(s.NbNoeuds) + " of " + fuzz::Num(static_cast<double>(s.Noeuds.size())));
  fuzz::CheckAreaStores(s);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string& dir = Dir();
  if (GridTooLarge(text, dir)) return 0;
  const std::string path = fuzz::WriteFile(dir, "r.res", text);
  const auto before = fuzz::Snapshot(dir);

  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};
  s.LastDir = dir;
  s.NbSeq = 1;
  s.ResizeSequence(1);
  s.DataFilePath[1] = path;
  const bool read = LecRes(window, 1, false);

  CheckCounts(s);
  if (read) {
    FUZZ_CHECK(s.TexteLignes.size() == static_cast<size_t>(s.NbLignesEntete) + 1,
               fuzz::Num(static_cast<double>(s.TexteLignes.size())) + " lines kept for a head of " +
                   fuzz::Num(s.NbLignesEntete));
    FUZZ_CHECK(std::isfinite(s.MoyD1) && std::isfinite(s.MoyD2) && std::isfinite(s.MoyNorm),
               "means " + fuzz::Num(s.MoyD1) + " " + fuzz::Num(s.MoyD2) + " " + fuzz::Num(s.MoyNorm));
  }
  FUZZ_CHECK(fuzz::ChangedEntry(before, fuzz::Snapshot(dir)).empty(), fuzz::ChangedEntry(before, fuzz::Snapshot(dir)));
  return 0;
}
