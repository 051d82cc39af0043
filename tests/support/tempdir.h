// A scratch directory made for one test and removed after it.
#pragma once

#include <string>
#include <string_view>

namespace tessiva::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& Path() const { return path_; }
  // Full path of a file in the directory.
  std::string File(std::string_view name) const;
  // Writes a file (bytes as given) and returns its full path.
  std::string Write(std::string_view name, std::string_view content) const;
  // The content of a file, empty when missing.
  std::string Read(std::string_view name) const;

 private:
  std::string path_;
};

}  // namespace tessiva::testing
