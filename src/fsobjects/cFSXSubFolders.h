// SPDX-License-Identifier: MIT
// The sub-folders and junctions directly in one folder, in the order in which the system delivered
// them: names and attributes, no objects. An object is made when a caller asks for an entry, and is
// kept only where the folder was read together with its whole tree.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

class cFSXFolder;

class cFSXSubFolders {
 public:
  [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(mNames.size()); }
  [[nodiscard]] Text ParentFolderPath() const;
  void SetParentFolderPath(TextView path);

  // Always false. With `recursive` the folder is read at once, with all that is below it.
  bool Add(TextView name, std::int32_t attributes, bool recursive);
  // An object that knows its attributes and is not yet enumerated, unless it was added recursively;
  // no object outside 1 to Count.
  [[nodiscard]] std::shared_ptr<cFSXFolder> Item(std::int32_t index) const;

  // What an object would tell, without making one; 0 and the empty text outside 1 to Count.
  [[nodiscard]] std::int32_t Attributes(std::int32_t index) const;
  [[nodiscard]] TextView Name(std::int32_t index) const;

 private:
  friend class cFSXFolder;

  // While it lives, what is added recursively knows from which folder the walk comes.
  class ReaderScope {
   public:
    ReaderScope(cFSXSubFolders& folders, const cFSXFolder& reader) : mFolders(folders) {
      mFolders.mReader = &reader;
    }
    ~ReaderScope() { mFolders.mReader = nullptr; }
    ReaderScope(const ReaderScope&) = delete;
    ReaderScope& operator=(const ReaderScope&) = delete;

   private:
    cFSXSubFolders& mFolders;
  };

  [[nodiscard]] std::shared_ptr<cFSXFolder> MakeFolder(TextView name,
                                                       std::int32_t attributes) const;

  std::int32_t mParentFolderIdx = -1;
  std::vector<Text> mNames;
  std::vector<std::int32_t> mAttributes;
  // By exact name, since a volume may tell cases apart.
  std::unordered_map<Text, std::shared_ptr<cFSXFolder>> mFolders;
  const cFSXFolder* mReader = nullptr;  // see ReaderScope
};

}  // namespace quillmarsh
