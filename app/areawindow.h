// The setup window (AreaForm): the two tool bars over the reference and
// deformed pictures side by side, each view with its title and zoom switch,
// the calibration and extra value fields below. It forwards its events to the
// AreaForm controller and mirrors the controller's registry; the rubbers of
// the tools are drawn over the reference view.
#pragma once

#include <QFrame>
#include <QTimer>
#include <memory>
#include <string>

#include "registrybinding.h"
#include "setup/areaform.h"

class QMouseEvent;

namespace tessiva {

class CanvasView;

class AreaWindow : public QFrame {
  Q_OBJECT

 public:
  // The panel named "AreaForm" in the frame's client area.
  AreaWindow(AreaForm& controller, QWidget* parent);
  ~AreaWindow() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  QWidget* BuildPane(const char* title, const char* zoomButton, const char* viewName, CanvasView*& view);
  QWidget* BuildFields();
  void AttachViews();
  void OnViewMouse(bool reference, QMouseEvent* event);
  void PopUpMenu(QPoint at);
  void OnClicked(const std::string& name);
  void OnRegistryChange(const std::string& name, const ControlState& state);

  AreaForm& controller_;
  CanvasView* ref_ = nullptr;
  CanvasView* def_ = nullptr;
  QTimer timer1_, timer2_, timer3_;
  std::unique_ptr<RegistryBinding> binding_;
  int subscription_ = 0;
};

}  // namespace tessiva
