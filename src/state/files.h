// File-system helpers shared by every reader and writer: existence, whole-file
// reads, atomic whole-file writes, case-blind look-up of pictures, paths.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessiva {

// True when the path names an existing regular file; false for a directory, a
// missing file or a path the system can't search.
bool FileExists(const std::string& path);

// The path itself when it exists; otherwise the entry of its directory whose
// name matches it without regard to case (files name pictures in lower case,
// the disk may hold another case); otherwise the path unchanged.
std::string ResolvePathNoCase(const std::string& path);

// The bytes of a regular file; nothing for a directory, a device, a missing
// file, or a read that fails (memory included).
std::optional<std::string> ReadWholeFile(const std::string& path);

// Writes beside the target, then renames over it once every byte has gone out
// without a fault: a failure, a full disk included, never leaves half a file.
bool WriteFileAtomically(const std::string& path, std::string_view content);
// The same for content made as it is written: `write` puts it on the stream,
// whose faults decide. Whatever `write` throws is passed on, the target untouched.
bool WriteFileAtomically(const std::string& path, const std::function<void(std::ostream&)>& write);

// A name a file can be given and found by: not empty, and free of control
// characters (bytes 0-31 and 127), which the system cuts names at or misreads.
bool IsUsableFileName(std::string_view name);
// The name with its control characters shown as \0, \x01, \x7F...: fit for a message.
std::string PrintableName(std::string_view name);

// Walks the lines of a text ended by LF, CR LF or a lone CR, whichever editor
// wrote it; a UTF-8 byte order mark at the start is passed over. A final line
// without an ending counts, an empty text has none. Past the last line it
// gives empty lines.
class LineCursor {
 public:
  explicit LineCursor(std::string_view text);
  std::string_view Next();
  bool AtEnd() const { return pos_ >= text_.size(); }
  // The text read so far, byte order mark and line ends included.
  std::string_view Consumed() const { return text_.substr(0, pos_); }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
};

// Splits text into lines, as LineCursor walks them.
std::vector<std::string> SplitLines(std::string_view text);

// dir + separator + name.
std::string JoinPath(std::string_view dir, std::string_view name);
// The last component of a path, and the path less that component.
std::string FileNameOf(std::string_view path);
std::string DirectoryOf(std::string_view path);
// A file name or path less its last four characters (".bmp", ".don"...);
// empty when it is shorter.
std::string Stem(std::string_view name);
// The result file of a data file: its stem with ".res".
std::string ResultPathOf(std::string_view dataPath);

}  // namespace tessiva
