// The computational parameters window: its fields are the working copy of the
// parameters, ParamRead and ParamShow move them to and from AppState, forcing
// every value into its range.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "state/appstate.h"
#include "ui/controls.h"

namespace tessiva {

// Round((hima / lpas) x (lima / lpas)): the patterns, and cells, a picture
// holds at a grid step; 0 for a picture or step that isn't positive.
int64_t PatternCapacity(int32_t lima, int32_t hima, int32_t lpas);
// Makes the pattern, result, cell and node arrays anew for the current Lpas and
// picture size; their contents are lost.
void AllocPat(AppState& s);
// The same, and the two picture arrays too (a picture or a result file is read).
void AllocPatAndPictures(AppState& s);

class Param {
 public:
  explicit Param(AppState& state) : s_(state) {}

  ControlRegistry& Controls() { return controls_; }
  const ControlRegistry& Controls() const { return controls_; }

  // Fields to AppState; the corrected values go back to the fields.
  void ParamRead();
  // AppState to fields, with the same clamping; Precision is taken from its field.
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
  void ClampPatternSizesAndPrecision();
  void ClampGridStep();
  void DeriveSteps();
  void ResetFieldColours(std::initializer_list<const char*> fields);

  AppState& s_;
  ControlRegistry controls_;
};

}  // namespace tessiva
