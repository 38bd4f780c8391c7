// A walk through everything below a directory, the deepest entries first.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "fundkit/ScopedFd.h"

namespace tunadm {

class TreeVisitor {
 public:
  virtual ~TreeVisitor() = default;
  TreeVisitor(const TreeVisitor&) = delete;
  TreeVisitor& operator=(const TreeVisitor&) = delete;

  // Both are told an entry as its open parent directory and its name there. Anything but a success
  // ends the walk with that status.
  virtual Status visitFile(int parent, const std::string& name) = 0;
  // After everything below it has been visited; `directory` is still open.
  virtual Status visitDirectory(int parent, const std::string& name, int directory) = 0;

 protected:
  TreeVisitor() = default;
};

// Visits what is below the open directory `top`, but not `top` itself; the entry `last` of `top`,
// if there is one, after all others. Links are visited as files and never followed, not even when a
// directory is exchanged for one during the walk. Needs a fixed number of descriptors and no stack
// for the depth of the tree. Error: kOpendirFailed, also when a directory is moved away meanwhile.
Status walkTree(ScopedFd top, std::string_view last, TreeVisitor* visitor);

}  // namespace tunadm
