// The analysis window (NewAnalyse): the map of the field on show over the
// picture, in a scroll view, its title, the colour bar with its labels and
// pointer, the field list and the display options. It forwards its events to
// the NewAnalyse controller and mirrors the controller's registry.
#pragma once

#include <QFrame>
#include <QTimer>
#include <memory>
#include <string>

#include "analysis/newanalyse.h"
#include "registrybinding.h"

class QComboBox;
class QGroupBox;
class QLayout;
class QMouseEvent;
class QScrollArea;
class QWidget;

namespace tessiva {

class CanvasView;

class AnalyseWindow : public QFrame {
  Q_OBJECT

 public:
  // The panel named "NewAnalyse" in the frame's client area.
  AnalyseWindow(NewAnalyse& controller, QWidget* parent);
  ~AnalyseWindow() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* BuildMap();
  QWidget* BuildSide();
  QWidget* BuildScale();
  QWidget* BuildRepere(QWidget* parent);
  void CentreMapOn(QPoint at);
  void ShowBackColour();
  QLayout* BuildOptions();
  void OnMapMouse(QMouseEvent* event);
  void PopUpMenu(const PicAnaMenu& menu, QPoint at);
  void OnClicked(const std::string& name);
  // Mirrors what RegistryBinding leaves to the view: bounds, list items and
  // the list's choice, the caption of the bar's frame, and Timer1.
  void OnRegistryChange(const std::string& name, const ControlState& state);
  void SizeMap(const ControlState& bounds);
  void PlaceReferenceBox();
  void ApplySmoothing(const QString& text);

  NewAnalyse& controller_;
  CanvasView* map_ = nullptr;
  CanvasView* bar_ = nullptr;
  CanvasView* repere_ = nullptr;
  QScrollArea* scroll_ = nullptr;
  QWidget* referenceBox_ = nullptr;
  QWidget* isoLine_ = nullptr;
  QWidget* isoLabel_ = nullptr;
  QComboBox* fields_ = nullptr;
  QComboBox* smoothing_ = nullptr;
  QGroupBox* scaleFrame_ = nullptr;
  QWidget* scaleLabels_[2] = {};  // LabEchelle(0) and LabEchelle(4), which take clicks
  QTimer timer1_;
  std::unique_ptr<RegistryBinding> binding_;
  int subscription_ = 0;
};

}  // namespace tessiva
