#include "formats/sidefiles.h"

#include <algorithm>

#include "formats/sections.h"
#include "state/files.h"
#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

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

// The selection's vertices stop at the count, whatever the file says; a
// missing one reads -1.
SelectionArea ReadSelection(const KeyFile& keys, int32_t vertices) {
  SelectionArea selection;
  selection.NboxAOS = vertices;
  const size_t size = At(std::max(vertices, 0)) + 1;
  selection.XAOS.assign(size, 0.0);
  selection.YAOS.assign(size, 0.0);
  for (int32_t j = 1; j <= vertices; ++j) {
    selection.XAOS[At(j)] = keys.Int("OUTLINES", NumberedKey("x-", j), -1);
    selection.YAOS[At(j)] = keys.Int("OUTLINES", NumberedKey("y-", j), -1);
  }
  return selection;
}

}  // namespace

std::vector<std::string> AreaSetList::Names() const {
  return {AreaNames.begin() + 1, AreaNames.begin() + 1 + AreaCount};
}

std::string SideFilePath(const AppState& s, const AreaSetKind& kind, const std::string& name) {
  return JoinPath(s.StartDir, name + kind.fileEnding);
}

void ReadAreaSetNames(AppState& s, const AreaSetKind& kind, AreaSetList& list) {
  list.AreaNames.assign(1, std::string());
  list.AreaCount = 0;
  if (!ReadIniHead(s, kind)) return;
  // Missing names close up; a count beyond the list's size reads its first names.
  const KeyFile ini = KeyFile::Load(s.IniPath);
  const int32_t count = std::min(ini.Int(kind.section, kind.countKey, -1), AreaSetList::kMaxNames);
  for (int32_t i = 1; i <= count; ++i)
    if (const auto name = ini.Text(kind.section, NumberedKey("NAME", i))) list.AreaNames.push_back(*name);
  list.AreaCount = static_cast<int32_t>(list.AreaNames.size()) - 1;
}

std::string SaveAreaSetName(AppState& s, const AreaSetKind& kind, AreaSetList& list, const std::string& typed,
                            const std::function<bool(const std::string&)>& writeSideFile) {
  std::string name = Trim(typed);
  if (name.empty()) name = "Default";
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
  return name;
}

bool RemoveAreaSetName(AppState& s, const AreaSetKind& kind, AreaSetList& list, int32_t position) {
  if (position < 1 || position > list.AreaCount) return false;
  list.AreaNames.erase(list.AreaNames.begin() + position);
  --list.AreaCount;
  WriteNameList(s, kind, list);
  return true;
}

std::string AoiText(const AoiSet& set) {
  std::string out;
  WriteAreaContent(out, set, true);
  return out;
}

Parsed<AoiSet> ParseAoi(const KeyFile& keys) { return ReadAreaContent(keys, FileKind::AreaSet); }

std::string AosText(const AosSet& set) {
  std::string out;
  WriteGages(out, set.gages);
  const SelectionArea& selection = set.selection;
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

Parsed<AosSet> ParseAos(const KeyFile& keys) {
  const int32_t vertices = keys.Int("OUTLINES", "NboxAOS", -1);
  if (vertices < -1 || vertices > AppState::kMaxVertices)
    return ParseError{"[OUTLINES] NboxAOS=" + StrTrim(vertices) + " is outside 0 to " +
                      StrTrim(AppState::kMaxVertices) + ", the vertices a file may hold"};
  auto gages = ReadGages(keys);
  if (!gages) return gages.Error();
  return AosSet{ReadSelection(keys, vertices), *gages};
}

}  // namespace tessiva
