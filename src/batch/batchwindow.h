// What the two batch windows (the job queue and the sequence builder) share:
// their control registry, their tree and the drag sequence the view forwards
// to it, the blinking marker that points at Start, and the guard that keeps
// every event's failure inside the window.
#pragma once

#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "batch/jobtree.h"
#include "ui/controls.h"
#include "ui/uiport.h"

namespace tessiva {

class BatchWindow {
 public:
  virtual ~BatchWindow() = default;
  BatchWindow(const BatchWindow&) = delete;
  BatchWindow& operator=(const BatchWindow&) = delete;

  // "Command1" (Start, enabled), "Timer1" (checked while it runs),
  // "FlashInfo" (visible), "Label1" (help line), and each window's own.
  ControlRegistry& Controls() { return controls_; }
  const ControlRegistry& Controls() const { return controls_; }

  // The nodes in the tree's collection order: the order they were added in.
  const std::vector<JobNode>& Nodes() const { return tree_.Nodes(); }
  // The node with that key, or null.
  const JobNode* Find(const std::string& key) const { return tree_.Find(key); }
  const std::string& DropHighlight() const { return tree_.DropHighlight(); }
  bool InDrag() const { return tree_.InDrag(); }
  bool DragRunning() const { return tree_.DragRunning(); }

  // A fresh window, as when it is shown.
  virtual void Load() = 0;
  virtual void OnNodeClick(const std::string& key) = 0;
  // "Start".
  virtual void OnCommand1() = 0;

  // The tree's pointer events, with the key of the node under the pointer
  // (empty over no node) and the buttons of ui/pointer.h. OnDragOver and
  // OnDragDrop only act while a drag runs, that is from a left-button move
  // over a draggable node to the drop that ends it.
  void OnTreeMouseDown(int button, const std::string& keyAtPointer);
  void OnTreeMouseMove(int button);
  void OnDragOver(const std::string& keyAtPointer);
  void OnDragDrop();
  virtual void OnTreeMouseUp(int /*button*/, const std::string& /*keyAtPointer*/) {}
  // Blinks the marker beside Start.
  void OnTimer1();

 protected:
  // `window` leads the messages of failures; `tree` says which keys are fixed.
  BatchWindow(UiPort& ui, std::string window, JobTree tree)
      : ui_(ui), tree_(std::move(tree)), window_(std::move(window)) {}

  // A drop the tree accepts: node `moved` onto node `target`.
  virtual void Dropped(const std::string& moved, const std::string& target) = 0;
  // Start with its blinking marker, on or off.
  void SetStartOffered(bool on);
  // Shows a file in the plain-text editor, where the user can also change it.
  void OpenInTextEditor(const std::string& path);

  // Runs an event handler so that nothing it throws leaves the window; the
  // user is told in plain words, never with the text of the exception.
  template <typename Handler>
  void Guarded(Handler&& handler) {
    try {
      handler();
    } catch (const std::bad_alloc&) {
      Tell(window_ + ": there is not enough memory for this command");
    } catch (...) {
      Tell(window_ + ": this command stopped on an internal error; no file was changed by it");
    }
  }

  UiPort& ui_;
  ControlRegistry controls_;
  JobTree tree_;

 private:
  void Tell(const std::string& text) {
    try {
      ui_.MessageBox(text, "", MsgButtons::Ok, MsgIcon::Critical);
    } catch (...) {
    }
  }

  std::string window_;
};

}  // namespace tessiva
