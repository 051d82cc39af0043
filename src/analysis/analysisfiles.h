// The analysis window's files: a result file read into the window with all
// that depends on it, the member list of a sequence of results, and the named
// sets of areas of selection.
#pragma once

#include <cstdint>
#include <string>

#include "analysis/newanalyse.h"
#include "formats/sidefiles.h"

namespace tessiva {

// Reads member `index` (1-based) of DataFilePath into the analysis window.
// With `keep` the view scale stays as it is, as when stepping through a
// sequence. The grid step and the array sizes come from the first member
// alone. A file that can't be used (a picture key or the [RESULTS] line
// missing, or more patterns than the picture's grid holds) shows the "not
// right formatted" message and leaves the result in place; a section of the
// head that can't be used is passed over. Returns whether the file was read.
bool LecRes(NewAnalyse& window, int32_t index, bool keep);

// The member list: the result files of FileName, also shown in Combo4; the
// kind of sequence comes from each result's PicAna.
bool LecSeqResults(AppState& s, UiPort& ui, ControlRegistry& analyseControls);

// The names of the sets of areas of selection, shown in Combo1.
void InitAOS(AppState& s, ControlRegistry& analyseControls, AreaSetList& list);
// The selection area and gauges as a set.
bool SauveAOS(const AppState& s, const SelectionArea& selection, const GageStore& gages, const std::string& name);
// Replaces the selection and the gauges by a stored set; false, with "<file>
// can't be loaded", when the set can't be used. A missing side file reads as
// an empty set.
bool LecAOS(const AppState& s, UiPort& ui, SelectionArea& selection, GageStore& gages, const std::string& name);
// Saves under the name typed in Combo1 and shows the list again.
std::string SaveAOSByName(AppState& s, ControlRegistry& analyseControls, AreaSetList& list,
                          const SelectionArea& selection, const GageStore& gages);
// The Delete key on an entry of Combo1.
void RemoveAOSName(AppState& s, ControlRegistry& analyseControls, AreaSetList& list, int32_t position);
// Deletes the side file of that name.
bool DeleteAOS(const AppState& s, const std::string& name);

}  // namespace tessiva
