// The analysis window's graph panel for the forming-limit fields: the
// button Image1 that shows it, and GrapheAna with the graph Graphe, the
// curve points' text TextCLF, the limit texts, and the FLC frame (line
// position, strain plotted, curvature, side kept, determination, quality
// gauge). It forwards its events to NewAnalyse::Flc; the window's registry
// binding mirrors the controls it names.
#pragma once

#include <QWidget>

#include "analysis/newanalyse.h"

class QMouseEvent;
class QPlainTextEdit;
class QScrollBar;

namespace tessiva {

class CanvasView;

class FlcPanel : public QWidget {
 public:
  FlcPanel(NewAnalyse& controller, QWidget* parent);
  ~FlcPanel() override;
  FlcPanel(const FlcPanel&) = delete;
  FlcPanel& operator=(const FlcPanel&) = delete;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* BuildFrame(QWidget* parent);
  void OnGrapheMouse(QMouseEvent* event);
  void OnRegistryChange(const std::string& name, const ControlState& state);

  NewAnalyse& controller_;
  CanvasView* graph_ = nullptr;
  CanvasView* gauge_ = nullptr;
  QPlainTextEdit* text_ = nullptr;
  QWidget* marker_ = nullptr;
  QScrollBar* position_ = nullptr;
  int subscription_ = 0;
};

}  // namespace tessiva
