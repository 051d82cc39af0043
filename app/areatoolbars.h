// The setup window's two tool bars, built from the button tables of the
// window logic: each key carries an icon drawn from an SVG file of the
// program's resources and its tooltip, and is named after its registry entry
// so that the window's RegistryBinding mirrors its Enabled and pressed
// state. Toolbar1 holds the list of area sets (Combo1), the data file's name
// (Text1) and the blinking hand FlashInfo2; Toolbar2 the hand FlashInfo and
// the advisor gauge CorrelJauge.
#pragma once

#include <QComboBox>
#include <QIcon>
#include <QToolBar>
#include <functional>
#include <string>

namespace tessiva {

class AreaForm;
class CanvasView;
class ControlRegistry;

// An icon of the program's resources (":/icons/<name>.svg"), rendered sharp
// at twice its size.
QIcon SvgIcon(const QString& name, int side = 24);

// An editable list whose entries and text mirror a registry entry: a choice,
// Enter and the Delete key go to the actions, with positions from 1. The
// Delete key takes the entry highlighted in the open list, or the one whose
// text the box holds.
class EditableList : public QComboBox {
 public:
  struct Actions {
    std::function<void(int position)> chosen;
    std::function<void()> entered;
    std::function<void(int position)> deleted;
  };
  EditableList(ControlRegistry& controls, const char* name, Actions actions, QWidget* parent);
  ~EditableList() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  ControlRegistry& controls_;
  std::string name_;
  Actions actions_;
  int subscription_ = 0;
};

class AreaToolbar : public QToolBar {
 public:
  // bar is 1 or 2.
  AreaToolbar(AreaForm& controller, int bar, QWidget* parent);
  // The advisor gauge's view, on Toolbar2.
  CanvasView* Gauge() const { return gauge_; }

 private:
  QWidget* Placeholder(std::string_view key);

  AreaForm& controller_;
  CanvasView* gauge_ = nullptr;
};

// A click the window's binding reports, for a key of either bar; false when
// the name is no key.
bool RouteToolbarClick(AreaForm& controller, const std::string& name);

}  // namespace tessiva
