#include "batch/managejobs.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "state/files.h"
#include "state/settings.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

constexpr const char* kLabel1 =
    "Click \"Queue of jobs\" to add data or sequence files. Drag a job onto another to swap them, onto the trash "
    "to remove it. A right click opens the file in the text editor.";
constexpr const char* kNoJob = "There is no job in Entre.dat file ";
constexpr const char* kWarningTitle = "W A R N I N G";

bool IsJob(std::string_view key) { return key.starts_with("FicSeq"); }

int DataFileImage(const std::string& path) {
  return FileExists(ResultPathOf(path)) ? ManageJobs::kHasResult : ManageJobs::kDataFile;
}

bool IsDataFileTag(const std::string& tag) { return ToLower(tag).ends_with(".don"); }

}  // namespace

ManageJobs::ManageJobs(AppState& state, UiPort& ui)
    // Sequence files, job folders and the trash can't be dragged; only the
    // queue's root refuses a drop.
    : BatchWindow(ui, "Job queue", JobTree({"Se", "Ro", "Tr"}, {"Ro", "Tr"}, {"Ro"})), s_(state) {
  controls_.SetText("Label1", kLabel1);
  SetStartOffered(false);
}

void ManageJobs::Load() {
  Guarded([&] {
    tree_.Clear();
    tree_.Add("Computer", "", "My computer", "", kComputer);
    tree_.Add("Root", "Computer", "Queue of jobs", "", kQueue);
    tree_.Add("Seq", "Root", "Data or Sequence File Name", "", kJobs);
    tree_.Add("Trash", "Root", "Trash for file", "", kTrash);
    numNode_ = 0;
    controls_.SetText("Label1", kLabel1);
    SetStartOffered(false);
  });
}

std::string ManageJobs::NextKey(const std::string& prefix) {
  ++numNode_;
  return prefix + Format(numNode_, "0000");
}

void ManageJobs::OnNodeClick(const std::string& key) {
  Guarded([&] {
    if (key == "Computer" || key == "Trash" || !Find(key)) return;
    if (key == "Root" || key == "Seq") {
      AskForJobs();
      return;
    }
    SetStartOffered(true);
  });
}

void ManageJobs::AskForJobs() {
  // Start stays off while the dialog is open, and after it when it is cancelled.
  SetStartOffered(false);
  const FileDialogResult chosen = ui_.OpenFileDialog({.initialDir = s_.LastDir,
                                                      .defaultExt = "don",
                                                      .filter = "Data|*.don|Sequence|*.seq",
                                                      .title = "Reading data file or sequence file",
                                                      .multiSelect = true});

  if (chosen.FileTitle.empty()) {
    const std::vector<std::string> parts = ChosenNames(chosen);
    if (parts.empty() || parts[0].empty()) return;
    RememberLastDir(s_, parts[0]);
    s_.NbSeq = static_cast<int32_t>(parts.size() - 1);
    // The dialog gives the name clicked last first; the others follow in the
    // order shown. The queue takes the last name, those between, then the first.
    const size_t last = parts.size() - 1;
    std::vector<size_t> order;
    if (last >= 1) order.push_back(last);
    for (size_t i = 2; i < last; ++i) order.push_back(i);
    if (last >= 2) order.push_back(1);
    for (size_t i : order)
      if (!parts[i].empty()) AddJob(JoinPath(parts[0], parts[i]), parts[i]);
    ui_.StatusLine(kSortHint);
  } else {
    if (chosen.FileName.empty()) return;
    RememberLastDir(s_, ChosenDirectory(chosen));
    AddJob(chosen.FileName, chosen.FileTitle);
  }
  SetStartOffered(true);
}

void ManageJobs::AddJob(const std::string& path, const std::string& tag) {
  const std::string key = NextKey("FicSeq");
  if (!path.ends_with(".seq")) {
    tree_.Add(key, "Seq", path, tag, DataFileImage(path));
    return;
  }
  const std::optional<std::string> content = ReadWholeFile(path);
  if (!content) {
    ui_.MessageBox("Can't read the sequence file " + path, "", MsgButtons::Ok, MsgIcon::Critical);
    return;
  }
  tree_.Add(key, "Seq", path, tag, kSequence);
  for (const std::string& line : SplitLines(*content)) {
    const std::string name = Trim(line);
    const std::string memberPath = JoinPath(s_.LastDir, name);
    tree_.Add(NextKey(key + "-"), key, memberPath, name, DataFileImage(memberPath));
  }
}

void ManageJobs::Dropped(const std::string& moved, const std::string& target) {
  if (IsJob(moved) && IsJob(target)) {
    tree_.EndInDrag();
    SwapNode(moved, target);
  } else if (IsJob(moved) && target.starts_with("Trash")) {
    tree_.RemoveWithChildren(moved);
  }
}

// A tree without a move operation is sorted by exchanging what two nodes show:
// keys and places stay.
void ManageJobs::SwapNode(const std::string& a, const std::string& b) {
  JobNode* first = tree_.Find(a);
  JobNode* second = tree_.Find(b);
  if (!first || !second) return;
  std::swap(first->text, second->text);
  std::swap(first->tag, second->tag);
  std::swap(first->image, second->image);
}

void ManageJobs::OnTreeMouseUp(int button, const std::string& keyAtPointer) {
  Guarded([&] {
    if (button != kRightButton) return;
    const JobNode* node = Find(keyAtPointer);
    OpenInTextEditor(node ? node->text : std::string());
  });
}

void ManageJobs::OnCommand1() {
  Guarded([&] {
    if (!StartSolver()) ui_.MessageBox("Can't run " + s_.ExePath, "", MsgButtons::Ok, MsgIcon::None);
    ui_.Frame().SetVisible("ManageJobs", false);
  });
}

bool ManageJobs::StartSolver() {
  std::string queue;
  for (const JobNode& n : tree_.Nodes())
    if (IsDataFileTag(n.tag)) queue += n.tag + "\n";
  if (queue.empty()) {
    // The solver is started all the same, on whatever entre.dat the directory holds.
    ui_.MessageBox(kNoJob, kWarningTitle, MsgButtons::Ok, MsgIcon::Exclamation);
  } else if (!WriteFileAtomically(JoinPath(s_.LastDir, "entre.dat"), queue)) {
    return false;
  }
  // The solver's report goes beside entre.dat, for the frame to follow and the user to read.
  if (!ui_.StartSolver(JoinPath(s_.StartDir, s_.ExePath), {s_.LastDir, s_.StartDir}, JoinPath(s_.LastDir, "solver.log")))
    return false;
  ui_.MessageBox(s_.ExePath + " is running", "", MsgButtons::Ok, MsgIcon::None);
  return true;
}

}  // namespace tessiva
