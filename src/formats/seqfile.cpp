#include "formats/seqfile.h"

#include <cstdlib>
#include <functional>
#include <optional>

#include "formats/datafile.h"
#include "formats/sections.h"
#include "setup/areaform.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

size_t At(int32_t i) { return static_cast<size_t>(i); }

bool EndsWith(const std::string& text, std::string_view end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool IsSequenceFile(const std::string& fileName) { return EndsWith(fileName, "seq"); }

// A stub data file: banner and [PICTURES], and for an incremental member after
// the first, the first picture of the test and the previous member's result.
std::string StubText(const AppState& s, const std::string& ref, const std::string& def,
                     const std::string* resultFrom) {
  std::string out;
  BanniereFichier(out, s);
  AppendLine(out, "[PICTURES]");
  AppendLine(out, "; PicRef= filename of the reference picture");
  AppendKey(out, "PicRef", ToLower(ref));
  AppendLine(out, "; PicDef= filename of the deformed picture");
  AppendKey(out, "PicDef", ToLower(def));
  if (resultFrom) {
    AppendLine(out, "; PicRefini= filename of the first picture in an incremental sequence");
    AppendKey(out, "PicRefini", ToLower(s.PicRefName));
    AppendLine(out, "[INCREMENTAL]");
    AppendLine(out, "; ResultFrom= filename of the previous result");
    AppendKey(out, "ResultFrom", ToLower(*resultFrom));
  }
  return out;
}

// Writes every member's stub and returns the sequence file's lines.
std::optional<std::string> WriteMemberStubs(AppState& s, const SequenceMembers& m) {
  const bool incremental = s.SeqRefChange != 0;
  std::string lines;
  std::string previousStem;
  for (int32_t i = 1; i <= s.NbSeq; ++i) {
    const std::string& deformed = m.FicDefText[At(i)];
    const bool fromReference = i == 1 || !incremental;
    // Incremental members compare each picture with the one before it.
    const std::string refName = fromReference ? s.PicRefName : m.FicDefText[At(i - 1)];
    const std::string refPath = fromReference ? s.PicRefPath : m.FicDefTag[At(i - 1)];
    const std::string stem = Stem(refName) + "-" + Stem(deformed);
    s.DataFile = Stem(refPath) + "-" + Stem(deformed) + ".don";
    s.PicDefName = deformed;
    AppendLine(lines, stem + ".don");
    const bool linked = incremental && i > 1;
    if (linked) s.ResultFrom = previousStem + ".res";
    if (!WriteFileAtomically(s.DataFile, StubText(s, refName, deformed, linked ? &s.ResultFrom : nullptr)))
      return std::nullopt;
    previousStem = stem;
  }
  return lines;
}

// The member names of FileName: the lines of a sequence file, each turned by
// `memberName`, or FileName itself. False when the sequence file can't be read.
bool ReadMemberList(AppState& s, const std::function<std::string(const std::string&)>& memberName) {
  if (!IsSequenceFile(s.FileName)) {
    s.NbSeq = 1;
    s.ResizeSequence(1);
    s.DataFilePath[1] = s.FileName;
    s.DataFileName[1] = s.FileTitle;
    return true;
  }
  const auto text = ReadWholeFile(s.FileName);
  if (!text) return false;
  const std::vector<std::string> lines = SplitLines(*text);
  s.NbSeq = static_cast<int32_t>(lines.size());
  s.ResizeSequence(s.NbSeq);
  for (int32_t k = 1; k <= s.NbSeq; ++k) {
    s.DataFileName[At(k)] = memberName(Trim(lines[At(k - 1)]));
    s.DataFilePath[At(k)] = JoinPath(s.LastDir, s.DataFileName[At(k)]);
  }
  return true;
}

// The reference rule over the members: SeqRefChange is multiplied by -1 while
// a member's key names the same picture as the one before, by 0 once one
// differs. `selectMember` makes member i the current file and returns its path.
// False, after the status text, at the first member without the key.
bool CompareMemberPictures(AppState& s, UiPort& ui, const char* key,
                           const std::function<std::string(int32_t)>& selectMember) {
  std::string previous;
  for (int32_t i = 1; i <= s.NbSeq; ++i) {
    const std::string path = selectMember(i);
    const std::string picture = ReadKeyText("PICTURES", key, path);
    if (picture == kNotFound) {
      if (!path.empty()) ui.StatusLine(NotRightFormattedMessage(path));
      return false;
    }
    if (i == 1) previous = picture;
    s.SeqRefChange *= picture == previous ? -1 : 0;
    previous = picture;
  }
  // Ends at 0 when all members share one picture, at 1 as soon as two neighbours differ.
  if (s.NbSeq != 1) s.SeqRefChange = 1 - std::abs(s.SeqRefChange);
  return true;
}

void ShowEndData(ControlRegistry& c, bool shown) {
  c.SetEnabled("Toolbar1.enddata", shown);
  c.SetVisible("Toolbar1.enddata", shown);
}

// The analysis window's tools that walk a sequence.
void EnableSequenceTools(ControlRegistry& c, bool enabled) {
  for (const char* name : {"Toolbar1.Button14", "Toolbar1.Button15", "Toolbar1.Button17", "Toolbar1.Button18",
                           "Toolbar1.Button22", "OptionMinMax(1)"})
    c.SetEnabled(name, enabled);
}

}  // namespace

bool SauveSeq(AppState& s, const SequenceMembers& members) {
  if (members.FromFile) return true;
  try {
    if (s.NbSeq <= 1) return WriteFileAtomically(s.FileName, StubText(s, s.PicRefName, s.PicDefName, nullptr));
    if (members.FicDefText.size() <= At(s.NbSeq) || members.FicDefTag.size() <= At(s.NbSeq)) return false;
    const auto lines = WriteMemberStubs(s, members);
    return lines && WriteFileAtomically(s.FileName, *lines);
  } catch (...) {
    return false;
  }
}

bool LecSeq(AreaForm& form) {
  AppState& s = form.State();
  ControlRegistry& c = form.Controls();
  try {
    ShowEndData(c, false);
    c.SetItems("Combo2", {});
    c.SetItems("List2", {});
    if (!ReadSequenceMembers(s)) {
      form.Ui().StatusLine(NotRightFormattedMessage(s.FileName));
      return false;
    }
    form.DoneFlags.assign(At(s.NbSeq) + 1, false);
    if (s.NbSeq != 1) {
      s.SeqRefChange = 1;
      ShowEndData(c, true);
    }
    const bool read = CompareMemberPictures(s, form.Ui(), "PicRef", [&s](int32_t i) {
      s.DataFile = s.DataFilePath[At(i)];
      return s.DataFile;
    });
    if (!read) return false;
    // An incremental sequence is prepared from its first member: the solver
    // carries the rest on through ResultFrom.
    if (s.SeqRefChange == 1) {
      ShowEndData(c, false);
      s.NbSeq = 1;
    }
    return true;
  } catch (...) {
    form.Ui().StatusLine(NotRightFormattedMessage(s.FileName));
    return false;
  }
}

bool ReadSequenceMembers(AppState& s) {
  return ReadMemberList(s, [](const std::string& name) { return name; });
}

bool SequenceKindFromPicRef(AppState& s, UiPort& ui) {
  return CompareMemberPictures(s, ui, "PicRef", [&s](int32_t i) { return s.DataFilePath[At(i)]; });
}

bool LecSeqResults(AppState& s, UiPort& ui, ControlRegistry& analyseControls) {
  try {
    analyseControls.SetItems("Combo4", {});
    EnableSequenceTools(analyseControls, false);
    if (!ReadMemberList(s, [](const std::string& name) { return ResultPathOf(name); })) {
      ui.StatusLine(NotRightFormattedMessage(s.FileName));
      return false;
    }
    analyseControls.SetItems("Combo4", std::vector<std::string>(s.DataFileName.begin() + 1, s.DataFileName.end()));
    if (s.NbSeq > 1) EnableSequenceTools(analyseControls, true);
    if (s.NbSeq != 1) s.SeqRefChange = 1;
    return CompareMemberPictures(s, ui, "PicAna", [&s](int32_t i) {
      s.ResFile = s.DataFilePath[At(i)];
      s.ResName = s.DataFileName[At(i)];
      return s.ResFile;
    });
  } catch (...) {
    ui.StatusLine(NotRightFormattedMessage(s.FileName));
    return false;
  }
}

}  // namespace tessiva
