// The observable control registry: the state a window shows (texts, enabled,
// visible and pressed flags, list items, timers), addressed by control name.
// Controllers write it; views bind widgets by objectName and mirror it; tests
// assert on it directly.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tessiva {

struct ControlState {
  bool enabled = true;
  bool visible = true;
  bool checked = false;  // option buttons, check boxes, two-state tool buttons, running timers
  std::string text;      // text, caption or tooltip
  std::vector<std::string> items;  // list entries
  int listIndex = -1;
  int foreColor = 0;  // code of the 16-colour table
  int left = 0, top = 0, width = 0, height = 0;
};

class ControlRegistry {
 public:
  using Observer = std::function<void(const std::string& name, const ControlState& state)>;

  // The state of a control; a control never written has the default state.
  const ControlState& Get(const std::string& name) const;
  bool Has(const std::string& name) const { return controls_.count(name) != 0; }

  // Changes a control and tells every observer.
  void Update(const std::string& name, const std::function<void(ControlState&)>& change);

  void SetText(const std::string& name, const std::string& text);
  void SetEnabled(const std::string& name, bool enabled);
  void SetVisible(const std::string& name, bool visible);
  void SetChecked(const std::string& name, bool checked);
  void SetForeColor(const std::string& name, int colour);
  void SetItems(const std::string& name, std::vector<std::string> items);
  void AddItem(const std::string& name, const std::string& item);
  void SetBounds(const std::string& name, int left, int top, int width, int height);

  const std::string& Text(const std::string& name) const { return Get(name).text; }
  bool Checked(const std::string& name) const { return Get(name).checked; }
  bool Visible(const std::string& name) const { return Get(name).visible; }
  bool Enabled(const std::string& name) const { return Get(name).enabled; }

  int Subscribe(Observer observer);
  void Unsubscribe(int id);

 private:
  std::map<std::string, ControlState> controls_;
  std::map<int, Observer> observers_;
  int nextObserver_ = 1;
};

}  // namespace tessiva
