#include "batch/miseendonne.h"

#include <optional>
#include <string_view>
#include <utility>

#include "formats/sections.h"
#include "state/keyfile.h"
#include "state/files.h"
#include "state/settings.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "state/picturefiles.h"

namespace tessiva {
namespace {

constexpr const char* kRootText = "Data File Name";
constexpr const char* kReferenceText = "Reference Picture";
constexpr const char* kFirstText = "First Picture";
constexpr const char* kDeformedText = "Deformed Picture";
constexpr const char* kOthersText = "Other Pictures";
constexpr const char* kHelpLoad =
    "Click on the Reference Picture node to load a picture, click on the Data File Name node to load a data file "
    "(*.don) or a sequence file (*.seq)";
constexpr const char* kHelpDeformed = "Click on the Deformed Picture node to load one or more picture(s)";
constexpr const char* kHelpSort = "Drag and drop picture node to sort the sequence";
constexpr const char* kSameDirectory =
    "Error, The deformed and the reference\npictures must be in the same directory";


bool IsDeformed(std::string_view key) { return key.starts_with("FicDef"); }
std::string DeformedKey(int i) { return "FicDef" + Format(i, "0000"); }

// The information lines of one member file; nothing when it has no [RELEASE] Name.
std::optional<std::string> MemberLines(const std::string& path, const std::string& name) {
  const KeyFile keys = KeyFile::Load(path);
  if (!keys.Text("RELEASE", "Name")) return std::nullopt;
  std::string out = "   Date : " + std::to_string(keys.Int("RELEASE", "Date", 0));
  if (const auto version = keys.Text("RELEASE", "Version")) out += ", " + std::string(" Version n\u00b0 ") + *version;
  out += "\n";
  const auto text = [&](const char* section, const char* key) {
    return keys.Text(section, key).value_or(std::string(kNotFound));
  };
  out += "   Reference picture : " + text("PICTURES", "PicRef") + "\n";
  out += "   Deformed picture  : " + text("PICTURES", "PicDef") + "\n";
  const auto parameter = [&](const char* key) { return Str(ValNorm(text("PARAMETERS", key))); };
  out += "     -> LpatMin=" + parameter("LpatMin") + "\n";
  out += "     -> Lgrid=" + parameter("Lgrid") + "\n";
  out += "     -> Interpolation  : " + parameter("Interpolation") + "\n";
  out += "     -> Correlation  : " + parameter("Correlation") + "\n";
  out += "     -> LargeStrain  : " + parameter("LargeStrain") + "\n";
  out += "     -> Precision  : " + parameter("Precision") + "\n";
  out += "    -> " + name + "\n";
  return out;
}

}  // namespace

void TriBulle(std::vector<std::string>& list, size_t first) {
  if (list.size() < first + 2) return;
  bool swapped = true;
  while (swapped) {
    swapped = false;
    for (size_t i = first; i + 1 < list.size(); ++i) {
      if (list[i] > list[i + 1]) {
        std::swap(list[i], list[i + 1]);
        swapped = true;
      }
    }
  }
}

// The pictures can be dragged; the folders and the file's node are fixed.
MiseEnDonne::MiseEnDonne(AppState& state, UiPort& ui)
    : BatchWindow(ui, "Input data", JobTree({"Rp", "Dp", "Ro"}, {"Rp", "Dp", "Ro"}, {"Rp", "Dp", "Ro"})), s_(state) {
  Help(kHelpLoad);
  SetStartOffered(false);
}

void MiseEnDonne::EnableOptions(bool on) {
  controls_.SetEnabled("Option1(0)", on);
  controls_.SetEnabled("Option1(1)", on);
}

void MiseEnDonne::Load() {
  Guarded([&] {
    Help(kHelpLoad);
    tree_.Clear();
    tree_.Add("Root", "", kRootText, "", kFileNode);
    tree_.Add("Rp", "Root", kReferenceText, "", kReferenceFolder);
    s_.SeqRefChange = 0;
    fromFile_ = false;
    previewPath_.clear();
    controls_.SetText("Label2", "");
    // Before a reference is chosen the kind of sequence may be picked; it names the nodes.
    EnableOptions(true);
    controls_.SetChecked("Option1(0)", true);
    controls_.SetChecked("Option1(1)", false);
    SetStartOffered(false);
  });
}

void MiseEnDonne::OnNodeClick(const std::string& key) {
  Guarded([&] {
    if (!tree_.Find(key)) return;
    if (key.starts_with("Rp")) ChooseReference();
    else if (key.starts_with("Dp")) ChooseDeformed();
    else if (key.starts_with("Ro")) OpenDataFile();
  });
}

void MiseEnDonne::RemovePictures() {
  tree_.RemoveWithChildren("FicRef");
  tree_.RemoveWithChildren("Dp");
  tree_.ClearDrag();
}

void MiseEnDonne::AddDeformedFolder() {
  tree_.Add("Dp", "Root", s_.SeqRefChange ? kOthersText : kDeformedText, "", kDeformedFolder);
}

void MiseEnDonne::ChooseReference() {
  if (tree_.Find("FicRef")) {
    RemovePictures();
    controls_.SetText("Label2", "");
    SetStartOffered(false);
  }
  EnableOptions(false);
  const FileDialogResult chosen = ui_.OpenFileDialog({.initialDir = s_.LastDir,
                                                      .defaultExt = "bmp",
                                                      .filter = PictureDialogFilter(),
                                                      .title = "Reading reference picture file"});
  JobNode& root = *tree_.Find("Root");
  if (chosen.FileName.empty()) {
    root.text = kRootText;
    return;
  }
  s_.PicRefPath = chosen.FileName;
  s_.PicRefName = chosen.FileTitle;
  RememberLastDir(s_, ChosenDirectory(chosen));
  root.text = PictureStem(s_.PicRefPath) + "-";
  tree_.Add("FicRef", "Rp", s_.PicRefName, s_.PicRefPath, kPicture);
  previewPath_ = s_.PicRefPath;
  controls_.SetText("Label2", s_.PicRefName + "\n");
  AddDeformedFolder();
  Help(kHelpDeformed);
}

void MiseEnDonne::RefuseDirectory() {
  ui_.MessageBox(kSameDirectory, "", MsgButtons::Ok, MsgIcon::Critical);
  tree_.Find("Root")->text = kRootText;
}

void MiseEnDonne::NameSequenceAfter(const std::string& lastPicture) {
  const std::string ending = "-" + PictureStem(lastPicture) + (s_.SeqRefChange == 0 ? "-S.seq" : "-I.seq");
  s_.FileName = PictureStem(s_.PicRefPath) + ending;
  s_.FileTitle = PictureStem(s_.PicRefName) + ending;
  tree_.Find("Root")->text = s_.FileName;
}

void MiseEnDonne::ChooseDeformed() {
  if (tree_.HasChildren("Dp")) {
    // A second selection replaces the first.
    tree_.RemoveWithChildren("Dp");
    tree_.ClearDrag();
    AddDeformedFolder();
    controls_.SetText("Label2", s_.PicRefName + "\n");
    SetStartOffered(false);
  }
  const FileDialogResult chosen = ui_.OpenFileDialog({.initialDir = s_.LastDir,
                                                      .defaultExt = "bmp",
                                                      .filter = PictureDialogFilter(),
                                                      .title = "Reading deformed picture file",
                                                      .multiSelect = true});
  if (chosen.FileName.empty()) return;
  if (chosen.FileTitle.empty()) {
    std::vector<std::string> parts = ChosenNames(chosen);
    TriBulle(parts, 1);
    std::string& dir = parts[0];
    if (dir.size() > 1 && (dir.back() == '\\' || dir.back() == '/')) dir.pop_back();
    if (dir != s_.LastDir) {
      RefuseDirectory();
      return;
    }
    std::erase_if(parts, [&](const std::string& p) { return p.empty(); });
    if (parts.size() < 2) return;
    s_.NbSeq = static_cast<int32_t>(parts.size() - 1);
    NameSequenceAfter(parts.back());
    for (size_t i = 1; i < parts.size(); ++i) {
      previewPath_ = JoinPath(dir, parts[i]);
      tree_.Add(DeformedKey(static_cast<int>(i)), "Dp", parts[i], previewPath_, kPicture);
    }
    Help(kHelpSort);
    EnableOptions(true);
  } else {
    if (ChosenDirectory(chosen) != s_.LastDir) {
      RefuseDirectory();
      return;
    }
    s_.NbSeq = 1;
    s_.PicDefPath = chosen.FileName;
    s_.PicDefName = chosen.FileTitle;
    const std::string ending = "-" + PictureStem(s_.PicDefName) + ".don";
    s_.FileName = PictureStem(s_.PicRefPath) + ending;
    s_.FileTitle = PictureStem(s_.PicRefName) + ending;
    tree_.Find("Root")->text = s_.FileName;
    tree_.Add(DeformedKey(1), "Dp", s_.PicDefName, s_.PicDefPath, kPicture);
    previewPath_ = s_.PicDefPath;
    controls_.SetText("Label2", controls_.Text("Label2") + s_.PicDefName + "\n");
  }
  SetStartOffered(true);
}

void MiseEnDonne::OpenDataFile() {
  RemovePictures();
  controls_.SetText("Label2", "");
  SetStartOffered(false);
  const FileDialogResult chosen = ui_.OpenFileDialog({.initialDir = s_.LastDir,
                                                      .defaultExt = "don",
                                                      .filter = "Data|*.don|Sequence|*.seq",
                                                      .title = "Reading data file or sequence file"});
  JobNode& root = *tree_.Find("Root");
  if (chosen.FileName.empty()) {
    root.text = kRootText;
    return;
  }
  s_.FileName = chosen.FileName;
  s_.FileTitle = chosen.FileTitle;
  RememberLastDir(s_, ChosenDirectory(chosen));
  BusyPointer busy(ui_);
  if (!ListMembers()) {
    RemovePictures();
    EnableOptions(false);
    return;
  }
  if (s_.NbSeq != 1) {
    EnableOptions(true);
    controls_.SetChecked("Option1(0)", s_.SeqRefChange == 0);
    controls_.SetChecked("Option1(1)", s_.SeqRefChange == 1);
  }
  SetStartOffered(true);
}

// Fills Label2 with what each member file says; false, with Label2 telling
// which file, when a member isn't a data file.
bool MiseEnDonne::ListMembers() {
  if (!ReadSequenceMembers(s_, MemberFiles::DataFiles)) {
    controls_.SetText("Label2", NotRightFormattedMessage(s_.FileName));
    return false;
  }
  tree_.Find("Root")->text = s_.FileName;
  fromFile_ = true;
  if (s_.NbSeq != 1) s_.SeqRefChange = 1;
  std::string info;
  for (int32_t i = 1; i <= s_.NbSeq; ++i) {
    const std::string& path = s_.DataFilePath[static_cast<size_t>(i)];
    const std::optional<std::string> lines = MemberLines(path, s_.DataFileName[static_cast<size_t>(i)]);
    if (!lines) {
      if (path.empty()) tree_.Find("Root")->text = s_.LastDir;
      else controls_.SetText("Label2", NotRightFormattedMessage(path));
      return false;
    }
    info += *lines;
    controls_.SetText("Label2", info);
  }
  const auto failed = TellSequenceKind(s_, "PicRef", [this](int32_t i) { return s_.DataFilePath[static_cast<size_t>(i)]; });
  if (failed && !failed->empty()) ui_.StatusLine(*failed);
  return !failed;
}

void MiseEnDonne::OnOption1Click(int index) {
  Guarded([&] {
    if (index != 0 && index != 1) return;
    s_.SeqRefChange = index;
    fromFile_ = false;
    controls_.SetChecked("Option1(0)", index == 0);
    controls_.SetChecked("Option1(1)", index == 1);
    if (JobNode* rp = tree_.Find("Rp")) rp->text = index == 1 ? kFirstText : kReferenceText;
  });
}

void MiseEnDonne::Dropped(const std::string& moved, const std::string& target) {
  if (!IsDeformed(moved) || !IsDeformed(target)) return;
  tree_.EndInDrag();
  // Keys and places stay; the pictures change places by what the nodes show.
  JobNode& a = *tree_.Find(moved);
  JobNode& b = *tree_.Find(target);
  std::swap(a.text, b.text);
  std::swap(a.tag, b.tag);
  const std::string last = DeformedKey(s_.NbSeq);
  if (moved == last || target == last) NameSequenceAfter(tree_.Find(last)->text);
}

void MiseEnDonne::OnEditButton() {
  Guarded([&] { OpenInTextEditor(s_.FileName); });
}

SequenceMembers MiseEnDonne::Members() const {
  SequenceMembers members;
  members.FromFile = fromFile_;
  for (const JobNode& n : tree_.Nodes()) {
    if (!IsDeformed(n.key)) continue;
    members.FicDefText.push_back(n.text);
    members.FicDefTag.push_back(n.tag);
  }
  return members;
}

void MiseEnDonne::OnCommand1() {
  Guarded([&] {
    const auto mayReplace = [this](const std::string& path) {
      return ui_.MessageBox("The data file " + path + " already holds areas of interest or start points.\n" +
                                "Do you want to replace it by a new one ?",
                            "WARNING", MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes;
    };
    if (!SauveSeq(s_, Members(), mayReplace)) {
      ui_.MessageBox("Can't write " + s_.FileName, "", MsgButtons::Ok, MsgIcon::Critical);
      return;
    }
    SetStartOffered(false);
    ui_.Frame().SetVisible("MiseEnDonne", false);
    ui_.Frame().SetVisible("AreaForm", true);
  });
}

}  // namespace tessiva
