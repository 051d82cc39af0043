#include "analysis/collector.h"

#include <utility>

namespace tessiva {

void Collector::SetText(std::string text) {
  text_ = std::move(text);
  Tell({true, text_});
}

void Collector::Append(const std::string& text) {
  if (text.empty()) return;
  text_ += text;
  Tell({false, text});
}

void Collector::Erase() { SetText(TitreInfo + ColonnesInfo); }

void Collector::PasteToClipboard(UiPort& ui) {
  ui.SetClipboardText(text_);
  Erase();
}

void Collector::Show(UiPort& ui) {
  ControlRegistry& frame = ui.Frame();
  if (!shown_) {
    frame.Update(kControl, [](ControlState& c) {
      c.text = kCaption;
      c.left = kLeft, c.top = kTop, c.width = kWidth, c.height = kHeight;
    });
    ui.StatusLine("Close Info windows to stop the picking");
  }
  shown_ = true;
  frame.SetVisible(kControl, true);
}

void Collector::Hide(UiPort& ui) {
  shown_ = false;
  ui.Frame().SetVisible(kControl, false);
}

int Collector::Watch(Watcher watcher) {
  watchers_[nextWatcher_] = std::move(watcher);
  return nextWatcher_++;
}

void Collector::Unwatch(int id) { watchers_.erase(id); }

// A watcher may unwatch itself while told, so the list is walked on a copy.
void Collector::Tell(const CollectorChange& change) {
  const auto watchers = watchers_;
  for (const auto& [id, watcher] : watchers) watcher(change);
}

}  // namespace tessiva
