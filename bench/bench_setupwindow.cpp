// The setup window on a 2048 x 2048 picture, through its pointer entry points:
// an area drawn with the rectangle tool (grid, advisor and the redraw of both
// views into QImage canvases, with the pattern grid shown), and a pointer move
// while the rectangle's rubber follows it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>

#include "qimagecanvas.h"
#include "setup/areaform.h"
#include "setup/areatoolbar.h"
#include "setup/param.h"
#include "state/parameters.h"
#include "ui/pointer.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

constexpr int32_t kSide = 2048;
constexpr int kRectangleButton = 8;

struct Window {
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};
  QImageCanvas ref{900, 700};
  QImageCanvas def{900, 700};

  Window() {
    std::mt19937 rng(5);
    std::uniform_int_distribution<int32_t> level(0, 255);
    s.Lima = s.Hima = kSide;
    for (GreyArray* pixels : {&s.PixRef, &s.PixDef}) {
      pixels->Allocate(kSide, kSide);
      for (int32_t y = 0; y <= kSide; ++y)
        for (int32_t x = 0; x <= kSide; ++x) (*pixels)(x, y) = level(rng);
    }
    s.Lgrid = 10;
    s.LpatMin = 9;
    s.LpatMax = 21;
    param.ParamShow();
    s.Lpas = 10;
    AllocPat(s);
    form.RefView().AttachCanvas(&ref);
    form.DefView().AttachCanvas(&def);
    for (PictureView* view : {&form.RefView(), &form.DefView()}) {
      view->PicW = view->PicH = kSide;
      view->CentreForLoad();
    }
    form.InitToolbar();
    for (int index : {kRectangleButton, kGrilleButton}) {
      form.Controls().SetChecked(Toolbar2Control(index), true);
      form.OnToolbar2Click(index);
    }
  }
};

// About 34,000 patterns under a rectangle drawn over most of the picture.
void BM_AreaChange(benchmark::State& state) {
  Window w;
  for (auto _ : state) {
    w.form.OnPicRefMouseDown(kLeftButton, 0, 100, 100);
    w.form.OnPicRefMouseUp(kLeftButton, 0, 1948, 1948);
    state.PauseTiming();
    w.form.DeleteAOI();
    state.ResumeTiming();
  }
  w.form.OnPicRefMouseDown(kLeftButton, 0, 100, 100);
  w.form.OnPicRefMouseUp(kLeftButton, 0, 1948, 1948);
  state.counters["patterns"] = w.s.NbPat;
}
BENCHMARK(BM_AreaChange)->Unit(benchmark::kMillisecond);

// The readout, the rubber box and its status text for one pointer move.
void BM_RubberMove(benchmark::State& state) {
  Window w;
  w.form.OnPicRefMouseDown(kLeftButton, 0, 100, 100);
  double x = 500;
  for (auto _ : state) {
    w.form.OnPicRefMouseMove(kLeftButton, 0, x, 700);
    x = x < 1900 ? x + 1 : 500;
  }
}
BENCHMARK(BM_RubberMove)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tessiva
