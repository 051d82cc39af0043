// Area side files: named sets of areas of interest (AOI, setup window) and of
// areas of selection (AOS, analysis window), one "<name>-aoi.ini" or
// "<name>-AOS.ini" file each in StartDir, their names listed in correl.ini.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "state/appstate.h"
#include "state/gages.h"
#include "ui/controls.h"
#include "ui/uiport.h"

namespace tessiva {

class AreaForm;

// Which of the two families of sets a name list belongs to.
struct AreaSetKind {
  const char* section;     // section of correl.ini
  const char* countKey;    // its count key
  const char* fileEnding;  // appended to the set's name
};
inline constexpr AreaSetKind kAoiSets{"AOI", "NUMBEROFAOI", "-aoi.ini"};
inline constexpr AreaSetKind kAosSets{"AOS", "NUMBEROFAOS", "-AOS.ini"};

// A window's list of set names, newest first, shown in its Combo1.
struct AreaSetList {
  static constexpr int32_t kMaxNames = 30;
  std::vector<std::string> AreaNames{""};  // 1-based
  int32_t AreaCount = 0;
};

// The analysis window's stored selection: one area, its vertices in picture pixels.
struct SelectionArea {
  int32_t NboxAOS = 0;
  std::vector<double> XAOS{0.0};  // 1-based
  std::vector<double> YAOS{0.0};
};

std::string SideFilePath(const AppState& s, const AreaSetKind& kind, const std::string& name);

// Loads the names of correl.ini into the list and Combo1. The head of correl.ini,
// up to the list's section, is kept in TexteLignes for later readers.
void InitAreaSetList(AppState& s, const AreaSetKind& kind, AreaSetList& list, ControlRegistry& controls);
// The same for the setup window, whose Combo1 then invites a name.
void InitAOI(AreaForm& form, AreaSetList& list);
void InitAOS(AppState& s, ControlRegistry& analyseControls, AreaSetList& list);

// Saves under the name in Combo1 (trimmed, "Default" when blank): an existing
// name has its side file rewritten; a new one goes first in the list, which
// drops its oldest name beyond 30 (that side file stays on disk). The list is
// written to correl.ini and shown again. Returns the name saved under.
std::string SaveAreaSetByName(AppState& s, const AreaSetKind& kind, AreaSetList& list, ControlRegistry& controls,
                              const std::function<bool(const std::string&)>& writeSideFile);
// Takes the name at `position` (1-based) out of the list and writes the list
// back; the side file stays on disk.
void RemoveAreaSetName(AppState& s, const AreaSetKind& kind, AreaSetList& list, ControlRegistry& controls,
                       int32_t position);

// The setup window's areas, gauges, start points and calibration as a set.
bool SauveAOI(AreaForm& form, const std::string& name);
// Replaces the areas and start points of the setup window by a stored set;
// false, with "<file> can't be loaded", when the set can't be used. A missing
// side file reads as an empty set.
bool LecAOI(AreaForm& form, const std::string& name);
std::string SaveAOIByName(AreaForm& form, AreaSetList& list);

// The analysis window's selection area and gauges as a set.
bool SauveAOS(const AppState& s, const SelectionArea& selection, const GageStore& gages, const std::string& name);
// Replaces the selection and the gauges by a stored set.
bool LecAOS(const AppState& s, UiPort& ui, SelectionArea& selection, GageStore& gages, const std::string& name);
bool DeleteAOS(const AppState& s, const std::string& name);

}  // namespace tessiva
