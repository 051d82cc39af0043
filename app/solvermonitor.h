// Follows the correlation solver after "Manage Jobs" started it and closed:
// the solver runs detached, so that it outlives the program, with its output
// going to a file that is read as it grows; the frame's status line shows the
// progress, and a message says how it ended.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <string>
#include <vector>

#include "batch/solverprogress.h"
#include "ui/uiport.h"

namespace tessiva {

class SolverMonitor : public QObject {
  Q_OBJECT

 public:
  explicit SolverMonitor(UiPort& ui, QObject* parent = nullptr);

  // Starts `program` with `arguments`, its output, then the line "exit
  // status N", going to `outputFile`, and follows it; a solver started before
  // runs on unfollowed. False when the program can't be run.
  bool Start(const std::string& program, const std::vector<std::string>& arguments, const std::string& outputFile);

 private:
  // Reads what the solver wrote since the last look.
  void Poll();
  void Finish(const std::string& message);

  UiPort& ui_;
  QTimer poll_;
  QElapsedTimer clock_;
  QString outputFile_;
  qint64 read_ = 0;
  std::string partialLine_;
  SolverProgress progress_;
};

}  // namespace tessiva
