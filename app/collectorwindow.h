// The data collector window (Info, "Data collector"): the table every
// measuring tool of the analysis window writes, in a read-only text filling
// the window, with "Paste to clipboard" and "Erase all data". It floats
// above the other windows; the frame's registry shows and places it, and
// closing it ends the picking.
#pragma once

#include <QRect>
#include <QWidget>

#include "analysis/collector.h"

class QPlainTextEdit;

namespace tessiva {

class NewAnalyse;

class CollectorWindow : public QWidget {
  Q_OBJECT

 public:
  // A tool window over `frame`, hidden until the frame's registry shows it.
  CollectorWindow(NewAnalyse& analyse, QWidget* frame);
  ~CollectorWindow() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  // Follows the collector's text: appended at the end, or replaced whole.
  void OnChange(const CollectorChange& change);
  // The window takes the place and size the registry gives it.
  void OnFrameChange(const std::string& name, const ControlState& state);

  NewAnalyse& analyse_;
  QPlainTextEdit* text_ = nullptr;
  QRect placed_;
  int watch_ = 0;
  int subscription_ = 0;
};

}  // namespace tessiva
