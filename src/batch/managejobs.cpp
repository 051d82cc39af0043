#include "batch/managejobs.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

#include "state/files.h"
#include "state/frame.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr const char* kLabel1 =
    "Click \"Queue of jobs\" to add data or sequence files. Drag a job onto another to swap them, onto the trash "
    "to remove it. A right click opens the file in the text editor.";
constexpr const char* kNoJob = "There is no job in Entre.dat file ";
constexpr const char* kWarningTitle = "W A R N I N G";

#ifdef _WIN32
constexpr const char* kTextEditor = "notepad.exe";
#else
constexpr const char* kTextEditor = "xdg-open";
#endif

// Sequence files, job folders and the trash can't be dragged.
bool Draggable(std::string_view key) {
  return !key.empty() && !key.starts_with("Se") && !key.starts_with("Ro") && !key.starts_with("Tr");
}

bool IsJob(std::string_view key) { return key.starts_with("FicSeq"); }

// The result file of a data file: the path less its extension, plus ".res".
std::string ResultOf(const std::string& path) {
  return path.substr(0, path.size() - std::min<size_t>(path.size(), 4)) + ".res";
}

int DataFileImage(const std::string& path) {
  return FileExists(ResultOf(path)) ? ManageJobs::kHasResult : ManageJobs::kDataFile;
}

bool IsDataFileTag(const std::string& tag) { return ToLower(tag).ends_with(".don"); }

// Runs an event handler so that nothing it throws leaves the controller; the
// user is told instead.
template <typename Handler>
void Guarded(UiPort& ui, Handler&& handler) {
  try {
    handler();
  } catch (const std::exception& e) {
    try {
      ui.MessageBox(std::string("Job queue: ") + e.what(), "", MsgButtons::Ok, MsgIcon::Critical);
    } catch (...) {
    }
  } catch (...) {
  }
}

}  // namespace

ManageJobs::ManageJobs(AppState& state, UiPort& ui) : s_(state), ui_(ui) {
  controls_.SetText("Label1", kLabel1);
  SetStartOffered(false);
}

const JobNode* ManageJobs::Find(const std::string& key) const {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(), [&](const JobNode& n) { return n.key == key; });
  return found == nodes_.end() ? nullptr : &*found;
}

void ManageJobs::SetStartOffered(bool on) {
  controls_.SetEnabled("Command1", on);
  controls_.SetChecked("Timer1", on);
  controls_.SetVisible("FlashInfo", on);
}

void ManageJobs::Load() {
  Guarded(ui_, [&] {
    nodes_.clear();
    AddNode("Computer", "", "My computer", "", kComputer);
    AddNode("Root", "Computer", "Queue of jobs", "", kQueue);
    AddNode("Seq", "Root", "Data or Sequence File Name", "", kJobs);
    AddNode("Trash", "Root", "Trash for file", "", kTrash);
    numNode_ = 0;
    moveNode_.clear();
    dropHighlight_.clear();
    inDrag_ = dragRunning_ = false;
    controls_.SetText("Label1", kLabel1);
    SetStartOffered(false);
  });
}

void ManageJobs::AddNode(const std::string& key, const std::string& parent, const std::string& text,
                         const std::string& tag, int image) {
  nodes_.push_back({key, text, tag, image, parent});
}

std::string ManageJobs::NextKey(const std::string& prefix) {
  ++numNode_;
  return prefix + Format(numNode_, "0000");
}

void ManageJobs::OnNodeClick(const std::string& key) {
  Guarded(ui_, [&] {
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
    // Several names: the directory, then the names, NUL-separated.
    const std::vector<std::string> parts = SplitText(chosen.FileName, std::string_view("\0", 1));
    if (parts.empty() || parts[0].empty()) return;
    RememberLastDir(s_, parts[0]);
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
    AddNode(key, "Seq", path, tag, DataFileImage(path));
    return;
  }
  const std::optional<std::string> content = ReadWholeFile(path);
  if (!content) {
    ui_.MessageBox("Can't read the sequence file " + path, "", MsgButtons::Ok, MsgIcon::Critical);
    return;
  }
  AddNode(key, "Seq", path, tag, kSequence);
  for (const std::string& line : SplitLines(*content)) {
    const std::string name = Trim(line);
    const std::string memberPath = JoinPath(s_.LastDir, name);
    AddNode(NextKey(key + "-"), key, memberPath, name, DataFileImage(memberPath));
  }
}

void ManageJobs::OnTimer1() {
  Guarded(ui_, [&] { controls_.SetVisible("FlashInfo", !controls_.Visible("FlashInfo")); });
}

void ManageJobs::OnTreeMouseDown(int /*button*/, const std::string& keyAtPointer) {
  Guarded(ui_, [&] { moveNode_ = Find(keyAtPointer) ? keyAtPointer : std::string(); });
}

void ManageJobs::OnTreeMouseMove(int button) {
  Guarded(ui_, [&] {
    if (button != kLeftButton || !Draggable(moveNode_)) return;
    inDrag_ = true;
    dragRunning_ = true;
  });
}

void ManageJobs::OnDragOver(const std::string& keyAtPointer) {
  Guarded(ui_, [&] {
    if (dragRunning_ && inDrag_) dropHighlight_ = Find(keyAtPointer) ? keyAtPointer : std::string();
  });
}

void ManageJobs::OnDragDrop() {
  Guarded(ui_, [&] {
    if (!dragRunning_) return;
    dragRunning_ = false;
    if (moveNode_.starts_with("Ro") || moveNode_.starts_with("Tr")) return;
    if (dropHighlight_.empty()) {
      inDrag_ = false;
      return;
    }
    const std::string target = std::exchange(dropHighlight_, std::string());
    const JobNode* moved = Find(moveNode_);
    const JobNode* onto = Find(target);
    if (!moved || !onto || target.starts_with("Ro") || moved->text == onto->text) return;
    if (IsJob(moveNode_) && IsJob(target)) {
      inDrag_ = false;
      SwapNode(moveNode_, target);
    } else if (IsJob(moveNode_) && target.starts_with("Trash")) {
      RemoveWithChildren(moveNode_);
    }
  });
}

// A tree without a move operation is sorted by exchanging what two nodes show:
// keys and places stay.
void ManageJobs::SwapNode(const std::string& a, const std::string& b) {
  auto first = std::find_if(nodes_.begin(), nodes_.end(), [&](const JobNode& n) { return n.key == a; });
  auto second = std::find_if(nodes_.begin(), nodes_.end(), [&](const JobNode& n) { return n.key == b; });
  if (first == nodes_.end() || second == nodes_.end()) return;
  std::swap(first->text, second->text);
  std::swap(first->tag, second->tag);
  std::swap(first->image, second->image);
}

void ManageJobs::RemoveWithChildren(const std::string& key) {
  std::vector<std::string> doomed{key};
  // Children always come after their parent, so one pass finds every descendant.
  for (const JobNode& n : nodes_)
    if (std::find(doomed.begin(), doomed.end(), n.parent) != doomed.end()) doomed.push_back(n.key);
  std::erase_if(nodes_, [&](const JobNode& n) { return std::find(doomed.begin(), doomed.end(), n.key) != doomed.end(); });
}

void ManageJobs::OnTreeMouseUp(int button, const std::string& keyAtPointer) {
  Guarded(ui_, [&] {
    if (button != kRightButton) return;
    const JobNode* node = Find(keyAtPointer);
    const std::string text = node ? node->text : std::string();
#ifdef _WIN32
    ui_.StartProcess(kTextEditor, text.empty() ? std::vector<std::string>{} : std::vector<std::string>{text});
#else
    // xdg-open has nothing to open without a file.
    if (!text.empty()) ui_.StartProcess(kTextEditor, {text});
#endif
  });
}

void ManageJobs::OnCommand1() {
  Guarded(ui_, [&] {
    if (!StartSolver()) ui_.MessageBox("Can't run " + s_.ExePath, "", MsgButtons::Ok, MsgIcon::None);
    ui_.Frame().SetVisible("ManageJobs", false);
  });
}

bool ManageJobs::StartSolver() {
  std::string queue;
  for (const JobNode& n : nodes_)
    if (IsDataFileTag(n.tag)) queue += n.tag + "\n";
  if (queue.empty()) {
    // The solver is started all the same, on whatever entre.dat the directory holds.
    ui_.MessageBox(kNoJob, kWarningTitle, MsgButtons::Ok, MsgIcon::Exclamation);
  } else if (!WriteFileAtomically(JoinPath(s_.LastDir, "entre.dat"), queue)) {
    return false;
  }
  if (!ui_.StartProcess(JoinPath(s_.StartDir, s_.ExePath), {s_.LastDir, s_.StartDir})) return false;
  ui_.MessageBox(s_.ExePath + " is running", "", MsgButtons::Ok, MsgIcon::None);
  return true;
}

}  // namespace tessiva
