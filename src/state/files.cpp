#include "state/files.h"

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

std::optional<std::string> ReadWholeFile(const std::string& path) {
  std::ifstream in(fs::u8path(path), std::ios::binary | std::ios::ate);
  if (!in) return std::nullopt;
  const std::streamoff size = in.tellg();
  if (size < 0) return std::nullopt;
  std::string text(static_cast<size_t>(size), '\0');
  in.seekg(0);
  in.read(text.data(), static_cast<std::streamsize>(size));
  if (in.bad()) return std::nullopt;
  text.resize(static_cast<size_t>(in.gcount()));
  return text;
}

bool WriteFileAtomically(const std::string& path, std::string_view content) {
  const fs::path target = fs::u8path(path);
  fs::path temp = target;
  temp += ".tmp~" + std::to_string(::getpid());
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.flush();
    if (!out) {
      std::error_code ignored;
      fs::remove(temp, ignored);
      return false;
    }
  }
  std::error_code ec;
  fs::rename(temp, target, ec);
  if (ec) {
    std::error_code ignored;
    fs::remove(temp, ignored);
    return false;
  }
  return true;
}

std::string_view LineCursor::Next() {
  if (AtEnd()) return {};
  std::size_t end = text_.find('\n', pos_);
  if (end == std::string_view::npos) end = text_.size();
  std::string_view line = text_.substr(pos_, end - pos_);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  pos_ = end + 1;
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
