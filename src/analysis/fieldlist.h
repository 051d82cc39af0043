// The fields of the analysis window's list Combo2: what each entry shows,
// its title and the caption of its colour scale. Three entries are rules
// that separate groups and show nothing.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessiva {

// Where the unit of a scale caption comes from.
enum class ScaleUnit { None, UnitX, UnitY, NormUnit, Percent, Degrees };

struct FieldEntry {
  std::string_view listText;
  // The view code (VueCourante) the entry shows; none for a rule.
  std::optional<int32_t> view;
  std::string_view scaleName;
  ScaleUnit unit = ScaleUnit::None;
  // The title: its text, then for the displacement entries a unit's name and
  // the rest of the text.
  std::string_view title;
  ScaleUnit titleUnit = ScaleUnit::None;
  std::string_view titleEnd;
};

inline constexpr int32_t kFieldCount = 21;
// The entry that needs a forming-limit result.
inline constexpr int32_t kFlcDeterminationEntry = 16;

const std::array<FieldEntry, kFieldCount>& FieldEntries();

// The entry at a list index, none outside the list.
const FieldEntry* FieldAt(int32_t index);
// The list index of the first entry showing `view`, none when no entry does.
std::optional<int32_t> FieldIndexOfView(int32_t view);
// The index of an entry by its list text, case and surrounding blanks ignored;
// rules are never found.
std::optional<int32_t> FieldIndexOfName(std::string_view name);

// The names the unit-dependent texts use: the unit names along x and y, and
// the unit of a norm.
struct UnitNames {
  std::string x = "Pixel";
  std::string y = "Pixel";
  std::string norm = "Pixel";
};

// The title shown over the map.
std::string FieldTitle(const FieldEntry& entry, const UnitNames& units);
// The unit the entry's values are shown in ("%", "Degrees", a unit's name),
// empty when it has none.
std::string FieldUnit(const FieldEntry& entry, const UnitNames& units);
// The scale name, then " in " and the unit when there is one.
std::string ScaleCaption(const FieldEntry& entry, const UnitNames& units);

}  // namespace tessiva
