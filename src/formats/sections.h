// The key-file sections that the data file and the area side files share:
// writers that append their lines to a text, readers that fill the state.
// Readers throw FormatError for a count the stores can't hold; each public
// operation of the formats catches it at its boundary.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "state/appstate.h"
#include "state/gages.h"
#include "ui/controls.h"

namespace tessiva {

class AreaForm;

// Bounds of the lists a file names that have no fixed store.
inline constexpr int32_t kMaxGages = 999;
inline constexpr int32_t kMaxExtraValues = 999;

struct FormatError : std::runtime_error {
  FormatError() : std::runtime_error("file not right formatted") {}
};

// value when it lies in low..high, else FormatError.
int32_t CheckedCount(int32_t value, int32_t low, int32_t high);

// One line and its LF ending.
void AppendLine(std::string& out, std::string_view line);
// "  key=value": files written here indent their keys with two blanks.
void AppendKey(std::string& out, std::string_view key, std::string_view value);
// A numbered key: stem and number without a blank ("x3"), and "x3-7" with a second number.
std::string NumberedKey(std::string_view stem, int32_t i);
std::string NumberedKey(std::string_view stem, int32_t i, int32_t j);

// The keys of one section of one file.
class SectionReader {
 public:
  SectionReader(std::string section, const std::string& file) : section_(std::move(section)), file_(file) {}
  int32_t Int(const std::string& key, int32_t def) const;
  // The value, or nothing when the key is "not found".
  std::optional<std::string> Text(const std::string& key) const;

 private:
  std::string section_;
  const std::string& file_;
};

// Sets NbStart and grows the start-point arrays to hold it. They never shrink:
// CurStart outlives a clearing of the start points and stays an index into them.
void SetStartPointCount(AppState& s, int32_t count);

// [GAGES], only when at least one gauge exists.
void WriteGagesSection(std::string& out, const GageStore& gages);
// [OUTLINES] with `count` slots of the area store.
void WriteOutlinesSection(std::string& out, const AppState& s, int32_t count);
void WriteStartPointsSection(std::string& out, const AppState& s);
// [EXTRA] from the window's name list Combo2 and value list List2.
void WriteExtraSection(std::string& out, const ControlRegistry& controls);
void WriteUnitSection(std::string& out, const AppState& s);
void WriteMaterialSection(std::string& out, const AppState& s);
// [CLF] when ClfMode, [FISSURE] when FissureOn.
void WriteClfAndFissureSections(std::string& out, const AppState& s);

// [UNIT] into the state and the window's unit fields.
void ReadUnitSection(AppState& s, ControlRegistry& controls, const std::string& file);
// [EXTRA] into Combo2 and List2, which keep their entries when the file has none.
void ReadExtraSection(ControlRegistry& controls, const std::string& file);
void ReadMaterialSection(AppState& s, const std::string& file);
// [CLF] sets ClfMode, [FISSURE] sets FissureOn: each is on only when all its keys are there.
void ReadClfSection(AppState& s, const std::string& file);
void ReadFissureSection(AppState& s, const std::string& file);
// [GAGES]: every gauge of which all six keys are found goes to `store`; the
// number it gets there is returned through `added` for the caller's own use.
void ReadGagesSection(const std::string& file, int32_t defaultNumber, GageStore& store,
                      const std::function<void(const Gage&, int32_t number)>& added = {});
// [GAGES] into the setup window: each gauge also lays its areas.
void ReadGagesIntoForm(AreaForm& form, const std::string& file, int32_t defaultNumber);

}  // namespace tessiva
