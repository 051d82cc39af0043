// The data collector (Info): the one text every measuring tool of the
// analysis window writes its table into, tab separated with CR LF line ends,
// for the user to paste into a spreadsheet. The collector keeps the text and
// the two head strings (the title and the columns of the armed tool), and
// tells its watchers each change: a view that mirrors it appends what was
// appended instead of taking the whole text again, since a table can be long.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "ui/uiport.h"

namespace tessiva {

// A change of the collector's text: either the whole text was replaced
// (`reset`, `text` is the new text) or `text` was added at its end.
struct CollectorChange {
  bool reset = false;
  std::string text;
};

class Collector {
 public:
  using Watcher = std::function<void(const CollectorChange&)>;

  // The window's caption, and where and how large it opens (pixels).
  static constexpr const char* kCaption = "Data collector";
  static constexpr int kLeft = 10, kTop = 10, kWidth = 850, kHeight = 300;
  // The control of the frame registry that stands for the window.
  static constexpr const char* kControl = "Info";

  // The title and the column heads of the armed tool, each a whole line
  // ending in CR LF (TitreInfo and ColonnesInfo); empty while none was armed.
  std::string TitreInfo;
  std::string ColonnesInfo;

  // The table (DataText).
  const std::string& DataText() const { return text_; }
  // Replaces the whole text.
  void SetText(std::string text);
  // Adds at the end, where the caret rests after every write.
  void Append(const std::string& text);
  // "Erase all data": the text becomes the title and the columns.
  void Erase();
  // "Paste to clipboard": the text goes to the clipboard, then is erased.
  void PasteToClipboard(UiPort& ui);

  // Opens the window: placed and shown in the frame registry, and the status
  // line tells how picking ends. Keeping it above the other windows is the
  // view's job. Opening an open window changes nothing.
  void Show(UiPort& ui);
  // Hides the window; ending the picking that goes with it is the analysis
  // window's part (Picking::CloseInfo).
  void Hide(UiPort& ui);
  bool Shown() const { return shown_; }

  int Watch(Watcher watcher);
  void Unwatch(int id);

 private:
  void Tell(const CollectorChange& change);

  std::string text_;
  bool shown_ = false;
  std::map<int, Watcher> watchers_;
  int nextWatcher_ = 1;
};

}  // namespace tessiva
