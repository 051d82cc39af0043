#include "batch/jobtree.h"

#include <algorithm>
#include <utility>

#include "ui/pointer.h"

namespace tessiva {

bool JobTree::Begins(std::string_view key, const Prefixes& prefixes) {
  return std::any_of(prefixes.begin(), prefixes.end(), [&](std::string_view p) { return key.starts_with(p); });
}

const JobNode* JobTree::Find(const std::string& key) const {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(), [&](const JobNode& n) { return n.key == key; });
  return found == nodes_.end() ? nullptr : &*found;
}

JobNode* JobTree::Find(const std::string& key) {
  return const_cast<JobNode*>(std::as_const(*this).Find(key));
}

void JobTree::Add(const std::string& key, const std::string& parent, const std::string& text, const std::string& tag,
                  int image) {
  nodes_.push_back({key, text, tag, image, parent});
}

void JobTree::RemoveWithChildren(const std::string& key) {
  std::vector<std::string> doomed{key};
  // Children always come after their parent, so one pass finds every descendant.
  for (const JobNode& n : nodes_)
    if (std::find(doomed.begin(), doomed.end(), n.parent) != doomed.end()) doomed.push_back(n.key);
  std::erase_if(nodes_, [&](const JobNode& n) { return std::find(doomed.begin(), doomed.end(), n.key) != doomed.end(); });
}

bool JobTree::HasChildren(const std::string& key) const {
  return std::any_of(nodes_.begin(), nodes_.end(), [&](const JobNode& n) { return n.parent == key; });
}

void JobTree::Clear() {
  nodes_.clear();
  ClearDrag();
}

void JobTree::ClearDrag() {
  moveNode_.clear();
  dropHighlight_.clear();
  inDrag_ = dragRunning_ = false;
}

void JobTree::MouseDown(const std::string& keyAtPointer) { moveNode_ = Find(keyAtPointer) ? keyAtPointer : std::string(); }

void JobTree::MouseMove(int button) {
  if (button != kLeftButton || moveNode_.empty() || Begins(moveNode_, fixed_)) return;
  inDrag_ = true;
  dragRunning_ = true;
}

void JobTree::DragOver(const std::string& keyAtPointer) {
  if (dragRunning_ && inDrag_) dropHighlight_ = Find(keyAtPointer) ? keyAtPointer : std::string();
}

std::optional<std::string> JobTree::Drop() {
  if (!dragRunning_) return std::nullopt;
  dragRunning_ = false;
  if (Begins(moveNode_, dropIgnored_)) return std::nullopt;
  if (dropHighlight_.empty()) {
    inDrag_ = false;
    return std::nullopt;
  }
  std::string target = std::exchange(dropHighlight_, std::string());
  const JobNode* moved = Find(moveNode_);
  const JobNode* onto = Find(target);
  if (!moved || !onto || Begins(target, notTarget_) || moved->text == onto->text) return std::nullopt;
  return target;
}

}  // namespace tessiva
