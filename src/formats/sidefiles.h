// Area side files: named sets of areas of interest (AOI, setup window) and of
// areas of selection (AOS, analysis window), one "<name>-aoi.ini" or
// "<name>-AOS.ini" file each in StartDir, their names listed in correl.ini.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/content.h"
#include "state/appstate.h"
#include "state/keyfile.h"

namespace tessiva {

// Which of the two families of sets a name list belongs to.
struct AreaSetKind {
  const char* section;     // section of correl.ini
  const char* countKey;    // its count key
  const char* fileEnding;  // appended to the set's name
};
inline constexpr AreaSetKind kAoiSets{"AOI", "NUMBEROFAOI", "-aoi.ini"};
inline constexpr AreaSetKind kAosSets{"AOS", "NUMBEROFAOS", "-AOS.ini"};

// A window's list of set names, newest first.
struct AreaSetList {
  static constexpr int32_t kMaxNames = 30;
  std::vector<std::string> AreaNames{""};  // 1-based
  int32_t AreaCount = 0;
  std::vector<std::string> Names() const;
};

std::string SideFilePath(const AppState& s, const AreaSetKind& kind, const std::string& name);

// Loads the names of correl.ini into the list. The head of correl.ini, up to
// the list's section, is kept in TexteLignes for later readers.
void ReadAreaSetNames(AppState& s, const AreaSetKind& kind, AreaSetList& list);
// Saves under `typed` (trimmed, "Default" when blank) through `writeSideFile`:
// an existing name has its side file rewritten; a new one goes first in the
// list, which drops its oldest name beyond 30 (that side file stays on disk),
// and the list is written to correl.ini. Returns the name saved under.
std::string SaveAreaSetName(AppState& s, const AreaSetKind& kind, AreaSetList& list, const std::string& typed,
                            const std::function<bool(const std::string&)>& writeSideFile);
// Takes the name at `position` (1-based) out of the list and writes the list
// back; the side file stays on disk. False for a position outside the list.
bool RemoveAreaSetName(AppState& s, const AreaSetKind& kind, AreaSetList& list, int32_t position);

// An -aoi.ini: gauges, the areas (when any), start points, extra values,
// units, material, forming-limit zone and crack.
std::string AoiText(const AoiSet& set);
// The same read back: a set missing a section reads as empty there.
Parsed<AoiSet> ParseAoi(const KeyFile& keys);

// An -AOS.ini: gauges and the selection area in whole pixels.
std::string AosText(const AosSet& set);
Parsed<AosSet> ParseAos(const KeyFile& keys);

}  // namespace tessiva
