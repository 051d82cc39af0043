// The setup window's files: the data file of each member of the sequence,
// the member list, and the named sets of areas of interest. Each operation
// reads or writes through the file formats and applies the content to the
// state and the window.
#pragma once

#include <string>

#include "formats/sidefiles.h"
#include "setup/areaform.h"

namespace tessiva {

// Writes DataFilePath(index), after asking whether a new name typed in Text1
// renames the file. Without ClfMode the area count NbBox ends one lower: it
// turns the free slot count of memory into the count of areas of the file.
// Returns false when index is no member or the file could not be written.
bool SauveDonArea(AreaForm& form, int index);

// Reads DataFilePath(index) into the state and the setup window: pictures,
// parameters (for the first member only), units, extra values and, unless
// headerOnly, material, forming-limit and crack data, areas, gauges and start
// points. A file that can't be used stops the reading after the last section
// that could be, with the "not right formatted" status text, and returns false.
bool LecDonArea(AreaForm& form, int index, bool headerOnly);

// The member list: the data files of FileName (a sequence or one data file).
// Tells the kind of sequence by comparing the members' PicRef; an incremental
// one is prepared from its first member only (NbSeq 1). Returns false, with
// the "not right formatted" status text, at the first member that can't be read.
bool LecSeq(AreaForm& form);

// The names of the sets of areas of interest, shown in Combo1 under an invitation.
void InitAOI(AreaForm& form, AreaSetList& list);
// Saves the window's areas, gauges, start points and calibration as a set.
bool SauveAOI(AreaForm& form, const std::string& name);
// Replaces the areas and start points of the window by a stored set; false,
// with "<file> can't be loaded", when the set can't be used. A missing side
// file reads as an empty set.
bool LecAOI(AreaForm& form, const std::string& name);
// Saves under the name typed in Combo1 and shows the list again.
std::string SaveAOIByName(AreaForm& form, AreaSetList& list);
// The Delete key on an entry of Combo1.
void RemoveAOIName(AreaForm& form, AreaSetList& list, int32_t position);

}  // namespace tessiva
