// Runs a fuzz target once over every file of the corpus directories given,
// in name order, so that the ordinary test suite replays the kept seeds.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s CORPUS_DIR...\n", argv[0]);
    return 2;
  }
  size_t runs = 0;
  for (int a = 1; a < argc; ++a) {
    std::error_code ec;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[a], ec))
      if (entry.is_regular_file()) files.push_back(entry.path());
    if (ec) {
      std::fprintf(stderr, "can't read %s: %s\n", argv[a], ec.message().c_str());
      return 1;
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
      std::ifstream in(file, std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
      std::fprintf(stderr, "%s\n", file.string().c_str());
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++runs;
    }
  }
  if (runs == 0) {
    std::fprintf(stderr, "no seed found\n");
    return 1;
  }
  std::printf("%zu seeds passed\n", runs);
  return 0;
}
