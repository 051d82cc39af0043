// The job queue window's logic (ManageJobs): a tree of data files and sequence
// files gathered through the file dialog, sorted by drag and drop, emptied into
// the trash; "Start" writes entre.dat in LastDir and starts the solver on it.
#pragma once

#include <string>
#include <vector>

#include "batch/batchwindow.h"
#include "state/appstate.h"
#include "ui/uiport.h"

namespace tessiva {

// The queue's node images: 1 queue, 2 jobs folder, 3 trash, 4 data file, 5
// sequence file, 6 computer, 7 data file whose result exists already.

inline constexpr const char* kSortHint =
    "Drag and drop picture node to sort the sequence, drop the node into the trash to delete it";

class ManageJobs : public BatchWindow {
 public:
  enum Image { kQueue = 1, kJobs = 2, kTrash = 3, kDataFile = 4, kSequence = 5, kComputer = 6, kHasResult = 7 };

  ManageJobs(AppState& state, UiPort& ui);

  // A fresh queue: the four fixed nodes, the counter at 0, Start and the marker off.
  void Load() override;
  // A job node turns Start on; the queue or jobs node asks for files to add.
  void OnNodeClick(const std::string& key) override;
  // The right button opens the node's file in the plain-text editor.
  void OnTreeMouseUp(int button, const std::string& keyAtPointer) override;
  // "Start": writes entre.dat, starts the solver and closes the window.
  void OnCommand1() override;

 private:
  // A job onto a job swaps them; a job onto the trash takes it out.
  void Dropped(const std::string& moved, const std::string& target) override;
  void AskForJobs();
  void AddJob(const std::string& path, const std::string& tag);
  void SwapNode(const std::string& a, const std::string& b);
  std::string NextKey(const std::string& prefix);
  // False when entre.dat can't be written or the solver can't be started.
  bool StartSolver();

  AppState& s_;
  int numNode_ = 0;
};

}  // namespace tessiva
