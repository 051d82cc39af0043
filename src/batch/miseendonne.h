// The "Input Data" window's logic (MiseEnDonne): the user picks a reference
// picture and deformed pictures, or opens a data or sequence file; the tree
// shows them, drag and drop orders the deformed pictures, and "Start" writes
// the sequence and passes on to the setup window (AreaForm). Nothing is
// written before Start.
#pragma once

#include <string>
#include <vector>

#include "batch/batchwindow.h"
#include "formats/seqfile.h"
#include "state/appstate.h"
#include "ui/uiport.h"

namespace tessiva {

// Sorts list[first..] in place, ascending as text, by neighbour exchanges.
// Numbered names of equal length come out in the order of their numbers;
// "p10" sorts before "p9".
void TriBulle(std::vector<std::string>& list, size_t first = 0);

class MiseEnDonne : public BatchWindow {
 public:
  enum Image { kFileNode = 1, kReferenceFolder = 2, kDeformedFolder = 3, kPicture = 4 };

  MiseEnDonne(AppState& state, UiPort& ui);

  // Besides the shared controls: "Label2" (information lines), "Option1(0)"
  // sequential and "Option1(1)" incremental, "EditButton".

  // True when the sequence was opened from a file rather than built here.
  bool FromFile() const { return fromFile_; }
  // The last picture chosen, for the preview; empty before any.
  const std::string& PreviewPath() const { return previewPath_; }

  // The empty tree: Root and Rp, a sequential sequence, Start off.
  void Load() override;
  // Rp chooses the reference, Dp the deformed pictures, Root opens a file.
  void OnNodeClick(const std::string& key) override;
  // 0 sequential, 1 incremental.
  void OnOption1Click(int index);

  // Opens FileName in the plain-text editor.
  void OnEditButton();
  // Start: writes the sequence (unless it came from a file) and shows AreaForm.
  void OnCommand1() override;

 private:
  // Two deformed pictures change places; the sequence is renamed when the last one moves.
  void Dropped(const std::string& moved, const std::string& target) override;
  void Help(const std::string& text) { controls_.SetText("Label1", text); }
  void EnableOptions(bool on);
  void AddDeformedFolder();
  void RemovePictures();
  void ChooseReference();
  void ChooseDeformed();
  void OpenDataFile();
  bool ListMembers();
  void RefuseDirectory();
  void NameSequenceAfter(const std::string& lastPicture);
  SequenceMembers Members() const;

  AppState& s_;
  bool fromFile_ = false;
  std::string previewPath_;
};

}  // namespace tessiva
