// One forming-limit section recalculated as the scroll bar "Line position"
// moves, on a result of 250,000 patterns over a 2048 x 2048 picture: the 79
// points sampled again across the band, both determinations, and the graph
// drawn into a 600 x 400 picture. Target: under 5 ms.
#include <QGuiApplication>
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "largeresult.h"
#include "qimagecanvas.h"
#include "ui/pointer.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

class FlcBench {
 public:
  FlcBench() : dir_(std::filesystem::temp_directory_path() / ("tessiva-bench-flc-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(dir_);
    const std::string path = (dir_ / "large.res").string();
    bench::WriteResultFile(path);
    s.LastDir = s.StartDir = dir_.string();
    s.IniPath = (dir_ / "correl.ini").string();
    s.ResizeSequence(1);
    s.DataFilePath[1] = path;
    s.DataFileName[1] = "large.res";
    ok_ = LecRes(window, 1, false) && s.NbPat == bench::kSide * bench::kSide;
    window.Graphe = &graph;
    window.Flc.GraphShown = true;
    // A band across the whole picture, as the section tool draws it.
    window.ArmSectionTool(SectionKind::FormingLimit);
    window.OnPicAnaMouseDown(kLeftButton, 0, 100, 1000);
    window.OnPicAnaMouseMove(kLeftButton, 0, 1948, 1100);
    window.OnPicAnaMouseUp(kLeftButton, 0, 1948, 1100);
    ok_ = ok_ && window.Flc.NbSection == FormingLimits::kSteps - 1;
  }
  ~FlcBench() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  FlcBench(const FlcBench&) = delete;
  FlcBench& operator=(const FlcBench&) = delete;

  bool Ok() const { return ok_; }

  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};
  QImageCanvas graph{600, 400};

 private:
  std::filesystem::path dir_;
  bool ok_ = false;
};

void BM_SectionWhileTheScrollBarMoves(benchmark::State& state) {
  FlcBench bench;
  if (!bench.Ok()) {
    state.SkipWithError("the large result or its section could not be made");
    return;
  }
  int position = 30;
  for (auto _ : state) {
    bench.window.Flc.OnPosScrollChange(position);
    position = position == 70 ? 30 : position + 1;
    benchmark::DoNotOptimize(bench.window.Flc.Limits.cosineMajor);
  }
}
BENCHMARK(BM_SectionWhileTheScrollBarMoves)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva

// The graph's texts need a font database, so a Qt application off any screen.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
