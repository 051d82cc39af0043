// Binds a window's widgets to its control registry by objectName: the registry's
// state is mirrored in the widgets, and the user's edits go back into the registry.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "ui/controls.h"

class QComboBox;

namespace tessiva {

// The core's texts and paths are UTF-8.
QString ToQt(const std::string& text);
std::string FromQt(const QString& text);

// The index of an indexed control: ControlIndex("Command1(2)", "Command1") is 2;
// nothing when the name isn't `base` with an index.
std::optional<int> ControlIndex(std::string_view name, std::string_view base);

// Mouse buttons and modifier keys as the controllers count them (ui/pointer.h).
int ButtonCode(Qt::MouseButtons buttons);
int ShiftCode(Qt::KeyboardModifiers modifiers);

// Replaces a list's entries by the registry's when they differ, then shows
// its choice: the typed text of an editable list, the chosen entry of another.
// The list's signals are blocked meanwhile.
void MirrorList(QComboBox* list, const ControlState& state);

// Registry to widgets: a field (text or caption, enabled, visible, checked,
// colour, tab) is applied when its value in the registry changes. A registry
// entry holds defaults for the fields no controller wrote, so until one writes a
// field the widget keeps what the view built, such as its caption. Visibility is
// the exception: it starts from the widget, since windows are built hidden.
//
// Widgets to registry: typed text, toggled check and option buttons and the
// chosen tab are written into the registry first, then reported (edited), so the
// controller reads the new value; clicks and key presses are only reported.
//
// A child window is bound by its own name, but its controls belong to its own
// registry and binding: a top-level window, or a widget marked with
// MarkOwnBinding (a tool window laid in the frame's client area). The root window's visibility belongs to whoever shows it.
// Bind a window once it has all its widgets.
void MarkOwnBinding(QWidget* window);

class RegistryBinding : public QObject {
  Q_OBJECT

 public:
  RegistryBinding(ControlRegistry& registry, QWidget* root);
  ~RegistryBinding() override;

 Q_SIGNALS:
  void clicked(const std::string& name);
  void edited(const std::string& name);
  // The character code of a key typed in a text field (13 for Enter).
  void keyPressed(const std::string& name, int keyAscii);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BindTree(QWidget* parent);
  void Bind(QWidget* widget);
  void ForwardEdits(QWidget* widget, const std::string& name);
  void Mirror(const std::string& name, const ControlState& state);

  ControlRegistry& registry_;
  QWidget* root_;
  std::map<std::string, QPointer<QWidget>> widgets_;
  std::map<std::string, ControlState> seen_;  // each entry as last mirrored
  int subscription_ = 0;
};

}  // namespace tessiva
