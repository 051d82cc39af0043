#include "formats/seqfile.h"

#include <cstdlib>

#include "formats/sections.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "state/picturefiles.h"
#include "state/index.h"

namespace tessiva {
namespace {

// Writes every member's stub and returns the sequence file's lines.
// A stub goes where no setup would be lost, or where the user agrees to lose it.
bool WriteStub(const std::string& path, const std::string& text, const ReplaceQuestion& mayReplace) {
  if (mayReplace && HoldsSetup(path) && !mayReplace(path)) return true;
  return WriteFileAtomically(path, text);
}

std::optional<std::string> WriteMemberStubs(AppState& s, const SequenceMembers& m, const ReplaceQuestion& mayReplace) {
  const bool incremental = s.SeqRefChange != 0;
  std::string lines;
  std::string previousStem;
  for (int32_t i = 1; i <= s.NbSeq; ++i) {
    const std::string& deformed = m.FicDefText[At(i)];
    const bool fromReference = i == 1 || !incremental;
    // Incremental members compare each picture with the one before it.
    const std::string refName = fromReference ? s.PicRefName : m.FicDefText[At(i - 1)];
    const std::string refPath = fromReference ? s.PicRefPath : m.FicDefTag[At(i - 1)];
    const std::string stem = PictureStem(refName) + "-" + PictureStem(deformed);
    s.DataFile = PictureStem(refPath) + "-" + PictureStem(deformed) + ".don";
    s.PicDefName = deformed;
    AppendLine(lines, stem + ".don");
    const bool linked = incremental && i > 1;
    if (linked) s.ResultFrom = previousStem + ".res";
    const IncrementalLink link{s.PicRefName, s.ResultFrom};
    if (!WriteStub(s.DataFile, StubText(s.Title, refName, deformed, linked ? &link : nullptr), mayReplace))
      return std::nullopt;
    previousStem = stem;
  }
  return lines;
}

}  // namespace

bool IsSequenceFile(const std::string& fileName) { return fileName.ends_with("seq"); }

std::vector<std::string> SequenceMemberNames(std::string_view text) {
  std::vector<std::string> names = SplitLines(text);
  for (std::string& name : names) name = Trim(name);
  return names;
}

std::string StubText(std::string_view version, const std::string& ref, const std::string& def,
                     const IncrementalLink* link) {
  std::string out;
  AppendBanner(out, version);
  AppendLine(out, "[PICTURES]");
  AppendLine(out, "; PicRef= filename of the reference picture");
  AppendKey(out, "PicRef", ToLower(ref));
  AppendLine(out, "; PicDef= filename of the deformed picture");
  AppendKey(out, "PicDef", ToLower(def));
  if (link) {
    AppendLine(out, "; PicRefini= filename of the first picture in an incremental sequence");
    AppendKey(out, "PicRefini", ToLower(link->picRefini));
    AppendLine(out, "[INCREMENTAL]");
    AppendLine(out, "; ResultFrom= filename of the previous result");
    AppendKey(out, "ResultFrom", ToLower(link->resultFrom));
  }
  return out;
}

bool HoldsSetup(const std::string& path) {
  const KeyFile keys = KeyFile::Load(path);
  for (const char* section : {"OUTLINES", "GAGES", "STARTPOINTS"})
    if (keys.Int(section, "Number", 0) > 0) return true;
  return false;
}

bool SauveSeq(AppState& s, const SequenceMembers& members, const ReplaceQuestion& mayReplace) {
  if (members.FromFile) return true;
  if (s.NbSeq <= 1) return WriteStub(s.FileName, StubText(s.Title, s.PicRefName, s.PicDefName, nullptr), mayReplace);
  if (members.FicDefText.size() <= At(s.NbSeq) || members.FicDefTag.size() <= At(s.NbSeq)) return false;
  const auto lines = WriteMemberStubs(s, members, mayReplace);
  return lines && WriteFileAtomically(s.FileName, *lines);
}

bool ReadSequenceMembers(AppState& s, MemberFiles files) {
  if (!IsSequenceFile(s.FileName)) {
    s.NbSeq = 1;
    s.ResizeSequence(1);
    s.DataFilePath[1] = s.FileName;
    s.DataFileName[1] = s.FileTitle;
    return true;
  }
  const auto text = ReadWholeFile(s.FileName);
  if (!text) return false;
  const std::vector<std::string> names = SequenceMemberNames(*text);
  s.NbSeq = static_cast<int32_t>(names.size());
  s.ResizeSequence(s.NbSeq);
  for (int32_t k = 1; k <= s.NbSeq; ++k) {
    const std::string& name = names[At(k - 1)];
    s.DataFileName[At(k)] = files == MemberFiles::Results ? ResultPathOf(name) : name;
    s.DataFilePath[At(k)] = JoinPath(s.LastDir, s.DataFileName[At(k)]);
  }
  return true;
}

// SeqRefChange is multiplied by -1 while a member names the same picture as
// the one before, by 0 once one differs.
std::optional<std::string> TellSequenceKind(AppState& s, std::string_view key,
                                            const std::function<std::string(int32_t)>& selectMember) {
  std::string previous;
  for (int32_t i = 1; i <= s.NbSeq; ++i) {
    const std::string path = selectMember(i);
    const std::string picture = ReadKeyText("PICTURES", key, path);
    if (picture == kNotFound) return path.empty() ? std::string() : NotRightFormattedMessage(path);
    if (i == 1) previous = picture;
    s.SeqRefChange *= picture == previous ? -1 : 0;
    previous = picture;
  }
  // Ends at 0 when all members share one picture, at 1 as soon as two neighbours differ.
  if (s.NbSeq != 1) s.SeqRefChange = 1 - std::abs(s.SeqRefChange);
  return std::nullopt;
}

}  // namespace tessiva
