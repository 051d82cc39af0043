// Sequence files (.seq): the member names are the lines, trimmed, whatever
// ends them; written back one a line they read the same; and the member list
// read from the file on disk agrees with them.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formats/seqfile.h"
#include "fuzz/fuzzcheck.h"
#include "state/files.h"
#include "state/numtext.h"

using namespace tessiva;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::vector<std::string> names = SequenceMemberNames(text);

  size_t lineEnds = 0;
  for (char c : text) lineEnds += c == '\n' || c == '\r';
  FUZZ_CHECK(names.size() <= lineEnds + 1, fuzz::Num(static_cast<double>(names.size())) + " names");
  std::string joined = "\xEF\xBB\xBF";  // a first name may itself start with a byte order mark
  for (const std::string& name : names) {
    FUZZ_CHECK(name == Trim(name), "name \"" + PrintableName(name) + "\" keeps blanks");
    FUZZ_CHECK(name.find_first_of("\r\n") == std::string::npos, "name \"" + PrintableName(name) + "\" spans lines");
    joined += name + "\n";
  }
  FUZZ_CHECK(SequenceMemberNames(joined) == names, "the names written one a line read differently");

  const std::string& dir = fuzz::ScratchDir("seqfile");
  AppState s;
  s.LastDir = dir;
  s.FileName = fuzz::WriteFile(dir, "members.seq", text);
  FUZZ_CHECK(ReadSequenceMembers(s, MemberFiles::DataFiles), "the sequence file can't be read");
  FUZZ_CHECK(s.NbSeq == static_cast<int32_t>(names.size()) && s.DataFileName.size() == names.size() + 1 &&
                 s.DataFilePath.size() == names.size() + 1,
             "NbSeq " + fuzz::Num(s.NbSeq) + " for " + fuzz::Num(static_cast<double>(names.size())) + " names");
  for (size_t k = 0; k < names.size(); ++k)
    FUZZ_CHECK(s.DataFileName[k + 1] == names[k], "member " + fuzz::Num(static_cast<double>(k + 1)));
  return 0;
}
