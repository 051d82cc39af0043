// The setup engine on a 2048 x 2048 pair: the start search, the grid with its
// advisor pass over one full-picture area at grid step 4, and the walk over
// that grid painted into a recording canvas.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "setup/areaform.h"
#include "setup/areas.h"
#include "setup/startsearch.h"
#include "state/appstate.h"
#include "setup/param.h"
#include "ui/controls.h"
#include "ui/recordingcanvas.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

constexpr int32_t kSide = 2048;
constexpr int32_t kShiftU = 12;
constexpr int32_t kShiftV = -7;

// A speckle of random levels smoothed over 3 x 3 pixels; the deformed picture
// is the same field cut kShift further on, so the displacement is exact.
void MakePair(AppState& s) {
  constexpr int32_t kMargin = 32;
  const int32_t side = kSide + 2 * kMargin;
  std::mt19937 rng(11);
  std::uniform_int_distribution<int32_t> level(0, 255);
  std::vector<int32_t> noise(static_cast<size_t>(side) * side);
  for (int32_t& v : noise) v = level(rng);
  std::vector<int32_t> smooth(noise.size(), 0);
  for (int32_t y = 1; y + 1 < side; ++y)
    for (int32_t x = 1; x + 1 < side; ++x) {
      int32_t sum = 0;
      for (int32_t dy = -1; dy <= 1; ++dy)
        for (int32_t dx = -1; dx <= 1; ++dx) sum += noise[static_cast<size_t>(y + dy) * side + x + dx];
      smooth[static_cast<size_t>(y) * side + x] = sum / 9;
    }
  s.Lima = s.Hima = kSide;
  s.PixRef.Allocate(kSide, kSide);
  s.PixDef.Allocate(kSide, kSide);
  for (int32_t y = 0; y < kSide; ++y)
    for (int32_t x = 0; x < kSide; ++x) {
      s.PixRef(x, y) = smooth[static_cast<size_t>(y + kMargin) * side + x + kMargin];
      s.PixDef(x, y) = smooth[static_cast<size_t>(y + kMargin - kShiftV) * side + x + kMargin - kShiftU];
    }
}

// The setup window over the pair, with one area over the whole picture.
struct Setup {
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};
  RecordingCanvas ref{1024, 1024};
  RecordingCanvas def{1024, 1024};

  explicit Setup(int32_t lpatMax) {
    MakePair(s);
    s.Lgrid = 4;
    s.LpatMin = 9;
    s.LpatMax = lpatMax;
    param.ParamShow();
    form.RefView().AttachCanvas(&ref);
    form.DefView().AttachCanvas(&def);
    StoreArea(s, AllSelectOutline(kSide, kSide), 0);
  }
};

void BM_ChercheSoluArea(benchmark::State& state) {
  AppState s;
  MakePair(s);
  s.SeqRefChange = 1;  // the search centre stays at 0
  StartSearch search;
  for (auto _ : state) {
    int32_t du = 0, dv = 0;
    const bool found = search.ChercheSoluArea(s, kSide / 2, kSide / 2, du, dv);
    if (!found || du != kShiftU || dv != kShiftV) state.SkipWithError("displacement not found");
    benchmark::DoNotOptimize(du);
  }
}
BENCHMARK(BM_ChercheSoluArea)->Unit(benchmark::kMillisecond);

void BM_CreateRectArea(benchmark::State& state) {
  Setup setup(static_cast<int32_t>(state.range(0)));
  for (auto _ : state) {
    setup.form.CreateRectArea();
    state.PauseTiming();
    setup.ref.ops.clear();
    setup.def.ops.clear();
    state.ResumeTiming();
  }
  state.counters["patterns"] = setup.s.NbPat;
}
BENCHMARK(BM_CreateRectArea)->Arg(9)->Arg(32)->ArgName("LpatMax")->Unit(benchmark::kMillisecond);

void BM_PropagArea(benchmark::State& state) {
  Setup setup(9);
  setup.form.CreateRectArea();
  Propagation& walk = setup.form.Engine().walk;
  for (auto _ : state) {
    state.PauseTiming();
    walk.Renew(setup.s.NbPat);
    setup.s.NbStart = 0;
    setup.s.ResizeStartPoints(1);
    setup.s.NbStart = setup.s.CurStart = 1;
    setup.s.XStart[1] = setup.s.YStart[1] = kSide / 2;
    setup.ref.ops.clear();
    state.ResumeTiming();
    setup.form.PropagArea();
    if (walk.PropagDone != -1) state.SkipWithError("walk incomplete");
  }
  state.counters["patterns"] = setup.s.NbPat;
}
BENCHMARK(BM_PropagArea)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva
