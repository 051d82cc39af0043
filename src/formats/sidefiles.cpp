#include "formats/sidefiles.h"

#include <algorithm>
#include <filesystem>

#include "formats/sections.h"
#include "setup/areaform.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// Side-file defaults that mean "no value": a vertex stops at the first -1, and
// a start-point key below -20000 is missing.
constexpr int32_t kVertexMissing = -1;
constexpr int32_t kStartMissing = -100000000;
constexpr int32_t kStartFoundAbove = -20000;

size_t At(int32_t i) { return static_cast<size_t>(i); }

std::string CantBeLoaded(const std::string& path) { return path + " can't be loaded"; }

void ShowNames(ControlRegistry& controls, const AreaSetList& list) {
  controls.SetItems("Combo1", std::vector<std::string>(list.AreaNames.begin() + 1,
                                                       list.AreaNames.begin() + 1 + list.AreaCount));
}

void WriteNameList(const AppState& s, const AreaSetKind& kind, const AreaSetList& list) {
  WritePrivateProfileStringA(kind.section, kind.countKey, StrTrim(list.AreaCount), s.IniPath);
  for (int32_t i = 1; i <= list.AreaCount; ++i)
    WritePrivateProfileStringA(kind.section, NumberedKey("NAME", i), list.AreaNames[At(i)], s.IniPath);
}

// Reads correl.ini's head into TexteLignes up to the section's line; true when
// the section was found.
bool ReadIniHead(AppState& s, const AreaSetKind& kind) {
  const std::string tag = "[" + std::string(kind.section) + "]";
  const auto text = ReadWholeFile(s.IniPath);
  s.TexteLignes.clear();
  for (const std::string& line : text ? SplitLines(*text) : std::vector<std::string>{}) {
    s.TexteLignes.push_back(line);
    if (EqualsNoCase(std::string_view(line).substr(0, tag.size()), tag)) {
      s.NbLignesEntete = static_cast<int32_t>(s.TexteLignes.size()) - 1;
      return true;
    }
  }
  s.NbLignesEntete = static_cast<int32_t>(s.TexteLignes.size());
  return false;
}

std::string AoiText(AreaForm& form) {
  const AppState& s = form.State();
  std::string out;
  WriteGagesSection(out, form.Gages());
  // The free slot isn't written, and unlike a data file's save NbBox stays as it is.
  if (s.NbBox > 1) WriteOutlinesSection(out, s, s.NbBox - 1);
  WriteStartPointsSection(out, s);
  WriteExtraSection(out, form.Controls());
  WriteUnitSection(out, s);
  WriteMaterialSection(out, s);
  WriteClfAndFissureSections(out, s);
  return out;
}

// The reading of one -aoi.ini file into the setup window.
class AoiReader {
 public:
  AoiReader(AreaForm& form, std::string file) : form_(form), s_(form.State()), file_(std::move(file)) {}

  void Read() {
    form_.DeleteAOI();
    ReadOutlines();
    ReadUnitSection(s_, form_.Controls(), file_);
    ReadExtraSection(form_.Controls(), file_);
    ReadMaterialSection(s_, file_);
    ReadClfSection(s_, file_);
    ReadFissureSection(s_, file_);
    ReadGagesIntoForm(form_, file_, -1);
    form_.CreateRectArea();
    ReadStartPoints();
    if (s_.NbStart != 0) PropagateFromSolvedPoints();
    form_.AreAPicRefRefresh();
    form_.AreAPicDefRefresh();
  }

 private:
  // Vertices stop at the first -1, so a real coordinate of -1 ends an outline here.
  void ReadOutlines() {
    const SectionReader outlines("OUTLINES", file_);
    const int32_t number = outlines.Int("Number", -1);
    if (number == -1 || number == 0) {
      s_.NbBox = 1;
      return;
    }
    CheckedCount(number, 1, AppState::kMaxAreas);
    int32_t count = number;
    for (int32_t i = 1; i <= number; ++i) {
      s_.TagBox[At(i)] = outlines.Int(NumberedKey("TagBox", i), -1);
      if (s_.TagBox[At(i)] != 0 && s_.TagBox[At(i)] != -1) {
        --count;
        continue;
      }
      s_.Nbox[At(i)] = CheckedCount(outlines.Int(NumberedKey("Nbox", i), -1), -1, AppState::kMaxVertices);
      for (int32_t j = 1; j <= s_.Nbox[At(i)]; ++j) {
        if ((s_.XBox[At(i)][At(j)] = outlines.Int(NumberedKey("x", i, j), kVertexMissing)) == kVertexMissing) break;
        if ((s_.YBox[At(i)][At(j)] = outlines.Int(NumberedKey("y", i, j), kVertexMissing)) == kVertexMissing) break;
      }
    }
    s_.NbBox = count + 1;
  }

  // A start point is solved when both its displacements are there; an unsolved
  // one earlier than the current start point becomes the current one.
  void ReadStartPoints() {
    const SectionReader start("STARTPOINTS", file_);
    const int32_t number = start.Int("Number", -1);
    SetStartPointCount(s_, number == -1 ? 0 : CheckedCount(number, 0, AppState::kMaxStartPoints));
    for (int32_t i = 1; i <= s_.NbStart; ++i) {
      if ((s_.XStart[At(i)] = start.Int(NumberedKey("x", i), kStartMissing)) <= kStartFoundAbove) continue;
      if ((s_.YStart[At(i)] = start.Int(NumberedKey("y", i), kStartMissing)) <= kStartFoundAbove) continue;
      s_.DuStart[At(i)] = start.Int(NumberedKey("du", i), kStartMissing);
      const bool duFound = s_.DuStart[At(i)] > kStartFoundAbove;
      if (duFound) s_.CurStart = i;
      s_.DvStart[At(i)] = start.Int(NumberedKey("dv", i), kStartMissing);
      s_.StartOk[At(i)] = duFound && s_.DvStart[At(i)] > kStartFoundAbove;
      if (!s_.StartOk[At(i)] && (i < s_.CurStart || s_.CurStart == 0)) s_.CurStart = i;
    }
  }

  void PropagateFromSolvedPoints() {
    if (!form_.AutoSearch()) {
      if (std::find(s_.StartOk.begin() + 1, s_.StartOk.end(), true) != s_.StartOk.end()) form_.PropagArea();
      return;
    }
    // Each start point is moved to the centre of its pattern and searched anew;
    // a success walks on from it, a refusal says so and waits for that point.
    for (int32_t i = 1; i <= s_.NbStart; ++i) setup::SearchStartPoint(form_, i);
  }

  AreaForm& form_;
  AppState& s_;
  std::string file_;
};

void ReadSelection(const std::string& file, SelectionArea& selection) {
  const SectionReader outlines("OUTLINES", file);
  selection.NboxAOS = CheckedCount(outlines.Int("NboxAOS", -1), -1, AppState::kMaxVertices);
  const size_t size = At(std::max(selection.NboxAOS, 0)) + 1;
  selection.XAOS.assign(size, 0.0);
  selection.YAOS.assign(size, 0.0);
  for (int32_t j = 1; j <= selection.NboxAOS; ++j) {
    selection.XAOS[At(j)] = outlines.Int(NumberedKey("x-", j), kVertexMissing);
    selection.YAOS[At(j)] = outlines.Int(NumberedKey("y-", j), kVertexMissing);
  }
}

std::string AosText(const SelectionArea& selection, const GageStore& gages) {
  std::string out;
  WriteGagesSection(out, gages);
  const int32_t vertices = std::clamp(selection.NboxAOS, 0,
                                      static_cast<int32_t>(std::min(selection.XAOS.size(), selection.YAOS.size())) - 1);
  if (vertices < 1) return out;
  AppendLine(out, "[OUTLINES]");
  AppendLine(out, "; This section describes the bounding box of the work area");
  AppendKey(out, "NboxAOS", Format(vertices, " 00 "));
  for (int32_t j = 1; j <= vertices; ++j) {
    AppendKey(out, NumberedKey("x-", j), Format(selection.XAOS[At(j)], "0000"));
    AppendKey(out, NumberedKey("y-", j), Format(selection.YAOS[At(j)], "0000"));
  }
  return out;
}

}  // namespace

std::string SideFilePath(const AppState& s, const AreaSetKind& kind, const std::string& name) {
  return JoinPath(s.StartDir, name + kind.fileEnding);
}

void InitAreaSetList(AppState& s, const AreaSetKind& kind, AreaSetList& list, ControlRegistry& controls) {
  list.AreaNames.assign(1, std::string());
  list.AreaCount = 0;
  try {
    if (ReadIniHead(s, kind)) {
      // Missing names close up; a count beyond the list's size reads its first names.
      const int32_t count = std::min(GetPrivateProfileIntA(kind.section, kind.countKey, -1, s.IniPath),
                                     AreaSetList::kMaxNames);
      for (int32_t i = 1; i <= count; ++i) {
        const std::string name = ReadKeyText(kind.section, NumberedKey("NAME", i), s.IniPath);
        if (name != kNotFound) list.AreaNames.push_back(name);
      }
      list.AreaCount = static_cast<int32_t>(list.AreaNames.size()) - 1;
    }
  } catch (...) {
    list.AreaNames.assign(1, std::string());
    list.AreaCount = 0;
  }
  ShowNames(controls, list);
}

void InitAOI(AreaForm& form, AreaSetList& list) {
  InitAreaSetList(form.State(), kAoiSets, list, form.Controls());
  form.Controls().SetText("Combo1", "Give a name to  the AOI");
}

void InitAOS(AppState& s, ControlRegistry& analyseControls, AreaSetList& list) {
  InitAreaSetList(s, kAosSets, list, analyseControls);
}

std::string SaveAreaSetByName(AppState& s, const AreaSetKind& kind, AreaSetList& list, ControlRegistry& controls,
                              const std::function<bool(const std::string&)>& writeSideFile) {
  std::string name = Trim(controls.Text("Combo1"));
  if (name.empty()) name = "Default";
  try {
    const auto first = list.AreaNames.begin() + 1;
    const auto last = first + list.AreaCount;
    if (std::find(first, last, name) != last) {
      writeSideFile(name);
      return name;
    }
    list.AreaNames.insert(first, name);
    list.AreaCount = std::min(list.AreaCount + 1, AreaSetList::kMaxNames);
    list.AreaNames.resize(At(list.AreaCount) + 1);
    writeSideFile(name);
    WriteNameList(s, kind, list);
    ShowNames(controls, list);
  } catch (...) {
    // A list that could not be written stays as far as it got; the next save writes it whole.
  }
  return name;
}

void RemoveAreaSetName(AppState& s, const AreaSetKind& kind, AreaSetList& list, ControlRegistry& controls,
                       int32_t position) {
  if (position < 1 || position > list.AreaCount) return;
  list.AreaNames.erase(list.AreaNames.begin() + position);
  --list.AreaCount;
  try {
    WriteNameList(s, kind, list);
    ShowNames(controls, list);
  } catch (...) {
    // As for a save: the next change writes the list whole.
  }
}

bool SauveAOI(AreaForm& form, const std::string& name) {
  BusyPointer busy(form.Ui());
  bool written = false;
  try {
    written = WriteFileAtomically(SideFilePath(form.State(), kAoiSets, name), AoiText(form));
  } catch (...) {
    written = false;
  }
  form.Controls().SetChecked("Toolbar1.SaveAOI", false);
  return written;
}

bool LecAOI(AreaForm& form, const std::string& name) {
  const std::string file = SideFilePath(form.State(), kAoiSets, name);
  BusyPointer busy(form.Ui());
  try {
    AoiReader(form, file).Read();
    return true;
  } catch (...) {
    form.Ui().StatusLine(CantBeLoaded(file));
    return false;
  }
}

std::string SaveAOIByName(AreaForm& form, AreaSetList& list) {
  return SaveAreaSetByName(form.State(), kAoiSets, list, form.Controls(),
                           [&form](const std::string& name) { return SauveAOI(form, name); });
}

bool SauveAOS(const AppState& s, const SelectionArea& selection, const GageStore& gages, const std::string& name) {
  try {
    return WriteFileAtomically(SideFilePath(s, kAosSets, name), AosText(selection, gages));
  } catch (...) {
    return false;
  }
}

bool LecAOS(const AppState& s, UiPort& ui, SelectionArea& selection, GageStore& gages, const std::string& name) {
  const std::string file = SideFilePath(s, kAosSets, name);
  try {
    ReadSelection(file, selection);
    gages.Clear();
    ReadGagesSection(file, -1, gages);
    return true;
  } catch (...) {
    ui.StatusLine(CantBeLoaded(file));
    return false;
  }
}

bool DeleteAOS(const AppState& s, const std::string& name) {
  std::error_code ec;
  return std::filesystem::remove(SideFilePath(s, kAosSets, name), ec);
}

}  // namespace tessiva
