#include "ui/controls.h"

namespace tessiva {

const ControlState& ControlRegistry::Get(const std::string& name) const {
  static const ControlState kDefault;
  const auto it = controls_.find(name);
  return it == controls_.end() ? kDefault : it->second;
}

void ControlRegistry::Update(const std::string& name, const std::function<void(ControlState&)>& change) {
  ControlState& state = controls_[name];
  change(state);
  // Observers may subscribe or unsubscribe while being told: iterate over a copy.
  const auto observers = observers_;
  for (const auto& [id, observer] : observers) observer(name, state);
}

void ControlRegistry::SetText(const std::string& name, const std::string& text) {
  Update(name, [&](ControlState& s) { s.text = text; });
}
void ControlRegistry::SetEnabled(const std::string& name, bool enabled) {
  Update(name, [&](ControlState& s) { s.enabled = enabled; });
}
void ControlRegistry::SetVisible(const std::string& name, bool visible) {
  Update(name, [&](ControlState& s) { s.visible = visible; });
}
void ControlRegistry::SetChecked(const std::string& name, bool checked) {
  Update(name, [&](ControlState& s) { s.checked = checked; });
}
void ControlRegistry::SetForeColor(const std::string& name, int colour) {
  Update(name, [&](ControlState& s) { s.foreColor = colour; });
}
void ControlRegistry::SetItems(const std::string& name, std::vector<std::string> items) {
  Update(name, [&](ControlState& s) {
    s.items = std::move(items);
    s.listIndex = -1;
  });
}
void ControlRegistry::AddItem(const std::string& name, const std::string& item) {
  Update(name, [&](ControlState& s) { s.items.push_back(item); });
}
void ControlRegistry::SetBounds(const std::string& name, int left, int top, int width, int height) {
  Update(name, [&](ControlState& s) {
    s.left = left;
    s.top = top;
    s.width = width;
    s.height = height;
  });
}

int ControlRegistry::Subscribe(Observer observer) {
  observers_[nextObserver_] = std::move(observer);
  return nextObserver_++;
}

void ControlRegistry::Unsubscribe(int id) { observers_.erase(id); }

}  // namespace tessiva
