// The job queue window's logic (ManageJobs): a tree of data files and sequence
// files gathered through the file dialog, sorted by drag and drop, emptied into
// the trash; "Start" writes entre.dat in LastDir and starts the solver on it.
#pragma once

#include <string>
#include <vector>

#include "batch/jobtree.h"
#include "state/appstate.h"
#include "ui/controls.h"
#include "ui/uiport.h"

namespace tessiva {

// The queue's node images: 1 queue, 2 jobs folder, 3 trash, 4 data file, 5
// sequence file, 6 computer, 7 data file whose result exists already.

inline constexpr const char* kSortHint =
    "Drag and drop picture node to sort the sequence, drop the node into the trash to delete it";

class ManageJobs : public JobTreeEvents {
 public:
  enum Image { kQueue = 1, kJobs = 2, kTrash = 3, kDataFile = 4, kSequence = 5, kComputer = 6, kHasResult = 7 };

  ManageJobs(AppState& state, UiPort& ui);

  // "Command1" (Start, enabled), "Timer1" (checked while it runs),
  // "FlashInfo" (visible), "Label1" (caption).
  ControlRegistry& Controls() { return controls_; }
  const ControlRegistry& Controls() const { return controls_; }

  // The nodes in the tree's collection order: the order they were added in.
  const std::vector<JobNode>& Nodes() const override { return tree_.Nodes(); }
  // The node with that key, or null.
  const JobNode* Find(const std::string& key) const { return tree_.Find(key); }

  // A fresh queue: the four fixed nodes, the counter at 0, Start and the marker off.
  void Load();

  // A job node turns Start on; the queue or jobs node asks for files to add.
  void OnNodeClick(const std::string& key) override;
  // Blinks the marker beside Start.
  void OnTimer1();

  // Drag and drop. Keys are those of the node under the pointer, empty over no
  // node; buttons are 1 (left) and 2 (right). OnDragOver and OnDragDrop only act
  // while a drag runs, that is from a left-button move over a draggable node to
  // the drop that ends it.
  void OnTreeMouseDown(int button, const std::string& keyAtPointer) override;
  void OnTreeMouseMove(int button) override;
  void OnDragOver(const std::string& keyAtPointer) override;
  void OnDragDrop() override;
  // The right button opens the node's file in the plain-text editor.
  void OnTreeMouseUp(int button, const std::string& keyAtPointer) override;

  const std::string& DropHighlight() const override { return tree_.DropHighlight(); }
  bool InDrag() const { return tree_.InDrag(); }
  bool DragRunning() const override { return tree_.DragRunning(); }

  // "Start": writes entre.dat, starts the solver and closes the window.
  void OnCommand1();

 private:
  void SetStartOffered(bool on);
  void AskForJobs();
  void AddJob(const std::string& path, const std::string& tag);
  void SwapNode(const std::string& a, const std::string& b);
  std::string NextKey(const std::string& prefix);
  // False when entre.dat can't be written or the solver can't be started.
  bool StartSolver();

  AppState& s_;
  UiPort& ui_;
  ControlRegistry controls_;
  // Sequence files, job folders and the trash can't be dragged; only the
  // queue's root refuses a drop.
  JobTree tree_{{"Se", "Ro", "Tr"}, {"Ro", "Tr"}, {"Ro"}};
  int numNode_ = 0;
};

}  // namespace tessiva
