#include "formats/sections.h"

#include <algorithm>

#include "setup/areaform.h"
#include "state/keyfile.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// Gauge keys read only while the one before was found.
constexpr int32_t kGageTypeMissing = -1;
constexpr int32_t kGagePointMissing = -20000;

size_t At(int32_t i) { return static_cast<size_t>(i); }

// How many entries of a 1-based list can be written: never beyond its store.
int32_t UsableCount(int32_t count, size_t storeSize) {
  return std::clamp(count, 0, static_cast<int32_t>(storeSize) - 1);
}

}  // namespace

int32_t CheckedCount(int32_t value, int32_t low, int32_t high) {
  if (value < low || value > high) throw FormatError();
  return value;
}

void AppendLine(std::string& out, std::string_view line) {
  out += line;
  out += '\n';
}

void AppendKey(std::string& out, std::string_view key, std::string_view value) {
  out += "  ";
  out += key;
  out += '=';
  out += value;
  out += '\n';
}

std::string NumberedKey(std::string_view stem, int32_t i) { return std::string(stem) + StrTrim(i); }

std::string NumberedKey(std::string_view stem, int32_t i, int32_t j) {
  return NumberedKey(stem, i) + "-" + StrTrim(j);
}

int32_t SectionReader::Int(const std::string& key, int32_t def) const {
  return GetPrivateProfileIntA(section_, key, def, file_);
}

std::optional<std::string> SectionReader::Text(const std::string& key) const {
  std::string value = ReadKeyText(section_, key, file_);
  if (value == kNotFound) return std::nullopt;
  return value;
}

void SetStartPointCount(AppState& s, int32_t count) {
  s.NbStart = count;
  if (At(count) >= s.XStart.size()) s.ResizeStartPoints(count);
}

void WriteGagesSection(std::string& out, const GageStore& gages) {
  if (gages.Count() == 0) return;
  AppendLine(out, "[GAGES]");
  AppendLine(out, "; This section describes the strain gage");
  AppendKey(out, "Number", Format(gages.Count(), "00  "));
  for (int32_t i = 1; i <= gages.Count(); ++i) {
    if (!gages.Exists(i)) continue;
    const Gage& g = gages.Get(i);
    AppendKey(out, NumberedKey("name", i), g.name);
    AppendKey(out, NumberedKey("type", i), Format(g.type, "0000"));
    AppendKey(out, NumberedKey("xdep", i), Format(g.xdep, "0000"));
    AppendKey(out, NumberedKey("ydep", i), Format(g.ydep, "0000"));
    AppendKey(out, NumberedKey("xarr", i), Format(g.xarr, "0000"));
    AppendKey(out, NumberedKey("yarr", i), Format(g.yarr, "0000"));
  }
}

void WriteOutlinesSection(std::string& out, const AppState& s, int32_t count) {
  const int32_t areas = std::clamp(count, 0, AppState::kMaxAreas);
  AppendLine(out, "[OUTLINES]");
  AppendLine(out, "; This section describes the bounding box of the work area");
  AppendKey(out, "Number", Format(areas, "00  "));
  for (int32_t i = 1; i <= areas; ++i) {
    if (s.TagBox[At(i)] != 0) AppendKey(out, NumberedKey("TagBox", i), Format(s.TagBox[At(i)], " 00 "));
    const int32_t vertices = std::clamp(s.Nbox[At(i)], 0, AppState::kMaxVertices);
    AppendKey(out, NumberedKey("Nbox", i), Format(vertices, " 00 "));
    for (int32_t j = 1; j <= vertices; ++j) {
      AppendKey(out, NumberedKey("x", i, j), Format(s.XBox[At(i)][At(j)], "0000"));
      AppendKey(out, NumberedKey("y", i, j), Format(s.YBox[At(i)][At(j)], "0000"));
    }
  }
}

void WriteStartPointsSection(std::string& out, const AppState& s) {
  const size_t store = std::min({s.XStart.size(), s.YStart.size(), s.DuStart.size(), s.DvStart.size()});
  const int32_t count = UsableCount(s.NbStart, store);
  AppendLine(out, "[STARTPOINTS]");
  AppendLine(out, "; This section describes the startpoint for initial solution");
  AppendKey(out, "Number", Format(count, "00  "));
  for (int32_t j = 1; j <= count; ++j) {
    AppendKey(out, NumberedKey("x", j), Format(s.XStart[At(j)], "0000  "));
    AppendKey(out, NumberedKey("y", j), Format(s.YStart[At(j)], "0000  "));
    AppendKey(out, NumberedKey("du", j), Format(s.DuStart[At(j)], "0000  ;-000  "));
    AppendKey(out, NumberedKey("dv", j), Format(s.DvStart[At(j)], "0000  ;-000  "));
  }
}

void WriteExtraSection(std::string& out, const ControlRegistry& controls) {
  const std::vector<std::string>& names = controls.Get("Combo2").items;
  const std::vector<std::string>& values = controls.Get("List2").items;
  AppendLine(out, "[EXTRA]");
  if (names.empty()) return;
  AppendKey(out, "Number", Str(static_cast<double>(names.size())));
  // The only list of the file numbered from 0.
  for (size_t i = 0; i < names.size(); ++i) {
    const auto n = static_cast<int32_t>(i);
    AppendKey(out, NumberedKey("name", n), names[i]);
    AppendKey(out, NumberedKey("value", n), i < values.size() ? values[i] : std::string());
  }
}

void WriteUnitSection(std::string& out, const AppState& s) {
  AppendLine(out, "[UNIT]");
  AppendKey(out, "UnitNameX", s.UnitNameX);
  AppendKey(out, "UnitPX", Str(s.UnitPX));
  AppendKey(out, "UnitNameY", s.UnitNameY);
  AppendKey(out, "UnitPY", Str(s.UnitPY));
}

void WriteMaterialSection(std::string& out, const AppState& s) {
  AppendLine(out, "[MATERIAL]");
  AppendKey(out, "YOUNG", Str(s.Young));
  AppendKey(out, "POISSON", Str(s.Poisson));
}

void WriteClfAndFissureSections(std::string& out, const AppState& s) {
  if (s.ClfMode) {
    AppendLine(out, "[CLF]");
    AppendLine(out, "; This section is reserved for CLF application");
    AppendKey(out, "xstrict", Format(s.xstrict, "0000  "));
    AppendKey(out, "ystrict", Format(s.ystrict, "0000  "));
  }
  if (s.FissureOn) {
    AppendLine(out, "[FISSURE]");
    AppendLine(out, "; This section is reserved for KI determination");
    AppendKey(out, "XFissureDep", Format(s.XFissureDep, "0000  "));
    AppendKey(out, "YFissureDep", Format(s.YFissureDep, "0000  "));
    AppendKey(out, "XFissureArr", Format(s.XFissureArr, "0000  "));
    AppendKey(out, "YFissureArr", Format(s.YFissureArr, "0000  "));
    AppendKey(out, "RayonFissure", Format(s.RayonFissure, "0000  "));
  }
}

void ReadUnitSection(AppState& s, ControlRegistry& controls, const std::string& file) {
  const SectionReader unit("UNIT", file);
  s.UnitNameX = unit.Text("UnitNameX").value_or("Pixel");
  s.UnitNameY = unit.Text("UnitNameY").value_or("Pixel");
  const auto px = unit.Text("UnitPX");
  const auto py = unit.Text("UnitPY");
  s.UnitPX = px ? ValNorm(*px) : 1.0;
  s.UnitPY = py ? ValNorm(*py) : 1.0;
  controls.SetText("UnitX", s.UnitNameX);
  controls.SetText("UnitY", s.UnitNameY);
  controls.SetText("UnitPixX", Str(s.UnitPX));
  controls.SetText("UnitPixY", Str(s.UnitPY));
}

void ReadExtraSection(ControlRegistry& controls, const std::string& file) {
  const SectionReader extra("EXTRA", file);
  const int32_t number = extra.Int("number", 0);
  if (number <= 0) return;
  CheckedCount(number, 1, kMaxExtraValues);
  std::vector<std::string> names, values;
  for (int32_t i = 0; i < number; ++i) {
    const auto name = extra.Text(NumberedKey("name", i));
    if (!name) continue;
    names.push_back(*name);
    values.push_back(extra.Text(NumberedKey("value", i)).value_or(std::string()));
  }
  controls.SetItems("Combo2", std::move(names));
  controls.SetItems("List2", std::move(values));
}

void ReadMaterialSection(AppState& s, const std::string& file) {
  const SectionReader material("MATERIAL", file);
  const auto young = material.Text("YOUNG");
  const auto poisson = material.Text("POISSON");
  s.Young = young ? ValNorm(*young) : 210000.0;
  s.Poisson = poisson ? ValNorm(*poisson) : 0.3;
}

void ReadClfSection(AppState& s, const std::string& file) {
  const SectionReader clf("CLF", file);
  s.xstrict = clf.Int("xstrict", -1);
  s.ystrict = clf.Int("ystrict", -1);
  s.ClfMode = s.xstrict != -1 && s.ystrict != -1;
}

void ReadFissureSection(AppState& s, const std::string& file) {
  const SectionReader fissure("FISSURE", file);
  const int32_t values[] = {fissure.Int("XfissureDep", -1), fissure.Int("YfissureDep", -1),
                            fissure.Int("XfissureArr", -1), fissure.Int("YfissureArr", -1),
                            fissure.Int("RayonFissure", -1)};
  s.XFissureDep = values[0];
  s.YFissureDep = values[1];
  s.XFissureArr = values[2];
  s.YFissureArr = values[3];
  s.RayonFissure = values[4];
  s.FissureOn = std::find(std::begin(values), std::end(values), -1) == std::end(values);
}

void ReadGagesSection(const std::string& file, int32_t defaultNumber, GageStore& store,
                      const std::function<void(const Gage&, int32_t number)>& added) {
  const SectionReader gages("GAGES", file);
  // A negative count reads no gauge, as the loop doesn't run; only a count beyond the store is a bad file.
  const int32_t number = gages.Int("Number", defaultNumber);
  if (number > kMaxGages) throw FormatError();
  for (int32_t i = 1; i <= number; ++i) {
    Gage g;
    const auto name = gages.Text(NumberedKey("name", i));
    if (!name) continue;
    g.name = *name;
    if ((g.type = gages.Int(NumberedKey("type", i), kGageTypeMissing)) == kGageTypeMissing) continue;
    if ((g.xdep = gages.Int(NumberedKey("xdep", i), kGagePointMissing)) == kGagePointMissing) continue;
    if ((g.ydep = gages.Int(NumberedKey("ydep", i), kGagePointMissing)) == kGagePointMissing) continue;
    if ((g.xarr = gages.Int(NumberedKey("xarr", i), kGagePointMissing)) == kGagePointMissing) continue;
    if ((g.yarr = gages.Int(NumberedKey("yarr", i), kGagePointMissing)) == kGagePointMissing) continue;
    const int32_t stored = store.Add(g);
    if (added) added(g, stored);
  }
}

void ReadGagesIntoForm(AreaForm& form, const std::string& file, int32_t defaultNumber) {
  ReadGagesSection(file, defaultNumber, form.Gages(), [&form](const Gage& g, int32_t number) {
    form.CreateBoxJauge(g.xdep, g.ydep, g.xarr, g.yarr, g.type, number);
  });
}

}  // namespace tessiva
