// The analysis window's tool bar (Toolbar1), built from the keys of
// Toolbar1Keys: the parameters key, the section tool, the six picking tools,
// the names of the stored selections (Combo1) and the key that stores the
// selection under the typed name (SaveAOS), the navigation keys round the
// member list (Combo4), the run and the captures.
//
// Each key is named "Toolbar1.Button<i>" after its place on the bar, so the
// window's RegistryBinding mirrors its Enabled and pressed state; a click
// goes to NewAnalyse::OnToolbar1Click with the key's name. Combo1's entries
// and text are mirrored here, and its Enter, Delete and choices go to the
// picking's Combo1 operations. Combo4 mirrors the members; a choice reads one.
#pragma once

#include <QToolBar>
#include <string>
#include <string_view>

#include "ui/controls.h"

class QComboBox;
class QToolButton;

namespace tessiva {

class NewAnalyse;

class AnalyseToolbar : public QToolBar {
  Q_OBJECT

 public:
  AnalyseToolbar(NewAnalyse& controller, QWidget* parent);
  ~AnalyseToolbar() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QToolButton* AddKey(int index, std::string_view key, std::string_view tip, bool pressable);
  void AddSectionMenu(QToolButton* key);
  void AddNames();
  void AddMembers();
  void OnRegistryChange(const std::string& name, const ControlState& state);
  // The Delete key on Combo1 takes the entry in its text, or the one
  // highlighted in its open list, off the list.
  void DeleteName(int highlighted);

  NewAnalyse& controller_;
  QComboBox* names_ = nullptr;
  QComboBox* members_ = nullptr;
  int subscription_ = 0;
};

}  // namespace tessiva
