#include "analysis/analysisfiles.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <type_traits>

#include "analysis/picking.h"
#include "analysis/toolbar1.h"
#include "formats/sections.h"
#include "formats/seqfile.h"
#include "results/mesh.h"
#include "results/resultblock.h"
#include "results/resultfile.h"
#include "setup/picture.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "state/parameters.h"
#include "state/settings.h"
#include "state/index.h"

namespace tessiva {
namespace {

constexpr int32_t kBoxWithoutPicture = AnalysisPicture::kEmptyBoxSide;
// The size taken for a picture neither the file nor the picture gives.
constexpr int32_t kDefaultPictureSide = 2048;
constexpr int32_t kFlcDetermination = 16;

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
    text_ = ReadWholeFile(file());
    // The head is a key-file; the block behind [RESULTS] is read line by line.
    block_ = LineCursor(text_ ? *text_ : std::string_view());
    hasBlock_ = SkipToResults(block_);
    keys_ = KeyFile::Parse(block_.Consumed());
    ReadFormingLimitCurve(s_);
    s_.FileDate = ReadReleaseDate(keys_);
    if (!ReadPictureNames()) return Refuse(NotRightFormattedMessage(s_.DataFile));
    ReadPictureSize();
    if (FirstFile()) ReadParameters();
    ShowCaption();
    ReadExtraValues();
    ApplyMaterial(ReadMaterial(keys_), s_);
    w_.Parameters().ParamShow();
    if (const auto outlines = ReadOutlines(keys_, FileKind::Result)) ApplyOutlines(*outlines, s_);
    ApplyFormingLimitZone(ReadFormingLimitZone(keys_), s_);
    ApplyCrack(ReadCrack(keys_), s_);
    ReadUnits();
    const bool namesGauges = FirstFile() && OfferGauges();
    if (const auto start = ReadStartPoints(keys_, FileKind::Result)) ApplyStartPoints(*start, s_);
    if (const auto problem = ReadBlock()) return Refuse(*problem);
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

  bool Refuse(const std::string& message) {
    if (s_.DataFile.empty()) return false;
    ui_.MessageBox(message, "", MsgButtons::Ok, MsgIcon::None);
    ui_.StatusLine(message);
    return false;
  }

  // In an incremental sequence PicRefini, the first picture, stands for the reference.
  bool ReadPictureNames() {
    const auto ref = keys_.Text("PICTURES", "PicRef");
    if (!ref) {
      s_.PicRefName.clear();
      s_.PicRefPath.clear();
      return false;
    }
    s_.PicRefName = *ref;
    w_.Incremental = 0;
    if (const auto first = keys_.Text("PICTURES", "PicRefini")) {
      s_.PicRefName = *first;
      w_.Incremental = 1;
    }
    s_.PicRefPath = JoinPath(s_.LastDir, s_.PicRefName);
    const auto def = keys_.Text("PICTURES", "PicDef");
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
    s_.Lima = keys_.Int("PICTURES", "Lima", 0);
    s_.Hima = keys_.Int("PICTURES", "Hima", 0);
    LoadAnalysisPicture(s_.PicRefPath, w_.PicAnaTemp);
    LoadAnalysisPicture(s_.PicDefPath, w_.PicAnaTemp2);
    if (s_.Lima != 0 && s_.Hima != 0) return;
    s_.Lima = w_.PicAnaTemp.Width();
    s_.Hima = w_.PicAnaTemp.Height();
    if (s_.Lima == kBoxWithoutPicture) s_.Lima = kDefaultPictureSide;
    if (s_.Hima == kBoxWithoutPicture) s_.Hima = kDefaultPictureSide;
  }

  void ReadParameters() {
    ApplyParameters(tessiva::ReadParameters(keys_), s_);
    s_.Lpas = 2 * (s_.Lgrid / 2);
  }

  void ShowCaption() {
    const std::string& name = w_.OnFinal() ? s_.PicDefName : s_.PicRefName;
    w_.Controls().SetText("Label1", " " + name + " (" + StrTrim(s_.Lima) + "x" + StrTrim(s_.Hima) + ")");
  }

  // The window's extra-value lists are Combo3 (names) and List3 (values); a
  // file without extra values, or with too many, leaves them as they are.
  void ReadExtraValues() {
    const auto extra = tessiva::ReadExtraValues(keys_);
    if (!extra || !*extra) return;
    w_.Controls().SetItems("Combo3", (*extra)->names);
    w_.Controls().SetItems("List3", (*extra)->values);
  }

  void ReadUnits() {
    ApplyUnits(tessiva::ReadUnits(keys_, "pixel"), s_);
    w_.UniteLabels[2] = s_.UnitNameX;
    w_.UniteLabels[3] = s_.UnitNameY;
    w_.UniteLabels[4] = "sqr(" + s_.UnitNameX + " x " + s_.UnitNameY + ")";
  }

  // The complete gauges of the head become the window's gauges; of several,
  // each is offered and No passes it over. True when the file names any.
  bool OfferGauges() {
    const auto gages = ReadGages(keys_);
    if (!gages || gages->Count() == 0) return false;
    const GageStore& named = *gages;
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

  // Nothing of the result changes until the block is known to fit: a file
  // without [RESULTS], or with more patterns than the grid of its picture
  // holds, is refused whole.
  std::optional<std::string> ReadBlock() {
    if (!hasBlock_) return NotRightFormattedMessage(s_.DataFile);
    LineCursor lines = block_;
    const int64_t capacity = PatternCapacity(s_.Lima, s_.Hima, s_.Lpas);
    if (FirstFile() ? capacity > kMaxMeshCells : capacity > s_.NbPatMax) return TooManyPatternsMessage(s_);
    const int64_t patterns = CountPatternTurns(lines);
    if (patterns > (FirstFile() ? capacity : PatternSlots(s_))) return TooSmallPictureMessage(patterns);
    if (FirstFile()) {
      if (!RedimResultats(s_)) return TooManyPatternsMessage(s_);
      ui_.DoEvents();
    }
    KeepHeadLines(lines.Consumed());
    ReadPatterns(lines);
    return std::nullopt;
  }

  // The block holds more patterns than the grid of the picture the file names.
  std::string TooSmallPictureMessage(int64_t patterns) const {
    return "This file :" + s_.DataFile + " holds " + StrTrim(static_cast<double>(patterns)) +
           " patterns, more than the grid of its picture " + s_.PicRefPath + " (" + StrTrim(s_.Lima) + " x " +
           StrTrim(s_.Hima) + " pixels at a grid step of " + StrTrim(s_.Lpas) + ") can hold";
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
      s_.NormPat[i] = std::hypot(s_.DuPat[i], s_.DvPat[i]);
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

  // Running means, so that huge values from a damaged file can't overflow a sum.
  void ComputeMeans() {
    double d1 = 0.0, d2 = 0.0, norm = 0.0;
    int32_t good = 0;
    for (int32_t i = 1, n = PatternsHeld(s_); i <= n; ++i) {
      if (s_.FlagPat[i] != -1) continue;
      ++good;
      d1 += s_.D1Pat[i] / good - d1 / good;
      d2 += s_.D2Pat[i] / good - d2 / good;
      norm += s_.NormPat[i] / good - norm / good;
    }
    s_.MoyD1 = d1;
    s_.MoyD2 = d2;
    s_.MoyNorm = norm;
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
  std::optional<std::string> text_;
  LineCursor block_{std::string_view()};  // just past the [RESULTS] line
  bool hasBlock_ = false;
  KeyFile keys_;
};

// The analysis window's tools that walk a sequence.
void EnableSequenceTools(ControlRegistry& c, bool enabled) {
  for (int button : {kInitialButton, kPreviousFileButton, kNextFileButton, kFinalButton, kFilm2Button})
    c.SetEnabled(ToolbarButton(button), enabled);
  c.SetEnabled("OptionMinMax(1)", enabled);
}

}  // namespace

bool LecRes(NewAnalyse& window, int32_t index, bool keep) {
  AppState& s = window.State();
  if (index < 1 || At(index) >= s.DataFilePath.size()) return false;
  BusyPointer busy(window.Ui());
  window.Ui().StatusLine("Read results file ... Please wait");
  ControlRegistry& controls = window.Controls();
  controls.SetVisible("PicAna", false);
  const bool read = ResultReader(window, index, keep).Read();
  controls.SetVisible("PicAna", true);
  return read;
}

bool LecSeqResults(AppState& s, UiPort& ui, ControlRegistry& analyseControls) {
  analyseControls.SetItems("Combo4", {});
  EnableSequenceTools(analyseControls, false);
  if (!ReadSequenceMembers(s, MemberFiles::Results)) {
    ui.StatusLine(NotRightFormattedMessage(s.FileName));
    return false;
  }
  analyseControls.SetItems("Combo4", std::vector<std::string>(s.DataFileName.begin() + 1, s.DataFileName.end()));
  if (s.NbSeq > 1) EnableSequenceTools(analyseControls, true);
  if (s.NbSeq != 1) s.SeqRefChange = 1;
  const auto failed = TellSequenceKind(s, "PicAna", [&s](int32_t i) {
    s.ResName = s.DataFileName[At(i)];
    return s.ResFile = s.DataFilePath[At(i)];
  });
  if (failed && !failed->empty()) ui.StatusLine(*failed);
  return !failed;
}

void InitAOS(AppState& s, ControlRegistry& analyseControls, AreaSetList& list) {
  ReadAreaSetNames(s, kAosSets, list);
  analyseControls.SetItems("Combo1", list.Names());
}

bool SauveAOS(const AppState& s, const SelectionArea& selection, const GageStore& gages, const std::string& name) {
  return WriteFileAtomically(SideFilePath(s, kAosSets, name), AosText({selection, gages}));
}

bool LecAOS(const AppState& s, UiPort& ui, SelectionArea& selection, GageStore& gages, const std::string& name) {
  const std::string file = SideFilePath(s, kAosSets, name);
  const auto set = ParseAos(KeyFile::Load(file));
  if (!set) {
    ui.StatusLine(file + " can't be loaded");
    return false;
  }
  selection = set->selection;
  gages = set->gages;
  return true;
}

std::string SaveAOSByName(AppState& s, ControlRegistry& analyseControls, AreaSetList& list,
                          const SelectionArea& selection, const GageStore& gages) {
  const std::string name =
      SaveAreaSetName(s, kAosSets, list, analyseControls.Text("Combo1"),
                      [&](const std::string& set) { return SauveAOS(s, selection, gages, set); });
  analyseControls.SetItems("Combo1", list.Names());
  return name;
}

void RemoveAOSName(AppState& s, ControlRegistry& analyseControls, AreaSetList& list, int32_t position) {
  if (RemoveAreaSetName(s, kAosSets, list, position)) analyseControls.SetItems("Combo1", list.Names());
}

bool DeleteAOS(const AppState& s, const std::string& name) {
  std::error_code ec;
  return std::filesystem::remove(SideFilePath(s, kAosSets, name), ec);
}

}  // namespace tessiva
