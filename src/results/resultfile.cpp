#include "results/resultfile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "analysis/newanalyse.h"
#include "formats/datafile.h"
#include "formats/sections.h"
#include "results/mesh.h"
#include "results/resultblock.h"
#include "setup/picture.h"
#include "state/files.h"
#include "state/frame.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "state/param.h"

namespace tessiva {
namespace {

constexpr int32_t kBoxWithoutPicture = AnalysisPicture::kEmptyBoxSide;
// The size taken for a picture neither the file nor the picture gives.
constexpr int32_t kDefaultPictureSide = 2048;
constexpr int32_t kVertexMissing = -10000;
constexpr int32_t kStartMissing = -1;
constexpr int32_t kDisplacementMissing = -10000;
constexpr int32_t kFlcDetermination = 16;

size_t At(int32_t i) { return static_cast<size_t>(i); }

// Runs one step of the reading; a step that fails is passed over and the next one runs.
template <class Step>
void Trapped(Step&& step) {
  try {
    step();
  } catch (...) {
  }
}

// Reads a picture file on its own, leaving `into` as it was when it can't be read.
void LoadAnalysisPicture(const std::string& path, AnalysisPicture& into) {
  AppState scratch;
  scratch.PicRefPath = path;
  ChargePicArea(scratch);
  if (scratch.PixRef.Empty()) return;
  into.Pixels = std::move(scratch.PixRef);
  into.Palette = scratch.PicRefPalette;
}

// The reading of one result file, step by step in the order of its keys.
class ResultReader {
 public:
  ResultReader(NewAnalyse& window, int32_t index, bool keep)
      : w_(window), s_(window.State()), ui_(window.Ui()), index_(index), keep_(keep) {}

  bool Read() {
    s_.DataFile = s_.DataFilePath[At(index_)];
    Trapped([this] { ReadFormingLimitCurve(s_); });
    ReadReleaseDate();
    if (!ReadPictureNames()) return Refuse();
    ReadPictureSize();
    if (FirstFile()) ReadParameters();
    ShowCaption();
    Trapped([this] { ReadExtraValues(); });
    ReadMaterialSection(s_, file());
    w_.Parameters().ParamShow();
    ReadOutlines();
    ReadClfSection(s_, file());
    ReadFissureSection(s_, file());
    ReadUnits();
    const bool namesGauges = FirstFile() && OfferGauges();
    ReadStartPoints();
    if (!ReadBlock()) return Refuse();
    ComputeMeans();
    ui_.DoEvents();
    if (!keep_) SetUpView();
    ui_.StatusLine("Number of patterns : " + StrTrim(s_.NbPat) + " includes " + StrTrim(s_.NbPatBad) +
                   " bad pattern(s)");
    DependentAnalyses(namesGauges);
    return true;
  }

 private:
  const std::string& file() const { return s_.DataFile; }
  bool FirstFile() const { return index_ == 1; }

  bool Refuse() {
    if (s_.DataFile.empty()) return false;
    const std::string message = NotRightFormattedMessage(s_.DataFile);
    ui_.MessageBox(message, "", MsgButtons::Ok, MsgIcon::None);
    ui_.StatusLine(message);
    return false;
  }

  // Files made before the key existed count as made today.
  void ReadReleaseDate() {
    s_.FileDate = GetPrivateProfileIntA("RELEASE", "date", -1, file());
    if (s_.FileDate == -1) s_.FileDate = TodayNumber();
  }

  // In an incremental sequence PicRefini, the first picture, stands for the reference.
  bool ReadPictureNames() {
    const SectionReader pictures("PICTURES", file());
    const auto ref = pictures.Text("PicRef");
    if (!ref) {
      s_.PicRefName.clear();
      s_.PicRefPath.clear();
      return false;
    }
    s_.PicRefName = *ref;
    w_.Incremental = 0;
    if (const auto first = pictures.Text("PicRefini")) {
      s_.PicRefName = *first;
      w_.Incremental = 1;
    }
    s_.PicRefPath = JoinPath(s_.LastDir, s_.PicRefName);
    const auto def = pictures.Text("PicDef");
    if (!def) {
      s_.PicDefName.clear();
      s_.PicDefPath.clear();
      return false;
    }
    s_.PicDefName = *def;
    s_.PicDefPath = JoinPath(s_.LastDir, s_.PicDefName);
    return true;
  }

  // Sizes missing from the file come from the reference picture; a box
  // without a picture gives 2048.
  void ReadPictureSize() {
    s_.Lima = GetPrivateProfileIntA("PICTURES", "Lima", 0, file());
    s_.Hima = GetPrivateProfileIntA("PICTURES", "Hima", 0, file());
    LoadAnalysisPicture(s_.PicRefPath, w_.PicAnaTemp);
    LoadAnalysisPicture(s_.PicDefPath, w_.PicAnaTemp2);
    if (s_.Lima != 0 && s_.Hima != 0) return;
    s_.Lima = w_.PicAnaTemp.Width();
    s_.Hima = w_.PicAnaTemp.Height();
    if (s_.Lima == kBoxWithoutPicture) s_.Lima = kDefaultPictureSide;
    if (s_.Hima == kBoxWithoutPicture) s_.Hima = kDefaultPictureSide;
  }

  void ReadParameters() {
    const SectionReader parameters("PARAMETERS", file());
    s_.LpatMin = parameters.Int("LpatMin", 9);
    s_.LpatMax = parameters.Int("LpatMax", 9);
    s_.Lgrid = parameters.Int("Lgrid", 9);
    s_.Interpolation = parameters.Int("Interpolation", 1);
    s_.Correlation = parameters.Int("Correlation", 1);
    s_.LargeStrain = parameters.Int("LargeStrain", 0);
    s_.Precision = parameters.Int("Precision", 100);
    s_.Lpas = 2 * (s_.Lgrid / 2);
  }

  void ShowCaption() {
    const std::string& name = w_.OnFinal() ? s_.PicDefName : s_.PicRefName;
    w_.Controls().SetText("Label1", " " + name + " (" + StrTrim(s_.Lima) + "x" + StrTrim(s_.Hima) + ")");
  }

  // The window's extra-value lists are Combo3 (names) and List3 (values); a
  // file without extra values leaves them as they are.
  void ReadExtraValues() {
    ControlRegistry read;
    ReadExtraSection(read, file());
    if (!read.Has("Combo2")) return;
    w_.Controls().SetItems("Combo3", read.Get("Combo2").items);
    w_.Controls().SetItems("List3", read.Get("List2").items);
  }

  void ReadOutlines() {
    const SectionReader outlines("OUTLINES", file());
    const int32_t count = std::clamp(outlines.Int("Number", 0), 0, AppState::kMaxAreas);
    for (int32_t i = 1; i <= count; ++i) {
      s_.Nbox[At(i)] = std::clamp(outlines.Int(NumberedKey("Nbox", i), 0), 0, AppState::kMaxVertices);
      for (int32_t j = 1; j <= s_.Nbox[At(i)]; ++j) {
        s_.XBox[At(i)][At(j)] = outlines.Int(NumberedKey("x", i, j), kVertexMissing);
        if (s_.XBox[At(i)][At(j)] != kVertexMissing)
          s_.YBox[At(i)][At(j)] = outlines.Int(NumberedKey("y", i, j), kVertexMissing);
      }
    }
    s_.NbBox = count + 1;
  }

  void ReadUnits() {
    const SectionReader unit("UNIT", file());
    s_.UnitNameX = Trim(unit.Text("UnitNameX").value_or("pixel"));
    s_.UnitNameY = Trim(unit.Text("UnitNameY").value_or("pixel"));
    const auto px = unit.Text("UnitPX");
    const auto py = unit.Text("UnitPY");
    s_.UnitPX = px ? ValNorm(*px) : 1.0;
    s_.UnitPY = py ? ValNorm(*py) : 1.0;
    w_.UniteLabels[2] = s_.UnitNameX;
    w_.UniteLabels[3] = s_.UnitNameY;
    w_.UniteLabels[4] = "sqr(" + s_.UnitNameX + " x " + s_.UnitNameY + ")";
  }

  // The complete gauges of the head become the window's gauges; of several,
  // each is offered and No passes it over. True when the file names any.
  bool OfferGauges() {
    GageStore named;
    Trapped([&] { ReadGagesSection(file(), 0, named); });
    if (named.Count() == 0) return false;
    w_.Gages().Clear();
    for (int32_t i = 1; i <= named.Count(); ++i) {
      const Gage& gage = named.Get(i);
      if (named.Count() > 1 && ui_.MessageBox("Do you want to use this gage : " + gage.name + " ?", "WARNING",
                                              MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::No)
        continue;
      w_.Gages().Add(gage);
    }
    return true;
  }

  // Only -10000 marks an unknown displacement.
  void ReadStartPoints() {
    const SectionReader start("STARTPOINTS", file());
    s_.NbStart = std::clamp(start.Int("Number", 0), 0, AppState::kMaxStartPoints);
    s_.ResizeStartPoints(s_.NbStart);
    for (int32_t i = 1; i <= s_.NbStart; ++i) {
      if ((s_.XStart[At(i)] = start.Int(NumberedKey("x", i), kStartMissing)) == kStartMissing) continue;
      if ((s_.YStart[At(i)] = start.Int(NumberedKey("y", i), kStartMissing)) == kStartMissing) continue;
      s_.StartOk[At(i)] = true;
      s_.CurStart = i;
      s_.DuStart[At(i)] = start.Int(NumberedKey("du", i), kDisplacementMissing);
      if (s_.DuStart[At(i)] == kDisplacementMissing) MarkUnsolved(i);
      s_.DvStart[At(i)] = start.Int(NumberedKey("dv", i), kDisplacementMissing);
      if (s_.DvStart[At(i)] == kDisplacementMissing) MarkUnsolved(i);
    }
  }

  void MarkUnsolved(int32_t i) {
    s_.StartOk[At(i)] = false;
    if (i < s_.CurStart || s_.CurStart == 0) s_.CurStart = i;
  }

  // Nothing of the result changes until the block is known to fit: a file
  // without [RESULTS], or with more patterns than the grid of its picture
  // holds, is refused whole.
  bool ReadBlock() {
    const std::optional<std::string> text = ReadWholeFile(file());
    if (!text) return false;
    LineCursor lines(*text);
    if (!SkipToResults(lines)) return false;
    const int64_t capacity = PatternCapacity(s_.Lima, s_.Hima, s_.Lpas);
    if (FirstFile() ? capacity > kMaxMeshCells : capacity > s_.NbPatMax) return false;
    if (CountPatternTurns(lines) > (FirstFile() ? capacity : PatternSlots(s_))) return false;
    if (FirstFile()) RedimResultats(s_, ui_);
    KeepHeadLines(lines.Consumed());
    ReadPatterns(lines);
    return true;
  }

  void KeepHeadLines(std::string_view head) {
    std::vector<std::string> lines = SplitLines(head);
    s_.NbLignesEntete = static_cast<int32_t>(lines.size());
    lines.insert(lines.begin(), std::string());
    s_.TexteLignes = std::move(lines);
  }

  // Pattern numbers follow the turns of the loop: a line passed over, or a
  // trailing blank line, still takes a number. A field that can't be read
  // keeps what the arrays held.
  void ReadPatterns(LineCursor lines) {
    int32_t i = 0;
    std::string_view last;
    s_.NbPatBad = 0;
    do {
      const PatternLines block = NextPatternLines(lines);
      ++i;
      last = block.passedOver ? block.first : block.fourth;
      if (!block.passedOver) StorePattern(i, block);
    } while (!lines.AtEnd());
    s_.NbPat = i;
    s_.TexteLignes[0] = std::string(last);
  }

  void StorePattern(int32_t i, const PatternLines& block) {
    const auto take = [](auto& field, const auto& value) {
      if (value) field = static_cast<std::remove_reference_t<decltype(field)>>(*value);
    };
    const FirstLineFields first = SplitFirstLine(block.first);
    take(s_.FlagPat[i], first.flag);
    take(s_.XPat[i], first.x);
    take(s_.YPat[i], first.y);
    take(s_.D1Pat[i], first.d1);
    take(s_.D2Pat[i], first.d2);
    const auto u = FreeFormNumbers(block.second);
    take(s_.AuPat[i], u[0]);
    take(s_.BuPat[i], u[1]);
    take(s_.CuPat[i], u[2]);
    take(s_.DuPat[i], u[3]);
    const auto v = FreeFormNumbers(block.third);
    take(s_.AvPat[i], v[0]);
    take(s_.BvPat[i], v[1]);
    take(s_.CvPat[i], v[2]);
    take(s_.DvPat[i], v[3]);
    const auto reserved = FreeFormNumbers(block.fourth);
    take(s_.Res1Pat[i], reserved[0] ? WholeNumber(*reserved[0]) : std::nullopt);
    take(s_.Res2Pat[i], reserved[1] ? WholeNumber(*reserved[1]) : std::nullopt);
    take(s_.Res3Pat[i], reserved[2]);
    // Any flag other than -1 means not good.
    if (s_.FlagPat[i] == -1) {
      s_.NormPat[i] = std::sqrt(s_.DuPat[i] * s_.DuPat[i] + s_.DvPat[i] * s_.DvPat[i]);
    } else {
      ++s_.NbPatBad;
      s_.FlagPat[i] = 1;
      s_.NormPat[i] = 0.0;
    }
    s_.XPatMax = std::max<double>(s_.XPatMax, s_.XPat[i]);
    s_.XPatMin = std::min<double>(s_.XPatMin, s_.XPat[i]);
    s_.YPatMax = std::max<double>(s_.YPatMax, s_.YPat[i]);
    s_.YPatMin = std::min<double>(s_.YPatMin, s_.YPat[i]);
  }

  void ComputeMeans() {
    double d1 = 0.0, d2 = 0.0, norm = 0.0;
    int32_t good = 0;
    for (int32_t i = 1, n = PatternsHeld(s_); i <= n; ++i) {
      if (s_.FlagPat[i] != -1) continue;
      d1 += s_.D1Pat[i];
      d2 += s_.D2Pat[i];
      norm += s_.NormPat[i];
      ++good;
    }
    const double count = good == 0 ? 1.0 : good;
    s_.MoyD1 = d1 / count;
    s_.MoyD2 = d2 / count;
    s_.MoyNorm = norm / count;
  }

  // The map's scale spans the pattern centres on their wider side, in the
  // proportions of the reference picture, centred on the origin.
  void SetUpView() {
    ViewScale& view = w_.View;
    view.Zoom = 1.0;
    const double ex = s_.XPatMax - s_.XPatMin;
    const double ey = s_.YPatMax - s_.YPatMin;
    const double aspect = static_cast<double>(w_.PicAnaTemp.Height()) / w_.PicAnaTemp.Width();
    const double side = ex > ey ? ex : ey;
    view.Height = aspect * side / view.Zoom;
    view.Width = side / view.Zoom;
    view.Left = -std::abs(view.Width / 2);
    view.Top = -std::abs(view.Height / 2);
    view.Zoom = 0.8;
    w_.LayOutPicAna();
  }

  void DependentAnalyses(bool namesGauges) {
    CreeMaillage(s_, w_.ShowBad());
    RepareMaillage(s_);
    w_.MinMaxDeplacement();
    w_.MinMaxDeformation();
    if (s_.ClfMode) {
      w_.VueCourante = kFlcDetermination;
      w_.Controls().Update("Combo2", [](ControlState& c) { c.listIndex = kFlcDetermination; });
    }
    if (s_.FissureOn && FirstFile()) {
      w_.CalculKI();
      w_.ShowInfo();
      w_.AfficheKI(true);
    }
    if (namesGauges) {
      w_.ShowInfo();
      w_.AfficheEtTraiteAOS(true);
    }
  }

  NewAnalyse& w_;
  AppState& s_;
  UiPort& ui_;
  int32_t index_;
  bool keep_;
};

}  // namespace

int32_t PatternSlots(const AppState& s) {
  const size_t slots =
      std::min({s.FlagPat.size(), s.XPat.size(), s.YPat.size(), s.D1Pat.size(), s.D2Pat.size(), s.AuPat.size(),
                s.BuPat.size(), s.CuPat.size(), s.DuPat.size(), s.AvPat.size(), s.BvPat.size(), s.CvPat.size(),
                s.DvPat.size(), s.Res1Pat.size(), s.Res2Pat.size(), s.Res3Pat.size(), s.NormPat.size()});
  return slots == 0 ? 0 : static_cast<int32_t>(std::min<size_t>(slots - 1, std::numeric_limits<int32_t>::max()));
}

int32_t PatternsHeld(const AppState& s) { return std::clamp(s.NbPat, 0, PatternSlots(s)); }

void RedimResultats(AppState& s, UiPort& ui) {
  AllocPat(s);
  ui.DoEvents();
}

bool LecRes(NewAnalyse& window, int32_t index, bool keep) {
  AppState& s = window.State();
  if (index < 1 || At(index) >= s.DataFilePath.size()) return false;
  BusyPointer busy(window.Ui());
  window.Ui().StatusLine("Read results file ... Please wait");
  ControlRegistry& controls = window.Controls();
  controls.SetVisible("PicAna", false);
  bool read = false;
  try {
    read = ResultReader(window, index, keep).Read();
  } catch (...) {
    read = false;
  }
  controls.SetVisible("PicAna", true);
  return read;
}

}  // namespace tessiva
