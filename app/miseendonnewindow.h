// The "Input Data" window (MiseEnDonne): the tree of the reference and
// deformed pictures, the kind of sequence, Start with its blinking marker,
// the editor button, the help and information lines and a preview of the
// last picture chosen.
#pragma once

#include <string>

#include "batch/miseendonne.h"
#include "batchpanel.h"

class QLabel;

namespace tessiva {

class MiseEnDonneWindow : public BatchPanel {
  Q_OBJECT

 public:
  // The panel named "MiseEnDonne" in the frame's client area.
  MiseEnDonneWindow(MiseEnDonne& controller, QWidget* parent);

 protected:
  void Loaded() override { ShowPreview(); }

 private:
  QLayout* MakeSide();
  void ShowPreview();

  MiseEnDonne& controller_;
  QLabel* preview_ = nullptr;
  std::string previewShown_;
};

}  // namespace tessiva
