// The sequence file (.seq): one bare data-file name a line, tying together the
// data files of one test, and the stub data files the sequence builder writes
// beside it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "state/appstate.h"

namespace tessiva {

// A name is read as a sequence when it ends in "seq"; any other is one data file.
bool IsSequenceFile(const std::string& fileName);

// The member names of a sequence's text, one a line, without surrounding blanks.
std::vector<std::string> SequenceMemberNames(std::string_view text);

// What ties an incremental member, after the first, to the test: its first
// picture and the previous member's result.
struct IncrementalLink {
  std::string picRefini;
  std::string resultFrom;
};

// A stub data file: banner and [PICTURES], and for a linked member the first
// picture of the test and [INCREMENTAL] ResultFrom. Picture names go in lower case.
std::string StubText(std::string_view version, const std::string& ref, const std::string& def,
                     const IncrementalLink* link);

// What the sequence builder hands to SauveSeq: its deformed pictures, 1-based,
// as shown (bare names) and as tagged (full paths).
struct SequenceMembers {
  bool FromFile = false;  // the sequence was opened from a file, not built
  std::vector<std::string> FicDefText{""};
  std::vector<std::string> FicDefTag{""};
};

// Whether a data file on disk holds areas of interest, gauges or start points,
// which a stub in its place would lose.
bool HoldsSetup(const std::string& path);

// Asked before a stub replaces a data file that holds a setup (HoldsSetup);
// false keeps the file as it is.
using ReplaceQuestion = std::function<bool(const std::string& path)>;

// Writes the sequence file FileName and a stub data file per member, or, for
// a single pair, FileName as that one stub. Sequential members share PicRef;
// incremental ones compare each picture with the one before and name the
// previous result in [INCREMENTAL] ResultFrom. A data file that holds a setup
// is replaced only when mayReplace agrees (without it, always). Returns false
// when a file could not be written; nothing is written for a sequence opened
// from a file.
bool SauveSeq(AppState& s, const SequenceMembers& members, const ReplaceQuestion& mayReplace = {});

// Whether a sequence lists its data files or, for the analysis, their results.
enum class MemberFiles { DataFiles, Results };

// The member list of FileName into NbSeq, DataFileName and DataFilePath (in
// LastDir): the lines of a sequence file, or FileName itself. False when a
// sequence file can't be read.
bool ReadSequenceMembers(AppState& s, MemberFiles files);

// The reference rule over the members, by the picture each names under
// [PICTURES] `key`: from the SeqRefChange set beforehand (1 for several
// members), 0 when every member names the same picture, 1 once two neighbours
// differ. `selectMember` makes member i the current file and returns its
// path. Nothing when every member was read; else the status text of the first
// member without the key (empty for an unnamed member).
std::optional<std::string> TellSequenceKind(AppState& s, std::string_view key,
                                            const std::function<std::string(int32_t)>& selectMember);

}  // namespace tessiva
