// Loading a full data file into the setup window: 20 areas of 50 points, 40
// start points, two small pictures.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "formats/datafile.h"
#include "setup/areafiles.h"
#include "setup/areaform.h"
#include "setup/param.h"
#include "setup/picture.h"
#include "state/files.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

class FullDataFile {
 public:
  FullDataFile() : ui_(frame_), param_(s_), form_(s_, ui_, param_) {
    dir_ = std::filesystem::temp_directory_path() / ("tessiva-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir_);
    s_.LastDir = dir_.string();
    std::vector<uint8_t> levels(64 * 48);
    for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>(i * 37 % 251);
    SaveGreyBmp(JoinPath(s_.LastDir, "ref.bmp"), 64, 48, levels);
    SaveGreyBmp(JoinPath(s_.LastDir, "def.bmp"), 64, 48, levels);
    s_.ResizeSequence(1);
    s_.DataFileName[1] = "full.don";
    s_.DataFilePath[1] = JoinPath(s_.LastDir, "full.don");
    WriteText(FileText());
  }
  ~FullDataFile() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }

  // Rewrites the file, so that the next load parses it anew.
  void WriteText(const std::string& text) { WriteFileAtomically(s_.DataFilePath[1], text); }
  const std::string& Text() const { return text_; }
  bool Load() { return LecDonArea(form_, 1, false); }
  const AppState& State() const { return s_; }

 private:
  std::string FileText() {
    s_.PicRefName = "ref.bmp";
    s_.PicDefName = "def.bmp";
    s_.NbBox = AppState::kMaxAreas + 1;
    for (size_t a = 1; a <= AppState::kMaxAreas; ++a) {
      s_.Nbox[a] = 50;
      for (size_t j = 1; j <= 50; ++j) {
        s_.XBox[a][j] = static_cast<int32_t>(a * 10 + j);
        s_.YBox[a][j] = static_cast<int32_t>(a * 7 + j * 3);
      }
    }
    s_.NbStart = 40;
    s_.ResizeStartPoints(40);
    for (size_t i = 1; i <= 40; ++i) {
      s_.XStart[i] = static_cast<int32_t>(i);
      s_.YStart[i] = static_cast<int32_t>(2 * i);
      s_.DuStart[i] = static_cast<int32_t>(i % 5) - 2;
      s_.DvStart[i] = 1;
    }
    form_.Controls().SetText("Text1", "full.don");
    SauveDonArea(form_, 1);
    text_ = ReadWholeFile(s_.DataFilePath[1]).value_or("");
    return text_;
  }

  std::filesystem::path dir_;
  AppState s_;
  ControlRegistry frame_;
  ScriptedUi ui_;
  Param param_;
  AreaForm form_;
  std::string text_;
};

// A load from a file just written: the key-file is parsed once, then every key is served from it.
void BM_LecDonAreaFreshFile(benchmark::State& state) {
  FullDataFile file;
  for (auto _ : state) {
    state.PauseTiming();
    file.WriteText(file.Text());
    state.ResumeTiming();
    if (!file.Load()) state.SkipWithError("the data file did not load");
  }
  state.counters["areas"] = file.State().NbBox - 1;
  state.counters["start points"] = file.State().NbStart;
  state.counters["file bytes"] = static_cast<double>(file.Text().size());
}
BENCHMARK(BM_LecDonAreaFreshFile)->Unit(benchmark::kMillisecond);

// The same file loaded again unchanged.
void BM_LecDonAreaSameFile(benchmark::State& state) {
  FullDataFile file;
  for (auto _ : state)
    if (!file.Load()) state.SkipWithError("the data file did not load");
}
BENCHMARK(BM_LecDonAreaSameFile)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva
