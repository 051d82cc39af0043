// One of the setup window's two picture views (PicRef or PicDef): its drawing
// scale in picture pixels, the stretching copy of the stored picture, the
// "1:1" / "1:x" switch and the Ctrl pan and zoom with the mouse.
//
// The scale origin and extent live in the attached canvas; without a canvas
// the view keeps only its zoom and the switch's caption.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "state/appstate.h"
#include "ui/canvas.h"
#include "ui/controls.h"

namespace tessiva {

class PictureView {
 public:
  // `zoomButton` is the name of the switch above the view ("Command1" or "Command2").
  PictureView(const GreyArray& pixels, const std::array<Colour, 256>& palette, ControlRegistry& controls,
              std::string zoomButton);

  // The surface the view draws on; null while no window shows it. A drag in
  // progress ends with the surface it began on.
  void AttachCanvas(Canvas* canvas) {
    canvas_ = canvas;
    dragButton_ = 0;
    rubberFrame_.reset();
  }
  Canvas* GetCanvas() const { return canvas_; }

  // Share of the view the picture fills on its longer side (ZoomRef / ZoomDef).
  double Zoom = 1.0;
  // Natural size of the reference picture.
  double PicW = 0.0;
  double PicH = 0.0;

  // Scale extent from the longer side, the zoom and the view's aspect; the
  // scale origin stays where it is.
  void ApplyScale();
  // Copies the stored picture into the view, stretched without blending.
  void PaintPicture();
  // The zoom switch: "1:1" at 0.76, or back to "1:x" at 1, origin (-10, -10).
  // The caller refreshes the view afterwards.
  void OnZoomButtonClick();
  // After a data file is read: zoom 0.65 with the picture centred in the view.
  void CentreForLoad();

  // Ctrl with the left button pans, with the right button zooms about the view's
  // centre; x and y are in the view's scale units. Each returns true when the
  // event belongs to a Ctrl drag, MouseUp true when the view has to be refreshed.
  bool OnMouseDown(int button, int shift, double x, double y);
  bool OnMouseMove(int button, int shift, double x, double y);
  bool OnMouseUp(int button, int shift, double x, double y);

 private:
  struct Frame {
    double x1, y1, x2, y2;
  };

  void SetOrigin(double left, double top);
  void ToggleRubberFrame(const Frame& frame);
  void EraseRubberFrame();
  void FinishPan(double x, double y);
  void FinishZoom();

  const GreyArray& pixels_;
  const std::array<Colour, 256>& palette_;
  ControlRegistry& controls_;
  std::string zoomButton_;
  Canvas* canvas_ = nullptr;
  // State of a Ctrl drag: the button held (0 for none), where it was pressed,
  // the scale extent then, the zoom factor so far and the frame on show.
  int dragButton_ = 0;
  double pressX_ = 0.0, pressY_ = 0.0;
  double pressWidth_ = 0.0, pressHeight_ = 0.0;
  double zoomFactor_ = 1.0;
  std::optional<Frame> rubberFrame_;
};

}  // namespace tessiva
