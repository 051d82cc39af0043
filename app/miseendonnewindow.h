// The "Input Data" window (MiseEnDonne): the tree of the reference and
// deformed pictures, the kind of sequence, Start with its blinking marker,
// the editor button, the help and information lines and a preview of the
// last picture chosen.
#pragma once

#include <QFrame>
#include <QTimer>
#include <memory>
#include <string>

#include "batch/miseendonne.h"
#include "jobtreeview.h"
#include "registrybinding.h"

class QLabel;

namespace tessiva {

class MiseEnDonneWindow : public QFrame {
  Q_OBJECT

 public:
  // The panel named "MiseEnDonne" in the frame's client area, its controls
  // bound to the controller's registry.
  MiseEnDonneWindow(MiseEnDonne& controller, QWidget* parent);
  ~MiseEnDonneWindow() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildControls();
  void ShowPreview();

  MiseEnDonne& controller_;
  JobTreeView* tree_ = nullptr;
  QLabel* preview_ = nullptr;
  std::string previewShown_;
  QTimer blink_;
  std::unique_ptr<RegistryBinding> binding_;
  int subscription_ = 0;
};

}  // namespace tessiva
