#include "support/tempdir.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <stdlib.h>

namespace tessiva::testing {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tessiva-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary directory");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::File(std::string_view name) const { return path_ + "/" + std::string(name); }

std::string TempDir::Write(std::string_view name, std::string_view content) const {
  const std::string path = File(name);
  std::ofstream out(path, std::ios::binary);
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  return path;
}

std::string TempDir::Read(std::string_view name) const {
  std::ifstream in(File(name), std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

}  // namespace tessiva::testing
