// The tree of the batch windows (the job queue and the sequence builder):
// nodes kept in the order they were added, and the drag sequence that sorts
// them. Which keys are fixed is given by key prefixes; what a drop does stays
// with each window's controller.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>


namespace tessiva {

// One node of a batch tree. `image` selects the icon, `tag` holds the full path.
struct JobNode {
  std::string key;
  std::string text;
  std::string tag;
  int image = 0;
  std::string parent;  // empty for the root

  bool operator==(const JobNode&) const = default;
};

class JobTree {
 public:
  using Prefixes = std::vector<std::string_view>;
  // fixed: keys that can't start a drag. dropIgnored: a drop of a node whose
  // key begins so does nothing. notTarget: keys nothing can be dropped on.
  JobTree(Prefixes fixed, Prefixes dropIgnored, Prefixes notTarget)
      : fixed_(std::move(fixed)), dropIgnored_(std::move(dropIgnored)), notTarget_(std::move(notTarget)) {}

  const std::vector<JobNode>& Nodes() const { return nodes_; }
  const JobNode* Find(const std::string& key) const;
  JobNode* Find(const std::string& key);
  void Add(const std::string& key, const std::string& parent, const std::string& text, const std::string& tag,
           int image);
  void RemoveWithChildren(const std::string& key);
  bool HasChildren(const std::string& key) const;
  // No nodes and no drag.
  void Clear();
  void ClearDrag();

  // Press: the node becomes the one a drag would move. A left-button move over
  // a draggable node starts the drag; while it runs the highlight follows the pointer.
  void MouseDown(const std::string& keyAtPointer);
  void MouseMove(int button);
  void DragOver(const std::string& keyAtPointer);
  // Ends a running drag: the target key when the drop is one the controller
  // has to act on (both nodes exist, the target may take drops, the texts
  // differ), else nothing.
  std::optional<std::string> Drop();

  const std::string& MoveNode() const { return moveNode_; }
  const std::string& DropHighlight() const { return dropHighlight_; }
  bool InDrag() const { return inDrag_; }
  void EndInDrag() { inDrag_ = false; }
  bool DragRunning() const { return dragRunning_; }

 private:
  static bool Begins(std::string_view key, const Prefixes& prefixes);

  Prefixes fixed_, dropIgnored_, notTarget_;
  std::vector<JobNode> nodes_;
  std::string moveNode_;
  std::string dropHighlight_;
  bool inDrag_ = false;
  bool dragRunning_ = false;
};

}  // namespace tessiva
