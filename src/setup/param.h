// The computational parameters window (Param). The parameters live in
// AppState; the window's fields show them, and a field the user has changed
// holds a value not yet in force until Enter or the next read of the window
// puts it there.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>

#include "state/appstate.h"
#include "ui/controls.h"

namespace tessiva {

class Param {
 public:
  explicit Param(AppState& state);

  ControlRegistry& Controls() { return controls_; }
  const ControlRegistry& Controls() const { return controls_; }

  // Puts every changed field in force, forcing each value into its range;
  // the corrected values are shown back.
  void ParamRead();
  // Shows the parameters of the state, forced into their ranges; a precision
  // typed in its field and not yet in force wins over the state's.
  void ParamShow();

  // A field's text changed: shown in yellow until Enter puts it in force.
  void OnTextChange(const std::string& field);
  // A key pressed in a field; only Enter (13) does anything.
  void OnTextKeyPress(const std::string& field, int keyAscii);
  // The setup window rebuilds its grid when the grid step is put in force.
  std::function<void()> onGridStepChanged;

  // The tab the window opens on (the "Parametre" tool asks for tab 1).
  void SelectTab(int tab);

 private:
  // Whether the user changed a field (or an option) since it was last shown.
  bool Changed(const char* field) const;
  void ShowState();
  void ResetFieldColours(std::initializer_list<const char*> fields);

  AppState& s_;
  ControlRegistry controls_;
  // What each field showed last, to tell the user's changes from the state's values.
  std::map<std::string, ControlState> shown_;
};

}  // namespace tessiva
