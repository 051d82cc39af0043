#include "formats/sections.h"

#include <algorithm>

#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

// Gauge keys are read only while the one before was found.
constexpr int32_t kGageTypeMissing = -1;
constexpr int32_t kGagePointMissing = -20000;
// A set's start-point keys read this when missing; anything above -20000 was found.
constexpr int32_t kSetStartMissing = -100000000;
constexpr int32_t kSetStartFoundAbove = -20000;
// A set's vertices stop at the first -1, as do a data file's start points.
constexpr int32_t kMinusOne = -1;

ParseError CountError(std::string_view section, std::string_view key, int32_t value, int32_t most,
                      std::string_view what) {
  return {"[" + std::string(section) + "] " + std::string(key) + "=" + StrTrim(value) + " is outside 0 to " +
          StrTrim(most) + ", the " + std::string(what) + " a file may hold"};
}

bool InRange(int32_t value, int32_t low, int32_t high) { return value >= low && value <= high; }

// The value of a decimal key through ValNorm, or `def` when it is missing.
double Decimal(const KeyFile& keys, std::string_view section, std::string_view key, double def) {
  const auto text = keys.Text(section, key);
  return text ? ValNorm(*text) : def;
}

// The tag and vertex count of slot i; its vertices are read once the count is known to fit.
AreaSlot ReadSlotHead(const KeyFile& keys, int32_t i, FileKind kind) {
  AreaSlot slot;
  if (kind != FileKind::Result) {
    slot.tag = keys.Int("OUTLINES", NumberedKey("TagBox", i), -1);
    slot.skipped = slot.tag != 0 && slot.tag != -1;
    if (slot.skipped) return slot;
  }
  slot.nbox = keys.Int("OUTLINES", NumberedKey("Nbox", i), kind == FileKind::AreaSet ? -1 : 0);
  return slot;
}

void ReadVertices(const KeyFile& keys, int32_t i, FileKind kind, AreaSlot& slot) {
  for (int32_t j = 1; j <= slot.nbox; ++j) {
    if (kind == FileKind::AreaSet) {
      const int32_t x = keys.Int("OUTLINES", NumberedKey("x", i, j), kMinusOne);
      slot.vertices.push_back({x, std::nullopt});
      if (x == kMinusOne) break;
      const int32_t y = keys.Int("OUTLINES", NumberedKey("y", i, j), kMinusOne);
      slot.vertices.back().y = y;
      if (y == kMinusOne) break;
      continue;
    }
    const int32_t x = keys.Int("OUTLINES", NumberedKey("x", i, j), kUnknownValue);
    slot.vertices.push_back({x, std::nullopt});
    if (x != kUnknownValue) slot.vertices.back().y = keys.Int("OUTLINES", NumberedKey("y", i, j), kUnknownValue);
  }
}

// A data or result file: a point whose x or y is missing is passed over; an
// unknown displacement leaves it unsolved.
StartPointEntry ReadDataStartPoint(const KeyFile& keys, int32_t i) {
  StartPointEntry p;
  if ((p.x = keys.Int("STARTPOINTS", NumberedKey("x", i), kMinusOne)) == kMinusOne) return p;
  if ((p.y = keys.Int("STARTPOINTS", NumberedKey("y", i), kMinusOne)) == kMinusOne) return p;
  p.current = StartPointEntry::Current::Take;
  p.du = keys.Int("STARTPOINTS", NumberedKey("du", i), kUnknownValue);
  p.dv = keys.Int("STARTPOINTS", NumberedKey("dv", i), kUnknownValue);
  p.ok = *p.du != kUnknownValue && *p.dv != kUnknownValue;
  return p;
}

// A set: a point is solved when both displacements are there; one without its
// du becomes the current point unless an earlier one is.
StartPointEntry ReadSetStartPoint(const KeyFile& keys, int32_t i) {
  StartPointEntry p;
  if ((p.x = keys.Int("STARTPOINTS", NumberedKey("x", i), kSetStartMissing)) <= kSetStartFoundAbove) return p;
  if ((p.y = keys.Int("STARTPOINTS", NumberedKey("y", i), kSetStartMissing)) <= kSetStartFoundAbove) return p;
  p.du = keys.Int("STARTPOINTS", NumberedKey("du", i), kSetStartMissing);
  const bool duFound = *p.du > kSetStartFoundAbove;
  p.current = duFound ? StartPointEntry::Current::Take : StartPointEntry::Current::TakeUnlessEarlier;
  p.dv = keys.Int("STARTPOINTS", NumberedKey("dv", i), kSetStartMissing);
  p.ok = duFound && *p.dv > kSetStartFoundAbove;
  return p;
}

}  // namespace

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

void AppendBanner(std::string& out, std::string_view version) {
  static constexpr const char* kBanner[] = {
      "; Tessiva RESULTS",
      "; Tessiva Workbench",
      "; 1 Correlation Street",
      "; 00000 Imageville",
      "; Tel: +00 0 00 00 00 00",
      "; mail: support@tessiva.org  web: tessiva.org",
      "; ",
      "; Please report bugs to support@tessiva.org",
  };
  for (const char* line : kBanner) AppendLine(out, line);
  AppendLine(out, "[RELEASE]");
  AppendLine(out, ";Don't modify this section");
  AppendKey(out, "name", "Tessiva");
  AppendKey(out, "version", version);
  AppendKey(out, "date", TodayText());
}

int32_t ReadReleaseDate(const KeyFile& keys) {
  const int32_t date = keys.Int("RELEASE", "date", -1);
  return date == -1 ? TodayNumber() : date;
}

Parsed<PictureNames> ReadPictureNames(const KeyFile& keys) {
  PictureNames names;
  const auto ref = keys.Text("PICTURES", "PicRef");
  const auto def = keys.Text("PICTURES", "PicDef");
  if (!ref) return ParseError{"[PICTURES] names no reference picture (PicRef)"};
  if (!def) return ParseError{"[PICTURES] names no deformed picture (PicDef)"};
  names.picRef = *ref;
  names.picDef = *def;
  names.picRefini = keys.Text("PICTURES", "PicRefini");
  names.lima = keys.Int("PICTURES", "Lima", 0);
  names.hima = keys.Int("PICTURES", "Hima", 0);
  return names;
}

Parameters ReadParameters(const KeyFile& keys) {
  const Parameters d;
  return {keys.Int("PARAMETERS", "LpatMin", d.lpatMin),         keys.Int("PARAMETERS", "LpatMax", d.lpatMax),
          keys.Int("PARAMETERS", "Lgrid", d.lgrid),             keys.Int("PARAMETERS", "Interpolation", d.interpolation),
          keys.Int("PARAMETERS", "Correlation", d.correlation), keys.Int("PARAMETERS", "LargeStrain", d.largeStrain),
          keys.Int("PARAMETERS", "Precision", d.precision)};
}

Units ReadUnits(const KeyFile& keys, std::string_view defaultName) {
  return {keys.Text("UNIT", "UnitNameX").value_or(std::string(defaultName)),
          keys.Text("UNIT", "UnitNameY").value_or(std::string(defaultName)), Decimal(keys, "UNIT", "UnitPX", 1.0),
          Decimal(keys, "UNIT", "UnitPY", 1.0)};
}

Parsed<std::optional<ExtraValues>> ReadExtraValues(const KeyFile& keys) {
  const int32_t number = keys.Int("EXTRA", "number", 0);
  if (number <= 0) return std::optional<ExtraValues>();
  if (number > kMaxExtraValues) return CountError("EXTRA", "number", number, kMaxExtraValues, "values");
  ExtraValues extra;
  // The only list of the files numbered from 0; a name not found skips its value.
  for (int32_t i = 0; i < number; ++i) {
    const auto name = keys.Text("EXTRA", NumberedKey("name", i));
    if (!name) continue;
    extra.names.push_back(*name);
    extra.values.push_back(keys.Text("EXTRA", NumberedKey("value", i)).value_or(std::string()));
  }
  return std::optional<ExtraValues>(std::move(extra));
}

Material ReadMaterial(const KeyFile& keys) {
  const Material d;
  return {Decimal(keys, "MATERIAL", "YOUNG", d.young), Decimal(keys, "MATERIAL", "POISSON", d.poisson)};
}

FormingLimitZone ReadFormingLimitZone(const KeyFile& keys) {
  FormingLimitZone clf;
  clf.xstrict = keys.Int("CLF", "xstrict", -1);
  clf.ystrict = keys.Int("CLF", "ystrict", -1);
  clf.on = clf.xstrict != -1 && clf.ystrict != -1;
  return clf;
}

Crack ReadCrack(const KeyFile& keys) {
  const int32_t values[] = {keys.Int("FISSURE", "XfissureDep", -1), keys.Int("FISSURE", "YfissureDep", -1),
                            keys.Int("FISSURE", "XfissureArr", -1), keys.Int("FISSURE", "YfissureArr", -1),
                            keys.Int("FISSURE", "RayonFissure", -1)};
  const bool on = std::find(std::begin(values), std::end(values), -1) == std::end(values);
  return {on, double(values[0]), double(values[1]), double(values[2]), double(values[3]), double(values[4])};
}

Parsed<Outlines> ReadOutlines(const KeyFile& keys, FileKind kind) {
  const int32_t number = keys.Int("OUTLINES", "Number", kind == FileKind::AreaSet ? -1 : 0);
  Outlines outlines;
  if (kind == FileKind::AreaSet && number == -1) return outlines;
  if (!InRange(number, 0, AppState::kMaxAreas))
    return CountError("OUTLINES", "Number", number, AppState::kMaxAreas, "areas");
  outlines.areas = number;
  for (int32_t i = 1; i <= number; ++i) {
    AreaSlot slot = ReadSlotHead(keys, i, kind);
    const int32_t lowest = kind == FileKind::AreaSet ? -1 : 0;
    if (!slot.skipped && !InRange(slot.nbox, lowest, AppState::kMaxVertices))
      return CountError("OUTLINES", NumberedKey("Nbox", i), slot.nbox, AppState::kMaxVertices, "vertices");
    if (slot.skipped) --outlines.areas;
    else ReadVertices(keys, i, kind, slot);
    outlines.slots.push_back(std::move(slot));
  }
  return outlines;
}

Parsed<StartPointList> ReadStartPoints(const KeyFile& keys, FileKind kind) {
  const int32_t number = keys.Int("STARTPOINTS", "Number", kind == FileKind::AreaSet ? -1 : 0);
  StartPointList list;
  if (kind == FileKind::AreaSet && number == -1) return list;
  if (!InRange(number, 0, AppState::kMaxStartPoints))
    return CountError("STARTPOINTS", "Number", number, AppState::kMaxStartPoints, "start points");
  list.number = number;
  for (int32_t i = 1; i <= number; ++i)
    list.points.push_back(kind == FileKind::AreaSet ? ReadSetStartPoint(keys, i) : ReadDataStartPoint(keys, i));
  return list;
}

Parsed<GageStore> ReadGages(const KeyFile& keys) {
  // A negative count reads no gauge; only a count beyond the store is a bad file.
  const int32_t number = keys.Int("GAGES", "Number", 0);
  if (number > kMaxGages) return CountError("GAGES", "Number", number, kMaxGages, "gauges");
  GageStore gages;
  for (int32_t i = 1; i <= number; ++i) {
    Gage g;
    const auto name = keys.Text("GAGES", NumberedKey("name", i));
    if (!name) continue;
    g.name = *name;
    if ((g.type = keys.Int("GAGES", NumberedKey("type", i), kGageTypeMissing)) == kGageTypeMissing) continue;
    if ((g.xdep = keys.Int("GAGES", NumberedKey("xdep", i), kGagePointMissing)) == kGagePointMissing) continue;
    if ((g.ydep = keys.Int("GAGES", NumberedKey("ydep", i), kGagePointMissing)) == kGagePointMissing) continue;
    if ((g.xarr = keys.Int("GAGES", NumberedKey("xarr", i), kGagePointMissing)) == kGagePointMissing) continue;
    if ((g.yarr = keys.Int("GAGES", NumberedKey("yarr", i), kGagePointMissing)) == kGagePointMissing) continue;
    gages.Add(std::move(g));
  }
  return gages;
}

void WriteGages(std::string& out, const GageStore& gages) {
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

void WriteOutlines(std::string& out, const Outlines& outlines) {
  AppendLine(out, "[OUTLINES]");
  AppendLine(out, "; This section describes the bounding box of the work area");
  AppendKey(out, "Number", Format(static_cast<double>(outlines.slots.size()), "00  "));
  for (size_t k = 0; k < outlines.slots.size(); ++k) {
    const AreaSlot& slot = outlines.slots[k];
    const auto i = static_cast<int32_t>(k + 1);
    if (slot.tag != 0) AppendKey(out, NumberedKey("TagBox", i), Format(slot.tag, " 00 "));
    AppendKey(out, NumberedKey("Nbox", i), Format(slot.nbox, " 00 "));
    for (size_t v = 0; v < slot.vertices.size(); ++v) {
      const auto j = static_cast<int32_t>(v + 1);
      AppendKey(out, NumberedKey("x", i, j), Format(slot.vertices[v].x, "0000"));
      AppendKey(out, NumberedKey("y", i, j), Format(slot.vertices[v].y.value_or(0), "0000"));
    }
  }
}

void WriteStartPoints(std::string& out, const StartPointList& list) {
  AppendLine(out, "[STARTPOINTS]");
  AppendLine(out, "; This section describes the startpoint for initial solution");
  AppendKey(out, "Number", Format(static_cast<double>(list.points.size()), "00  "));
  for (size_t k = 0; k < list.points.size(); ++k) {
    const StartPointEntry& p = list.points[k];
    const auto j = static_cast<int32_t>(k + 1);
    AppendKey(out, NumberedKey("x", j), Format(p.x.value_or(0), "0000  "));
    AppendKey(out, NumberedKey("y", j), Format(p.y.value_or(0), "0000  "));
    AppendKey(out, NumberedKey("du", j), Format(p.du.value_or(0), "0000  ;-000  "));
    AppendKey(out, NumberedKey("dv", j), Format(p.dv.value_or(0), "0000  ;-000  "));
  }
}

void WriteExtraValues(std::string& out, const ExtraValues& extra) {
  AppendLine(out, "[EXTRA]");
  if (extra.names.empty()) return;
  AppendKey(out, "Number", Str(static_cast<double>(extra.names.size())));
  for (size_t i = 0; i < extra.names.size(); ++i) {
    const auto n = static_cast<int32_t>(i);
    AppendKey(out, NumberedKey("name", n), extra.names[i]);
    AppendKey(out, NumberedKey("value", n), i < extra.values.size() ? extra.values[i] : std::string());
  }
}

void WriteUnits(std::string& out, const Units& units) {
  AppendLine(out, "[UNIT]");
  AppendKey(out, "UnitNameX", units.nameX);
  AppendKey(out, "UnitPX", Str(units.px));
  AppendKey(out, "UnitNameY", units.nameY);
  AppendKey(out, "UnitPY", Str(units.py));
}

void WriteMaterial(std::string& out, const Material& material) {
  AppendLine(out, "[MATERIAL]");
  AppendKey(out, "YOUNG", Str(material.young));
  AppendKey(out, "POISSON", Str(material.poisson));
}

void WriteFormingLimitAndCrack(std::string& out, const FormingLimitZone& clf, const Crack& crack) {
  if (clf.on) {
    AppendLine(out, "[CLF]");
    AppendLine(out, "; This section is reserved for CLF application");
    AppendKey(out, "xstrict", Format(clf.xstrict, "0000  "));
    AppendKey(out, "ystrict", Format(clf.ystrict, "0000  "));
  }
  if (crack.on) {
    AppendLine(out, "[FISSURE]");
    AppendLine(out, "; This section is reserved for KI determination");
    AppendKey(out, "XFissureDep", Format(crack.xDep, "0000  "));
    AppendKey(out, "YFissureDep", Format(crack.yDep, "0000  "));
    AppendKey(out, "XFissureArr", Format(crack.xArr, "0000  "));
    AppendKey(out, "YFissureArr", Format(crack.yArr, "0000  "));
    AppendKey(out, "RayonFissure", Format(crack.radius, "0000  "));
  }
}

Parsed<AreaContent> ReadAreaContent(const KeyFile& keys, FileKind kind) {
  AreaContent c;
  auto outlines = ReadOutlines(keys, kind);
  if (!outlines) return outlines.Error();
  c.outlines = *outlines;
  auto gages = ReadGages(keys);
  if (!gages) return gages.Error();
  c.gages = *gages;
  auto start = ReadStartPoints(keys, kind);
  if (!start) return start.Error();
  c.startPoints = *start;
  auto extra = ReadExtraValues(keys);
  if (!extra) return extra.Error();
  if (*extra) c.extra = **extra;
  c.units = ReadUnits(keys, "Pixel");
  c.material = ReadMaterial(keys);
  c.clf = ReadFormingLimitZone(keys);
  c.crack = ReadCrack(keys);
  return c;
}

void WriteAreaContent(std::string& out, const AreaContent& c, bool outlinesOnlyWhenAny) {
  WriteGages(out, c.gages);
  if (!outlinesOnlyWhenAny || !c.outlines.slots.empty()) WriteOutlines(out, c.outlines);
  WriteStartPoints(out, c.startPoints);
  WriteExtraValues(out, c.extra);
  WriteUnits(out, c.units);
  WriteMaterial(out, c.material);
  WriteFormingLimitAndCrack(out, c.clf, c.crack);
}

Outlines OutlinesOf(const AppState& s, int32_t count) {
  Outlines outlines;
  const int32_t slots = std::clamp(count, 0, AppState::kMaxAreas);
  for (int32_t i = 1; i <= slots; ++i) {
    AreaSlot slot;
    slot.tag = s.TagBox[At(i)];
    slot.nbox = std::clamp(s.Nbox[At(i)], 0, AppState::kMaxVertices);
    for (int32_t j = 1; j <= slot.nbox; ++j) slot.vertices.push_back({s.XBox[At(i)][At(j)], s.YBox[At(i)][At(j)]});
    outlines.slots.push_back(std::move(slot));
  }
  outlines.areas = slots;
  return outlines;
}

// A slot keeps, beyond what the file gives, what the store held.
void ApplyOutlines(const Outlines& outlines, AppState& s) {
  for (size_t k = 0; k < outlines.slots.size() && k < AppState::kMaxAreas; ++k) {
    const AreaSlot& slot = outlines.slots[k];
    const size_t i = k + 1;
    s.TagBox[i] = slot.tag;
    if (slot.skipped) continue;
    s.Nbox[i] = slot.nbox;
    for (size_t v = 0; v < slot.vertices.size() && v < AppState::kMaxVertices; ++v) {
      s.XBox[i][v + 1] = slot.vertices[v].x;
      if (slot.vertices[v].y) s.YBox[i][v + 1] = *slot.vertices[v].y;
    }
  }
  s.NbBox = outlines.areas + 1;
}

StartPointList StartPointsOf(const AppState& s) {
  const size_t store = std::min({s.XStart.size(), s.YStart.size(), s.DuStart.size(), s.DvStart.size()});
  StartPointList list;
  list.number = std::clamp(s.NbStart, 0, static_cast<int32_t>(store) - 1);
  for (int32_t j = 1; j <= list.number; ++j)
    list.points.push_back({s.XStart[At(j)], s.YStart[At(j)], s.DuStart[At(j)], s.DvStart[At(j)],
                           s.StartOk[At(j)], StartPointEntry::Current::Keep});
  return list;
}

// The start-point arrays grow to hold the list and never shrink: CurStart
// outlives a clearing of the start points and stays an index into them.
void ApplyStartPoints(const StartPointList& list, AppState& s) {
  s.NbStart = list.number;
  if (At(list.number) >= s.XStart.size()) s.ResizeStartPoints(list.number);
  for (size_t k = 0; k < list.points.size(); ++k) {
    const StartPointEntry& p = list.points[k];
    const size_t i = k + 1;
    if (p.x) s.XStart[i] = *p.x;
    if (p.y) s.YStart[i] = *p.y;
    if (p.du) s.DuStart[i] = *p.du;
    if (p.dv) s.DvStart[i] = *p.dv;
    if (p.ok) s.StartOk[i] = *p.ok;
    using Current = StartPointEntry::Current;
    const auto n = static_cast<int32_t>(i);
    if (p.current == Current::Take || (p.current == Current::TakeUnlessEarlier && (s.CurStart == 0 || n < s.CurStart)))
      s.CurStart = n;
  }
}

AreaContent AreaContentOf(const AppState& s, int32_t areaSlots, const GageStore& gages, ExtraValues extra) {
  return {gages,         OutlinesOf(s, areaSlots),  StartPointsOf(s), std::move(extra),
          UnitsOf(s),    {s.Young, s.Poisson},      FormingLimitZoneOf(s), CrackOf(s)};
}

Units UnitsOf(const AppState& s) { return {s.UnitNameX, s.UnitNameY, s.UnitPX, s.UnitPY}; }

void ApplyUnits(const Units& units, AppState& s) {
  s.UnitNameX = units.nameX;
  s.UnitNameY = units.nameY;
  s.UnitPX = units.px;
  s.UnitPY = units.py;
}

Parameters ParametersOf(const AppState& s) {
  return {s.LpatMin, s.LpatMax, s.Lgrid, s.Interpolation, s.Correlation, s.LargeStrain, s.Precision};
}

void ApplyParameters(const Parameters& p, AppState& s) {
  s.LpatMin = p.lpatMin;
  s.LpatMax = p.lpatMax;
  s.Lgrid = p.lgrid;
  s.Interpolation = p.interpolation;
  s.Correlation = p.correlation;
  s.LargeStrain = p.largeStrain;
  s.Precision = p.precision;
}

void ApplyMaterial(const Material& material, AppState& s) {
  s.Young = material.young;
  s.Poisson = material.poisson;
}

FormingLimitZone FormingLimitZoneOf(const AppState& s) { return {s.ClfMode, s.xstrict, s.ystrict}; }

void ApplyFormingLimitZone(const FormingLimitZone& clf, AppState& s) {
  s.ClfMode = clf.on;
  s.xstrict = clf.xstrict;
  s.ystrict = clf.ystrict;
}

Crack CrackOf(const AppState& s) {
  return {s.FissureOn, s.XFissureDep, s.YFissureDep, s.XFissureArr, s.YFissureArr, s.RayonFissure};
}

void ApplyCrack(const Crack& crack, AppState& s) {
  s.FissureOn = crack.on;
  s.XFissureDep = crack.xDep;
  s.YFissureDep = crack.yDep;
  s.XFissureArr = crack.xArr;
  s.YFissureArr = crack.yArr;
  s.RayonFissure = crack.radius;
}

std::string NotRightFormattedMessage(const std::string& path) {
  return "This file :" + path + " is not right formatted, no data could be retrieved from this file";
}

}  // namespace tessiva
