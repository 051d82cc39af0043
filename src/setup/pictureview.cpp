#include "setup/pictureview.h"
// Filled in with the views.
namespace tessiva {
PictureView::PictureView(const GreyArray& pixels, const std::array<Colour, 256>& palette, ControlRegistry& controls,
                         std::string zoomButton)
    : pixels_(pixels), palette_(palette), controls_(controls), zoomButton_(std::move(zoomButton)) {}
void PictureView::ApplyScale() {}
void PictureView::PaintPicture() {}
void PictureView::CentreForLoad() {}
}  // namespace tessiva
