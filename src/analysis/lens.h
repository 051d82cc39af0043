// The lens of the analysis window's map. Control with the left button shows
// RecZoomRef, a square of 128 screen pixels that follows the pointer, and
// the release centres the map on that point. Control with the right button
// shows the frame MireZoomRef; a vertical drag sets the lens factor, which
// the frame follows, and the release multiplies the map's zoom by it and
// centres the map on the picture's middle.
//
// Controls of the analysis window's registry the view mirrors, in picture
// pixels as the view's other overlays:
//   RecZoomRef    Visible and the square it covers
//   MireZoomRef   Visible and the frame
//   PicAnaCentre  left, top: the point of the picture the view centres in its frame
#pragma once

namespace tessiva {

class NewAnalyse;

class Lens {
 public:
  // The lens's side in screen pixels, and the drag in screen pixels that
  // adds 1 to the factor.
  static constexpr int kSide = 128;
  static constexpr double kDragPerUnit = 300.0;
  static constexpr double kSmallestFactor = 0.1;
  // The map's larger side never grows past this many screen pixels.
  static constexpr double kLargestMapSide = 8192.0;

  explicit Lens(NewAnalyse& window) : w_(window) {}
  Lens(const Lens&) = delete;
  Lens& operator=(const Lens&) = delete;

  double Factor = 1.0;

  // The pointer on the map, picture pixels, `button` and `shift` as in
  // ui/pointer.h. A press with the control key starts the lens; the moves
  // and the release that follow belong to it. Each gives whether it took the event.
  bool MouseDown(int button, int shift, double x, double y);
  bool MouseMove(double x, double y);
  bool MouseUp(double x, double y);

 private:
  enum class Mode { None, Follow, Zoom };

  void ShowSquare(const char* name, double x, double y, double side);
  void CentreOn(double x, double y);
  // Line1 shows the section of field 16; it is hidden while the lens works.
  void HideSection();
  void RestoreSection();

  NewAnalyse& w_;
  Mode mode_ = Mode::None;
  double x0_ = 0.0, y0_ = 0.0;
  bool sectionShown_ = false;
};

}  // namespace tessiva
