// Key-files: "[section]" lines and "key=value" lines, sections and keys told
// apart without regard to case, ';' lines as comments. Reads are served from a
// parsed copy of the file that is renewed whenever the file changes on disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tessiva {

// The default every call site gives to a text read.
inline constexpr std::string_view kNotFound = "not found";
// The buffer of every text read: 128 characters, so values arrive cut to 127.
inline constexpr std::size_t kKeyBufferSize = 128;

// A key-file parsed once: sections and keys without regard to case, the first
// occurrence of a key winning. Reads behave as the profile calls below.
class KeyFile {
 public:
  KeyFile() = default;
  static KeyFile Parse(std::string_view text);
  // The parsed copy of a file, renewed when the file changes; empty when it can't be read.
  static KeyFile Load(const std::string& path);

  // The value as a 128-character read gives it, or nothing when the key is
  // missing or its value is the text "not found".
  std::optional<std::string> Text(std::string_view section, std::string_view key) const;
  // As GetPrivateProfileIntA.
  int32_t Int(std::string_view section, std::string_view key, int32_t def) const;

 private:
  using Sections = std::unordered_map<std::string, std::unordered_map<std::string, std::string>>;
  explicit KeyFile(std::shared_ptr<const Sections> sections) : sections_(std::move(sections)) {}
  const std::string* Find(std::string_view section, std::string_view key) const;
  std::shared_ptr<const Sections> sections_;
};

// The leading integer of a key's value: an optional sign and decimal digits,
// 0 when the value starts with anything else, saturating at 32 bits.
int32_t LeadingInteger(std::string_view value);

// The value without surrounding blanks, or `def` when the file, the section or
// the key is missing; at most size - 1 characters.
std::string GetPrivateProfileStringA(std::string_view section, std::string_view key, std::string_view def,
                                     std::size_t size, const std::string& file);

// An optional sign and the decimal digits at the start of the value; 0 when the
// value starts with anything else; `def` only when the file or the key is missing.
int32_t GetPrivateProfileIntA(std::string_view section, std::string_view key, int32_t def, const std::string& file);

// Replaces the value in place, adding the key (and the section) when missing;
// every other line is kept byte for byte. The file is replaced atomically.
bool WritePrivateProfileStringA(std::string_view section, std::string_view key, std::string_view value,
                                const std::string& file);

// The read every call site makes: 128-character buffer, default "not found".
std::string ReadKeyText(std::string_view section, std::string_view key, const std::string& file);

}  // namespace tessiva
