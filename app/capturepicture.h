// The captures' pixels with Qt Gui: the window's surfaces (QImageCanvas)
// joined as a CaptureLayout places them, the legend's texts drawn, and the
// pictures encoded as BMP or PNG. The desktop program's Film keys and
// tessiva-cli's map and film commands all compose through it.
#pragma once

#include <QImage>
#include <optional>
#include <string>

#include "ui/capturelayout.h"

namespace tessiva {

class QtCapture : public CapturePort {
 public:
  std::optional<RgbImage> Compose(const CaptureLayout& layout, const CaptureSurfaces& surfaces,
                                  const CaptureLegendTexts& legend) override;
  bool Save(const RgbImage& picture, const std::string& path) override;
};

QImage ToQImage(const RgbImage& picture);
RgbImage ToRgbImage(const QImage& image);
// The picture encoded as "PNG" or "BMP"; nothing when it can't be.
std::optional<std::string> EncodedPicture(const QImage& picture, const char* format);

}  // namespace tessiva
