#include "state/keyfile.h"

#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

#include "state/files.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

struct LineKind {
  enum Kind { Other, Section, Key } kind = Other;
  std::string name;   // section or key, lower case
  std::string value;  // key value without surrounding blanks
};

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Only section and key lines make strings: a result file's block is long.
LineKind Classify(std::string_view line) {
  const std::string_view trimmed = Trimmed(line);
  if (trimmed.empty() || trimmed[0] == ';') return {};
  if (trimmed[0] == '[') {
    const size_t close = trimmed.find(']');
    return {LineKind::Section, ToLower(Trim(trimmed.substr(1, close == std::string::npos ? std::string::npos : close - 1))), {}};
  }
  const size_t eq = trimmed.find('=');
  if (eq == std::string::npos) return {};
  return {LineKind::Key, ToLower(Trim(trimmed.substr(0, eq))), Trim(trimmed.substr(eq + 1))};
}

using Sections = std::unordered_map<std::string, std::unordered_map<std::string, std::string>>;

// section -> key -> value, first occurrence winning, as a linear scan would find.
Sections ParseSections(std::string_view text) {
  Sections parsed;
  std::unordered_map<std::string, std::string>* current = nullptr;
  for (LineCursor lines(text); !lines.AtEnd();) {
    LineKind k = Classify(lines.Next());
    if (k.kind == LineKind::Section) current = &parsed[k.name];
    else if (k.kind == LineKind::Key && current) current->try_emplace(std::move(k.name), std::move(k.value));
  }
  return parsed;
}

// A parsed copy per path, valid while the file's identity, size and time stay.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  long long mtimeNs = 0;
  bool operator==(const FileStamp&) const = default;
};

std::optional<FileStamp> StampOf(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return std::nullopt;
  return FileStamp{st.st_dev, st.st_ino, st.st_size,
                   static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec};
}

class KeyFileCache {
 public:
  std::shared_ptr<const Sections> Get(const std::string& path) {
    const auto stamp = StampOf(path);
    if (!stamp) return nullptr;
    std::lock_guard lock(mutex_);
    auto it = entries_.find(path);
    if (it != entries_.end() && it->second.stamp == *stamp) return it->second.parsed;
    const auto text = ReadWholeFile(path);
    if (!text) return nullptr;
    if (entries_.size() >= kMaxEntries) entries_.clear();
    auto parsed = std::make_shared<const Sections>(ParseSections(*text));
    entries_[path] = Entry{*stamp, parsed};
    return parsed;
  }

  void Forget(const std::string& path) {
    std::lock_guard lock(mutex_);
    entries_.erase(path);
  }

 private:
  static constexpr size_t kMaxEntries = 32;
  struct Entry {
    FileStamp stamp;
    std::shared_ptr<const Sections> parsed;
  };
  std::mutex mutex_;
  std::map<std::string, Entry> entries_;
};

KeyFileCache& Cache() {
  static KeyFileCache cache;
  return cache;
}

}  // namespace

KeyFile KeyFile::Parse(std::string_view text) { return KeyFile(std::make_shared<const Sections>(ParseSections(text))); }

KeyFile KeyFile::Load(const std::string& path) { return KeyFile(Cache().Get(path)); }

const std::string* KeyFile::Find(std::string_view section, std::string_view key) const {
  if (!sections_) return nullptr;
  const auto s = sections_->find(ToLower(section));
  if (s == sections_->end()) return nullptr;
  const auto k = s->second.find(ToLower(key));
  return k == s->second.end() ? nullptr : &k->second;
}

std::optional<std::string> KeyFile::Text(std::string_view section, std::string_view key) const {
  const std::string* value = Find(section, key);
  if (!value) return std::nullopt;
  std::string out = value->substr(0, kKeyBufferSize - 1);
  if (out == kNotFound) return std::nullopt;
  return out;
}

int32_t KeyFile::Int(std::string_view section, std::string_view key, int32_t def) const {
  const std::string* value = Find(section, key);
  return value ? LeadingInteger(*value) : def;
}

int32_t LeadingInteger(std::string_view value) {
  size_t i = 0;
  bool negative = false;
  if (i < value.size() && (value[i] == '-' || value[i] == '+')) negative = value[i++] == '-';
  long long n = 0;
  for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i) {
    n = n * 10 + (value[i] - '0');
    if (n > std::numeric_limits<int32_t>::max()) n = static_cast<long long>(std::numeric_limits<int32_t>::max()) + 1;
  }
  return ClampToInt32(static_cast<double>(negative ? -n : n));
}

std::string GetPrivateProfileStringA(std::string_view section, std::string_view key, std::string_view def,
                                     std::size_t size, const std::string& file) {
  const KeyFile keys = KeyFile::Load(file);
  const std::optional<std::string> found = keys.Text(section, key);
  std::string out = found ? *found : std::string(def);
  if (size == 0) return {};
  if (out.size() > size - 1) out.resize(size - 1);
  return out;
}

int32_t GetPrivateProfileIntA(std::string_view section, std::string_view key, int32_t def, const std::string& file) {
  return KeyFile::Load(file).Int(section, key, def);
}

bool WritePrivateProfileStringA(std::string_view section, std::string_view key, std::string_view value,
                                const std::string& file) {
  const std::string text = ReadWholeFile(file).value_or(std::string());
  const std::string eol = text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
  std::vector<std::string> lines = SplitLines(text);
  const std::string newLine = std::string(key) + "=" + std::string(value);
  const std::string wantedSection = ToLower(section), wantedKey = ToLower(key);

  size_t s = 0;
  while (s < lines.size() && !(Classify(lines[s]).kind == LineKind::Section && Classify(lines[s]).name == wantedSection)) ++s;
  if (s == lines.size()) {
    lines.push_back("[" + std::string(section) + "]");
    lines.push_back(newLine);
  } else {
    size_t insertAt = s + 1;
    bool replaced = false;
    for (size_t i = s + 1; i < lines.size(); ++i) {
      const LineKind k = Classify(lines[i]);
      if (k.kind == LineKind::Section) break;
      if (k.kind == LineKind::Key && k.name == wantedKey) {
        lines[i] = newLine;
        replaced = true;
        break;
      }
      if (!Trim(lines[i]).empty()) insertAt = i + 1;
    }
    if (!replaced) lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(insertAt), newLine);
  }
  std::string out;
  for (const std::string& line : lines) out += line + eol;
  const bool ok = WriteFileAtomically(file, out);
  Cache().Forget(file);
  return ok;
}

std::string ReadKeyText(std::string_view section, std::string_view key, const std::string& file) {
  return GetPrivateProfileStringA(section, key, kNotFound, kKeyBufferSize, file);
}

}  // namespace tessiva
