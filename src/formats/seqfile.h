// The sequence file (.seq): one bare data-file name a line, tying together the
// data files of one test. The builder writes it with stub data files; the
// setup and analysis windows read its member list.
#pragma once

#include <string>
#include <vector>

#include "state/appstate.h"
#include "ui/controls.h"
#include "ui/uiport.h"

namespace tessiva {

class AreaForm;

// What the sequence builder hands to SauveSeq: its deformed pictures, 1-based,
// as shown (bare names) and as tagged (full paths).
struct SequenceMembers {
  bool FromFile = false;  // the sequence was opened from a file, not built
  std::vector<std::string> FicDefText{""};
  std::vector<std::string> FicDefTag{""};
};

// Writes the sequence file FileName and a stub data file per member, or, for
// a single pair, FileName as that one stub. Sequential members share PicRef;
// incremental ones compare each picture with the one before and name the
// previous result in [INCREMENTAL] ResultFrom. Returns false when a file
// could not be written; nothing is written for a sequence opened from a file.
bool SauveSeq(AppState& s, const SequenceMembers& members);

// The setup window's member list: the data files of FileName (a sequence or
// one data file). Tells the kind of sequence by comparing the members' PicRef;
// an incremental one is prepared from its first member only (NbSeq 1).
// Returns false, with the "not right formatted" status text, at the first
// member that can't be read.
bool LecSeq(AreaForm& form);

// The member list of FileName as LecSeq reads it: NbSeq, DataFileName and
// DataFilePath (in LastDir). False when a sequence file can't be read.
bool ReadSequenceMembers(AppState& s);
// LecSeq's reference rule over the members in DataFilePath: from the
// SeqRefChange set beforehand (1 for several members), 0 when every member
// names the same PicRef, 1 once two neighbours differ. False, with the "not
// right formatted" status text, at the first member without PicRef.
bool SequenceKindFromPicRef(AppState& s, UiPort& ui);

// The analysis window's member list: the result files of FileName, also shown
// in Combo4; the kind of sequence comes from each result's PicAna.
bool LecSeqResults(AppState& s, UiPort& ui, ControlRegistry& analyseControls);

}  // namespace tessiva
