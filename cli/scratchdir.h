// A private directory for the side files the analysis window writes as it
// works (the working copy of a selection, the names list of correl.ini), so
// that a command leaves the user's directories as it found them. It is made
// under the system's temporary directory and removed with its content.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace tessiva::cli {

class ScratchDir {
 public:
  ScratchDir() {
    std::error_code ec;
    const std::filesystem::path base = std::filesystem::temp_directory_path(ec);
    if (ec) return;
    std::random_device seed;
    std::mt19937_64 draw(seed());
    for (int attempt = 0; attempt < 16 && path_.empty(); ++attempt) {
      const std::filesystem::path candidate = base / ("tessiva-cli-" + std::to_string(draw()));
      if (std::filesystem::create_directory(candidate, ec) && !ec) path_ = candidate.string();
    }
  }
  ~ScratchDir() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  // Empty when no directory could be made.
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace tessiva::cli
