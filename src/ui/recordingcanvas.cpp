#include "ui/recordingcanvas.h"

namespace tessiva {

std::vector<RecordingCanvas::Op> RecordingCanvas::OfKind(const std::string& kind) const {
  std::vector<Op> out;
  for (const Op& op : ops)
    if (op.kind == kind) out.push_back(op);
  return out;
}

void RecordingCanvas::Line(double x1, double y1, double x2, double y2, Colour colour) {
  ops.push_back({"line", x1, y1, x2, y2, colour});
}
void RecordingCanvas::Box(double x1, double y1, double x2, double y2, Colour colour) {
  ops.push_back({"box", x1, y1, x2, y2, colour});
}
void RecordingCanvas::FilledBox(double x1, double y1, double x2, double y2, Colour colour) {
  ops.push_back({"fill", x1, y1, x2, y2, colour});
}
void RecordingCanvas::Circle(double cx, double cy, double radius, Colour colour) {
  ops.push_back({"circle", cx, cy, radius, 0, colour});
}
void RecordingCanvas::Point(double x, double y, Colour colour) { ops.push_back({"point", x, y, x, y, colour}); }
void RecordingCanvas::Text(double x, double y, const std::string& text, Colour colour) {
  ops.push_back({"text", x, y, x, y, colour, text});
}

// A fixed cell of 7 x 13 screen pixels a character, expressed in user units.
double RecordingCanvas::TextWidth(const std::string& text) const {
  return 7.0 * static_cast<double>(text.size()) * ScaleWidth() / PixelWidth();
}
double RecordingCanvas::TextHeight(const std::string&) const { return 13.0 * ScaleHeight() / PixelHeight(); }

void RecordingCanvas::DrawPicture(const IndexedPicture&, int srcX, int srcY, int srcW, int srcH, int dstX, int dstY,
                                  int dstW, int dstH) {
  Op op{"picture", double(srcX), double(srcY), double(srcW), double(srcH)};
  op.dstX = dstX;
  op.dstY = dstY;
  op.dstW = dstW;
  op.dstH = dstH;
  ops.push_back(op);
}

}  // namespace tessiva
