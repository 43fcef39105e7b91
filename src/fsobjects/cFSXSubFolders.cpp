// SPDX-License-Identifier: MIT
// Names and attributes are kept as they come; the folders of a recursive reading are kept beside
// them by name.
#include "fsobjects/cFSXSubFolders.h"

#include "fsobjects/cFSXFolder.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modPaths.h"

namespace quillmarsh {

Text cFSXSubFolders::ParentFolderPath() const {
  return GetFolderPathByIdx(mParentFolderIdx);
}

void cFSXSubFolders::SetParentFolderPath(TextView path) {
  mParentFolderIdx = gFolderPathsList->AddFolder(AddBackslash(path));
}

bool cFSXSubFolders::Add(TextView name, std::int32_t attributes, bool recursive) {
  mNames.emplace_back(name);
  mAttributes.push_back(attributes);
  if (!recursive) return false;

  std::shared_ptr<cFSXFolder> folder = MakeFolder(name, attributes);
  folder->SetName(name);
  // A tree that is deeper than a walk may go is left to be read when it is asked for.
  const bool withinReach = mReader == nullptr || !mReader->IsDeepest();
  if (withinReach) {
    if (mReader != nullptr) folder->EnterFrom(*mReader);
    folder->Enumerate(true);
  }
  mFolders.insert_or_assign(Text(name), std::move(folder));
  return false;
}

std::shared_ptr<cFSXFolder> cFSXSubFolders::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) return nullptr;
  const auto place = static_cast<std::size_t>(index) - 1;
  if (const auto found = mFolders.find(mNames[place]); found != mFolders.end())
    return found->second;
  return MakeFolder(mNames[place], mAttributes[place]);
}

std::shared_ptr<cFSXFolder> cFSXSubFolders::MakeFolder(TextView name,
                                                       std::int32_t attributes) const {
  auto folder = std::make_shared<cFSXFolder>();
  folder->SetPath(ParentFolderPath().append(name).append(u"\\"));
  folder->SetAttributes(attributes);
  return folder;
}

std::int32_t cFSXSubFolders::Attributes(std::int32_t index) const {
  return index < 1 || index > Count() ? 0 : mAttributes[static_cast<std::size_t>(index) - 1];
}

TextView cFSXSubFolders::Name(std::int32_t index) const {
  return index < 1 || index > Count() ? TextView() : mNames[static_cast<std::size_t>(index) - 1];
}

}  // namespace quillmarsh
