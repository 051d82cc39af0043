#include "analysis/fieldlist.h"

#include <algorithm>
#include <cctype>

#include "results/ranges.h"

namespace tessiva {
namespace {

constexpr std::string_view kRule = "---------------------------------------------";
constexpr std::string_view kH3Name = "Epsilon III=-(EI+EII)";

using enum ScaleUnit;

constexpr std::array<FieldEntry, kFieldCount> kEntries{{
    {"1 displacement", kViewU, "1 displacement", UnitX, "Displacement in ", UnitX, " along axe 1"},
    {"2 displacement", kViewV, "2 displacement", UnitY, "Displacement in ", UnitY, " along axe 2"},
    {"Norm", kViewNorm, "Norm", NormUnit, "Norm of displacement vector in ", UnitX, ""},
    {"Deformed Mesh", kViewDeformedMesh, "Deformed Mesh", None, "Deformed mesh"},
    {"Vectors displacement", kViewVectors, "Vectors displacement", None, "Displacement vector"},
    {kRule, std::nullopt, "", None, ""},
    {"Epsilon I Major Hencky", kViewH1, "Epsilon I Major Hencky", Percent, "Major principal strain - Hencky tensor"},
    {"Epsilon II Minor Hencky", kViewH2, "Epsilon II Minor Hencky", Percent, "Minor principal strain - Hencky tensor"},
    {kH3Name, kViewH3, kH3Name, Percent, "EIII =-(EI+EII) - Hencky tensor"},
    {"Epsi. 11 Green Lagrange", kViewE11, "Epsi. 11 Green Lagrange", Percent,
     "Strain along axe 1 - Green Lagrange tensor"},
    {"Epsi. 22 Green Lagrange", kViewE22, "Epsi. 22 Green Lagrange", Percent,
     "Strain along axe 2 - Green Lagrange tensor"},
    {"Epsi. 12 Green Lagrange", kViewE12, "Epsi. 12 Green Lagrange", Percent, "Shear strain - Green Lagrange tensor"},
    {"Teta(1,I)", kViewTeta, "Teta(1,I)", Degrees, "Angle in degrees between axe 1 and the first principal axe"},
    {"Isostatic", kViewTresca, "Isostatic (major direction, color=Tresca=(E1-E2))", Percent,
     "Isostatic representation"},
    {kRule, std::nullopt, "", None, ""},
    {"FLC Diagram", kViewFlcDiagram, kH3Name, Percent, "FLC Diagram"},
    {"FLC Determination", kViewFlcDetermination, kH3Name, Percent, "FLC Determination"},
    {"Local Rotation", kViewPsi, "Local rotation (R)", Degrees, "Local rotation"},
    {"Shear angle", kViewGamma, "Shear angle", Degrees, "Shear angle"},
    {kRule, std::nullopt, "", None, ""},
    {"Accuracy", kViewEcart, "Accuracy", None, "Accuracy result"},
}};

std::string UnitText(ScaleUnit unit, const UnitNames& units) {
  switch (unit) {
    case UnitX: return units.x;
    case UnitY: return units.y;
    case NormUnit: return units.norm;
    case Percent: return "%";
    case Degrees: return "Degrees";
    case None: break;
  }
  return {};
}

std::string Folded(std::string_view text) {
  const auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  std::string folded(text);
  for (char& c : folded) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return folded;
}

}  // namespace

const std::array<FieldEntry, kFieldCount>& FieldEntries() { return kEntries; }

const FieldEntry* FieldAt(int32_t index) {
  return index >= 0 && index < kFieldCount ? &kEntries[static_cast<size_t>(index)] : nullptr;
}

std::optional<int32_t> FieldIndexOfView(int32_t view) {
  for (int32_t i = 0; i < kFieldCount; ++i)
    if (kEntries[static_cast<size_t>(i)].view == view) return i;
  return std::nullopt;
}

std::optional<int32_t> FieldIndexOfName(std::string_view name) {
  const std::string wanted = Folded(name);
  for (int32_t i = 0; i < kFieldCount; ++i) {
    const FieldEntry& entry = kEntries[static_cast<size_t>(i)];
    if (entry.view && Folded(entry.listText) == wanted) return i;
  }
  return std::nullopt;
}

std::string FieldTitle(const FieldEntry& entry, const UnitNames& units) {
  return std::string(entry.title) + UnitText(entry.titleUnit, units) + std::string(entry.titleEnd);
}

std::string FieldUnit(const FieldEntry& entry, const UnitNames& units) { return UnitText(entry.unit, units); }

std::string ScaleCaption(const FieldEntry& entry, const UnitNames& units) {
  const std::string unit = UnitText(entry.unit, units);
  return unit.empty() ? std::string(entry.scaleName) : std::string(entry.scaleName) + " in " + unit;
}

}  // namespace tessiva
