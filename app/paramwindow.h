// The window of the computational parameters (Param): a tab window whose
// fields are bound to the Param controller's registry.
#pragma once

#include <QWidget>
#include <memory>

#include "registrybinding.h"
#include "setup/param.h"

namespace tessiva {

class ParamWindow : public QWidget {
  Q_OBJECT

 public:
  // A tool window over `frame`, hidden until the frame's registry shows it.
  ParamWindow(Param& controller, QWidget* frame);
  ~ParamWindow() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* BuildMaterialTab();
  QWidget* BuildCorrelationTab();

  Param& controller_;
  std::unique_ptr<RegistryBinding> binding_;
};

}  // namespace tessiva
