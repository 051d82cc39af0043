#include "state/files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "state/numtext.h"

namespace fs = std::filesystem;

namespace tessiva {

bool FileExists(const std::string& path) {
  if (path.empty()) return false;
  std::error_code ec;
  return fs::is_regular_file(fs::u8path(path), ec);
}

std::string ResolvePathNoCase(const std::string& path) {
  if (path.empty() || FileExists(path)) return path;
  std::error_code ec;
  const fs::path p = fs::u8path(path);
  const fs::path dir = p.has_parent_path() ? p.parent_path() : fs::path(".");
  const std::string wanted = p.filename().string();
  for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    if (EqualsNoCase(it->path().filename().string(), wanted)) {
      return (p.has_parent_path() ? p.parent_path() / it->path().filename() : it->path().filename()).string();
    }
  }
  return path;
}

// The length the system gives is only a hint for the buffer: the bytes are
// read until the stream ends, so a file that grows or shrinks meanwhile is
// read as it is, and nothing is allocated for a length that isn't there.
std::optional<std::string> ReadWholeFile(const std::string& path) {
  try {
    const fs::path p = fs::u8path(path);
    std::error_code ec;
    if (!fs::is_regular_file(p, ec)) return std::nullopt;
    const std::uintmax_t length = fs::file_size(p, ec);
    std::ifstream in(p, std::ios::binary);
    if (!in) return std::nullopt;
    std::string text;
    if (!ec) text.reserve(static_cast<size_t>(std::min<std::uintmax_t>(length, text.max_size())));
    std::array<char, 1 << 16> chunk;
    while (in.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || in.gcount() > 0)
      text.append(chunk.data(), static_cast<size_t>(in.gcount()));
    if (in.bad()) return std::nullopt;
    return text;
  } catch (const std::exception&) {  // out of memory for the file: it can't be read
    return std::nullopt;
  }
}

bool WriteFileAtomically(const std::string& path, std::string_view content) {
  return WriteFileAtomically(path, [content](std::ostream& out) {
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
  });
}

bool WriteFileAtomically(const std::string& path, const std::function<void(std::ostream&)>& write) {
  const fs::path target = fs::u8path(path);
  fs::path temp = target;
  temp += ".tmp~" + std::to_string(::getpid());
  const auto giveUp = [&temp] {
    std::error_code ignored;
    fs::remove(temp, ignored);
    return false;
  };
  try {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    write(out);
    // A write the disk refused (full, quota) shows only when the buffer goes
    // out: flush and close before judging, or a short file would replace a good one.
    out.flush();
    if (!out) return giveUp();
    out.close();
    if (out.fail()) return giveUp();
  } catch (...) {
    giveUp();
    throw;
  }
  std::error_code ec;
  fs::rename(temp, target, ec);
  if (ec) return giveUp();
  return true;
}

bool IsUsableFileName(std::string_view name) {
  return !name.empty() && std::none_of(name.begin(), name.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
  });
}

std::string PrintableName(std::string_view name) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == 0) {
      out += "\\0";
    } else if (byte < 0x20 || byte == 0x7F) {
      out += "\\x";
      out += kHex[byte >> 4];
      out += kHex[byte & 0xF];
    } else {
      out += c;
    }
  }
  return out;
}

LineCursor::LineCursor(std::string_view text) : text_(text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(kByteOrderMark)) pos_ = kByteOrderMark.size();
}

// Two memchr scans a line, LF first: a result file has a million lines, and
// a search for either ending at once is several times slower.
std::string_view LineCursor::Next() {
  if (AtEnd()) return {};
  std::size_t lf = text_.find('\n', pos_);
  if (lf == std::string_view::npos) lf = text_.size();
  const void* cr = std::memchr(text_.data() + pos_, '\r', lf - pos_);
  const std::size_t end = cr ? static_cast<std::size_t>(static_cast<const char*>(cr) - text_.data()) : lf;
  const std::string_view line = text_.substr(pos_, end - pos_);
  // CR LF is one ending; a lone CR ends a line by itself.
  pos_ = end + 1 < text_.size() && text_[end] == '\r' && text_[end + 1] == '\n' ? end + 2 : end + 1;
  return line;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  for (LineCursor cursor(text); !cursor.AtEnd();) lines.emplace_back(cursor.Next());
  return lines;
}

std::string JoinPath(std::string_view dir, std::string_view name) {
  std::string out(dir);
  if (!out.empty() && out.back() != fs::path::preferred_separator) out += static_cast<char>(fs::path::preferred_separator);
  return out + std::string(name);
}

std::string FileNameOf(std::string_view path) {
  const size_t slash = path.find_last_of("/\\");
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string DirectoryOf(std::string_view path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash));
}

std::string Stem(std::string_view name) {
  return name.size() < 4 ? std::string() : std::string(name.substr(0, name.size() - 4));
}

std::string ResultPathOf(std::string_view dataPath) { return Stem(dataPath) + ".res"; }

}  // namespace tessiva
