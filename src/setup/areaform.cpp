#include "setup/areaform.h"

#include "results/meshdraw.h"
#include "setup/picture.h"
#include "state/numtext.h"

namespace tessiva {

AreaForm::AreaForm(AppState& state, UiPort& ui, Param& param)
    : s_(state),
      ui_(ui),
      param_(param),
      refView_(state.PixRef, state.PicRefPalette, controls_, "Command1"),
      defView_(state.PixDef, state.PicDefPalette, controls_, "Command2") {}

bool AreaForm::LoadPictures(std::string* problem) {
  if (!ChargePicArea(s_, problem)) return false;
  // Sizes go through Str, with its blank before a number: " name ( 640x 480)".
  const auto title = [](const std::string& name, const GreyArray& pixels) {
    return " " + name + " (" + Str(pixels.UpperX()) + "x" + Str(pixels.UpperY()) + ")";
  };
  controls_.SetText("TitleRef", title(s_.PicRefName, s_.PixRef));
  controls_.SetText("TitleDef", title(s_.PicDefName, s_.PixDef));
  for (PictureView* view : {&refView_, &defView_}) {
    view->PicW = s_.PixRef.UpperX();
    view->PicH = s_.PixRef.UpperY();
    view->CentreForLoad();
  }
  return true;
}

void AreaForm::RefreshView(PictureView& view) {
  Canvas* canvas = view.GetCanvas();
  if (!canvas) return;
  view.ApplyScale();
  canvas->Clear();
  view.PaintPicture();
  if (&view == &refView_) {
    DrawAreaOutlines(*canvas);
    setup::DrawRefOverlays(*this, *canvas);
  } else {
    setup::DrawDefOverlays(*this, *canvas);
  }
  canvas->Refresh();
}

void AreaForm::AreAPicRefRefresh() { RefreshView(refView_); }
void AreaForm::AreAPicDefRefresh() { RefreshView(defView_); }

void AreaForm::DrawAreaOutlines(Canvas& canvas) { tessiva::DrawAreaOutlines(canvas, s_, QBColor(12)); }

void AreaForm::DeleteGrille() { setup::DeleteGrille(*this); }
void AreaForm::DeleteAOI() { setup::DeleteAOI(*this); }
void AreaForm::CreateRectArea() { setup::CreateRectArea(*this); }
void AreaForm::CreateBoxJauge(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t kind, int32_t tag) {
  setup::CreateBoxJauge(*this, x1, y1, x2, y2, kind, tag);
}
void AreaForm::PropagArea() { setup::PropagArea(*this); }

void AreaForm::ShowStartPointsDefined() { controls_.SetEnabled("Toolbar2.InitialSolution", true); }

}  // namespace tessiva
