// The platform port over Qt: message and input boxes, file dialogs, the
// clipboard, detached processes, the busy pointer and the event loop.
#pragma once

#include <QFileDialog>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <memory>

#include "solvermonitor.h"
#include "ui/uiport.h"

namespace tessiva {

// "Data|*.res|Sequence|*.seq" (description and pattern pairs, patterns split by
// ';') to Qt's "Data (*.res);;Sequence (*.seq)".
QString QtNameFilters(const std::string& filter);

// A dialog's two results from the chosen files: one file gives its path and its
// name; several give the directory and the names joined by NUL characters and
// an empty title; none gives empty results.
FileDialogResult DialogResult(const QStringList& files);

class QtUi : public UiPort {
 public:
  explicit QtUi(ControlRegistry& frameControls) : UiPort(frameControls) {}
  ~QtUi() override;

  // The window the boxes and dialogs are modal to and centred on.
  void SetDialogParent(QWidget* parent) { parent_ = parent; }

  MsgAnswer MessageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                       MsgIcon icon) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& defaultText) override;
  FileDialogResult OpenFileDialog(const FileDialogRequest& request) override;
  FileDialogResult SaveFileDialog(const FileDialogRequest& request) override;
  void SetClipboardText(const std::string& text) override;
  void SetClipboardPicture(const RgbImage& picture) override;
  void Beep() override;
  bool StartProcess(const std::string& program, const std::vector<std::string>& arguments) override;
  // The frame's status line follows the solver, and a message says how it ended.
  bool StartSolver(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& outputFile) override;
  // Nested calls are counted: the pointer comes back with the last one.
  void SetBusy(bool busy) override;
  void DoEvents() override;
  void EndProgram(int status) override;

 private:
  FileDialogResult RunFileDialog(const FileDialogRequest& request, QFileDialog::AcceptMode mode);

  QPointer<QWidget> parent_;
  int busyDepth_ = 0;
  std::unique_ptr<SolverMonitor> solverMonitor_;
};

}  // namespace tessiva
