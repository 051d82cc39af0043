#include "setup/areafiles.h"

#include <algorithm>

#include "formats/datafile.h"
#include "formats/sections.h"
#include "formats/seqfile.h"
#include "setup/areas.h"
#include "setup/startsearch.h"
#include "state/files.h"
#include "state/numtext.h"
#include "state/parameters.h"
#include "state/index.h"

namespace tessiva {
namespace {

bool IsMember(const AppState& s, int index) {
  return index >= 1 && At(index) < s.DataFilePath.size() && At(index) < s.DataFileName.size();
}

// Step 1 of a save: a name typed in Text1 renames the data file once the user agrees.
void AskForRename(AreaForm& form, int index) {
  AppState& s = form.State();
  std::string typed = Trim(form.Controls().Text("Text1"));
  if (typed == s.DataFileName[At(index)]) return;
  const MsgAnswer answer = form.Ui().MessageBox("Do you really want to change the name of the data file ?",
                                                "WARNING", MsgButtons::YesNo, MsgIcon::Question);
  if (answer != MsgAnswer::Yes) return;
  if (typed.size() < 4 || ToLower(typed.substr(typed.size() - 4)) != ".don") typed += ".don";
  s.DataFileName[At(index)] = typed;
  s.DataFilePath[At(index)] = JoinPath(s.LastDir, typed);
}

// The window's extra values: names in Combo2, values in List2.
ExtraValues ExtraValuesOf(const ControlRegistry& controls) {
  return {controls.Get("Combo2").items, controls.Get("List2").items};
}

void ShowExtraValues(ControlRegistry& controls, const ExtraValues& extra) {
  controls.SetItems("Combo2", extra.names);
  controls.SetItems("List2", extra.values);
}

void ShowUnits(ControlRegistry& controls, const AppState& s) {
  controls.SetText("UnitX", s.UnitNameX);
  controls.SetText("UnitY", s.UnitNameY);
  controls.SetText("UnitPixX", Str(s.UnitPX));
  controls.SetText("UnitPixY", Str(s.UnitPY));
}

// The gauges join the window's store and lay their areas.
void AddGauges(AreaForm& form, const GageStore& gages) {
  for (int32_t i = 1; i <= gages.Count(); ++i) {
    const Gage& g = gages.Get(i);
    const int32_t number = form.Gages().Add(g);
    form.CreateBoxJauge(g.xdep, g.ydep, g.xarr, g.yarr, g.type, number);
  }
}

bool AnySolved(const AppState& s) { return std::find(s.StartOk.begin() + 1, s.StartOk.end(), true) != s.StartOk.end(); }

// The reading of one data file, section by section; a section that can't be
// used stops it with everything before applied.
class DataFileReader {
 public:
  DataFileReader(AreaForm& form, int index)
      : form_(form), s_(form.State()), index_(index), keys_(KeyFile::Load(s_.DataFilePath[At(index)])) {}

  // Nothing when the file was read to its end, or to the end of its header;
  // else the status text of the failure.
  std::optional<std::string> Read(bool headerOnly) {
    s_.DataFile = s_.DataFilePath[At(index_)];
    s_.FileDate = ReadReleaseDate(keys_);
    const auto pictures = ReadPictureNames(keys_);
    if (!pictures) return Unusable();
    SetPictures(*pictures);
    // A TIFF or PNG that can't be read is named; a BMP gives the file's message.
    if (std::string problem; !form_.LoadPictures(&problem)) return problem.empty() ? Unusable() : problem;
    form_.Controls().SetText("Text1", s_.DataFileName[At(index_)]);
    if (index_ == 1) TakeParameters(ReadParameters(keys_));
    s_.Lpat = s_.LpatMin;
    s_.Lpas = 2 * (s_.Lgrid / 2);
    if (!AllocPat(s_)) return TooManyPatternsMessage(s_);
    form_.DeleteAOI();
    ApplyUnits(ReadUnits(keys_, "Pixel"), s_);
    ShowUnits(form_.Controls(), s_);
    const auto extra = ReadExtraValues(keys_);
    if (!extra) return Unusable();
    if (*extra) ShowExtraValues(form_.Controls(), **extra);
    if (headerOnly) return std::nullopt;
    ApplyMaterial(ReadMaterial(keys_), s_);
    ApplyFormingLimitZone(ReadFormingLimitZone(keys_), s_);
    ApplyCrack(ReadCrack(keys_), s_);
    form_.Parameters().ParamShow();
    const auto outlines = ReadOutlines(keys_, FileKind::DataFile);
    if (!outlines) return Unusable();
    ApplyOutlines(*outlines, s_);
    const auto gages = ReadGages(keys_);
    if (!gages) return Unusable();
    AddGauges(form_, *gages);
    form_.CreateRectArea();
    const auto start = ReadStartPoints(keys_, FileKind::DataFile);
    if (!start) return Unusable();
    ApplyStartPoints(*start, s_);
    if (s_.NbStart != 0) ShowStartPoints();
    return std::nullopt;
  }

 private:
  std::string Unusable() const { return NotRightFormattedMessage(s_.DataFile); }

  void SetPictures(const PictureNames& p) {
    s_.PicRefName = p.picRef;
    s_.PicDefName = p.picDef;
    s_.PicRefPath = JoinPath(s_.LastDir, p.picRef);
    s_.PicDefPath = JoinPath(s_.LastDir, p.picDef);
  }

  // Pattern sizes, grid step and precision set beforehand win over the file;
  // the three switches always come from it.
  void TakeParameters(const Parameters& p) {
    if (s_.LpatMin == 0) s_.LpatMin = p.lpatMin;
    if (s_.LpatMax == 0) s_.LpatMax = p.lpatMax;
    if (s_.Lgrid == 0) s_.Lgrid = p.lgrid;
    s_.Interpolation = p.interpolation;
    s_.Correlation = p.correlation;
    s_.LargeStrain = p.largeStrain;
    if (s_.Precision == 0) s_.Precision = p.precision;
  }

  void ShowStartPoints() {
    form_.AreAPicRefRefresh();
    form_.AreAPicDefRefresh();
    form_.ShowStartPointsDefined();
    if (AnySolved(s_)) form_.PropagArea();
  }

  AreaForm& form_;
  AppState& s_;
  int index_;
  KeyFile keys_;
};

void ShowEndData(ControlRegistry& c, bool shown) {
  c.SetEnabled("Toolbar1.enddata", shown);
  c.SetVisible("Toolbar1.enddata", shown);
}

// The free slot isn't written, and unlike a data file's save NbBox stays as it is.
AoiSet AoiSetOf(AreaForm& form) {
  const AppState& s = form.State();
  return AreaContentOf(s, s.NbBox - 1, form.Gages(), ExtraValuesOf(form.Controls()));
}

void ApplyAoiSet(AreaForm& form, const AoiSet& set) {
  AppState& s = form.State();
  ApplyOutlines(set.outlines, s);
  ApplyUnits(set.units, s);
  ShowUnits(form.Controls(), s);
  if (!set.extra.names.empty()) ShowExtraValues(form.Controls(), set.extra);
  ApplyMaterial(set.material, s);
  ApplyFormingLimitZone(set.clf, s);
  ApplyCrack(set.crack, s);
  AddGauges(form, set.gages);
  form.CreateRectArea();
  ApplyStartPoints(set.startPoints, s);
}

// With automatic search each start point is moved to the centre of its
// pattern and searched anew; otherwise the walk starts from the solved ones.
void PropagateFromStartPoints(AreaForm& form) {
  AppState& s = form.State();
  if (!form.AutoSearch()) {
    if (AnySolved(s)) form.PropagArea();
    return;
  }
  for (int32_t i = 1; i <= s.NbStart; ++i) setup::SearchStartPoint(form, i);
}

void ShowNames(AreaForm& form, const AreaSetList& list) { form.Controls().SetItems("Combo1", list.Names()); }

}  // namespace

bool SauveDonArea(AreaForm& form, int index) {
  AppState& s = form.State();
  if (!IsMember(s, index)) return false;
  AskForRename(form, index);
  s.DataFile = s.DataFilePath[At(index)];
  form.Parameters().ParamRead();
  // The free slot of memory isn't an area of the file. With forming-limit data
  // the slot is written too, as an area without points.
  if (!s.ClfMode) s.NbBox = std::max(0, s.NbBox - 1);
  const DataFileContent content = DataFileContentOf(s, s.NbBox, form.Gages(), ExtraValuesOf(form.Controls()));
  if (!WriteFileAtomically(s.DataFile, DataFileText(content))) {
    form.Ui().StatusLine(s.DataFile + " could not be written");
    return false;
  }
  form.Ui().StatusLine(s.DataFile + " successfully written");
  return true;
}

bool LecDonArea(AreaForm& form, int index, bool headerOnly) {
  AppState& s = form.State();
  if (!IsMember(s, index)) return false;
  BusyPointer busy(form.Ui());
  const auto problem = DataFileReader(form, index).Read(headerOnly);
  if (problem && !s.DataFile.empty()) form.Ui().StatusLine(*problem);
  return !problem;
}

bool LecSeq(AreaForm& form) {
  AppState& s = form.State();
  ControlRegistry& c = form.Controls();
  ShowEndData(c, false);
  c.SetItems("Combo2", {});
  c.SetItems("List2", {});
  if (!ReadSequenceMembers(s, MemberFiles::DataFiles)) {
    form.Ui().StatusLine(NotRightFormattedMessage(s.FileName));
    return false;
  }
  form.DoneFlags.assign(At(s.NbSeq) + 1, false);
  if (s.NbSeq != 1) {
    s.SeqRefChange = 1;
    ShowEndData(c, true);
  }
  const auto failed = TellSequenceKind(s, "PicRef", [&s](int32_t i) { return s.DataFile = s.DataFilePath[At(i)]; });
  if (failed) {
    if (!failed->empty()) form.Ui().StatusLine(*failed);
    return false;
  }
  // An incremental sequence is prepared from its first member: the solver
  // carries the rest on through ResultFrom.
  if (s.SeqRefChange == 1) {
    ShowEndData(c, false);
    s.NbSeq = 1;
  }
  return true;
}

void InitAOI(AreaForm& form, AreaSetList& list) {
  ReadAreaSetNames(form.State(), kAoiSets, list);
  ShowNames(form, list);
  form.Controls().SetText("Combo1", "Give a name to  the AOI");
}

bool SauveAOI(AreaForm& form, const std::string& name) {
  BusyPointer busy(form.Ui());
  const bool written = WriteFileAtomically(SideFilePath(form.State(), kAoiSets, name), AoiText(AoiSetOf(form)));
  form.Controls().SetChecked("Toolbar1.SaveAOI", false);
  return written;
}

bool LecAOI(AreaForm& form, const std::string& name) {
  const std::string file = SideFilePath(form.State(), kAoiSets, name);
  BusyPointer busy(form.Ui());
  form.DeleteAOI();
  const auto set = ParseAoi(KeyFile::Load(file));
  if (!set) {
    form.Ui().StatusLine(file + " can't be loaded");
    return false;
  }
  ApplyAoiSet(form, *set);
  if (form.State().NbStart != 0) PropagateFromStartPoints(form);
  form.AreAPicRefRefresh();
  form.AreAPicDefRefresh();
  return true;
}

std::string SaveAOIByName(AreaForm& form, AreaSetList& list) {
  const std::string name = SaveAreaSetName(form.State(), kAoiSets, list, form.Controls().Text("Combo1"),
                                           [&form](const std::string& set) { return SauveAOI(form, set); });
  ShowNames(form, list);
  return name;
}

void RemoveAOIName(AreaForm& form, AreaSetList& list, int32_t position) {
  if (RemoveAreaSetName(form.State(), kAoiSets, list, position)) ShowNames(form, list);
}

}  // namespace tessiva
