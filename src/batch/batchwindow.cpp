#include "batch/batchwindow.h"

#include <optional>

namespace tessiva {

void BatchWindow::SetStartOffered(bool on) {
  controls_.SetEnabled("Command1", on);
  controls_.SetChecked("Timer1", on);
  controls_.SetVisible("FlashInfo", on);
}

void BatchWindow::OpenInTextEditor(const std::string& path) {
#ifdef _WIN32
  ui_.StartProcess("notepad.exe", path.empty() ? std::vector<std::string>{} : std::vector<std::string>{path});
#else
  // xdg-open has nothing to open without a file.
  if (!path.empty()) ui_.StartProcess("xdg-open", {path});
#endif
}

void BatchWindow::OnTimer1() {
  Guarded([&] { controls_.SetVisible("FlashInfo", !controls_.Visible("FlashInfo")); });
}

void BatchWindow::OnTreeMouseDown(int /*button*/, const std::string& keyAtPointer) {
  Guarded([&] { tree_.MouseDown(keyAtPointer); });
}

void BatchWindow::OnTreeMouseMove(int button) {
  Guarded([&] { tree_.MouseMove(button); });
}

void BatchWindow::OnDragOver(const std::string& keyAtPointer) {
  Guarded([&] { tree_.DragOver(keyAtPointer); });
}

void BatchWindow::OnDragDrop() {
  Guarded([&] {
    if (const std::optional<std::string> target = tree_.Drop()) Dropped(tree_.MoveNode(), *target);
  });
}

}  // namespace tessiva
