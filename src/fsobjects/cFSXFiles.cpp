// SPDX-License-Identifier: MIT
// One buffer of names and one array of facts; a name ends where its entry says and begins where
// that of the entry before ends.
#include "fsobjects/cFSXFiles.h"

#include "base/TextEquality.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/RecordDates.h"
#include "fsobjects/cFSXFile.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/modPaths.h"
#include "platform/SystemConstants.h"

namespace quillmarsh {

bool cFSXFileFacts::IsSystem() const {
  return (attributes & FILE_ATTRIBUTE_SYSTEM) != 0;
}
bool cFSXFileFacts::IsHidden() const {
  return (attributes & FILE_ATTRIBUTE_HIDDEN) != 0;
}
bool cFSXFileFacts::IsTemporary() const {
  if ((attributes & FILE_ATTRIBUTE_TEMPORARY) != 0) return true;
  return name.size() >= 4 && name[name.size() - 4] == u'.' &&
         AreStringsEqual(name.substr(name.size() - 3), u"TMP", true);
}

Text cFSXFiles::ParentFolderPath() const {
  return GetFolderPathByIdx(mParentFolderIdx);
}

void cFSXFiles::SetParentFolderPath(TextView path) {
  mParentFolderIdx = gFolderPathsList->AddFolder(AddBackslash(path));
}

bool cFSXFiles::Add(TextView name, Currency size, Currency createdAsCurr,
                    Currency lastModifiedAsCurr, std::uint32_t attributes) {
  mNames.append(name);
  mEntries.push_back({size, createdAsCurr, lastModifiedAsCurr, mNames.size(), attributes});
  return false;
}

cFSXFileFacts cFSXFiles::Facts(std::int32_t index) const {
  if (index < 1 || index > Count()) throw RuntimeError(runtime_error::SubscriptOutOfRange);
  const auto place = static_cast<std::size_t>(index) - 1;
  const Entry& entry = mEntries[place];
  const std::size_t nameBegin = place == 0 ? 0 : mEntries[place - 1].nameEnd;
  return {TextView(mNames).substr(nameBegin, entry.nameEnd - nameBegin), entry.size,
          entry.createdAsCurr, entry.lastModifiedAsCurr, entry.attributes};
}

bool cFSXFiles::Contains(TextView name) const {
  std::size_t begin = 0;
  for (const Entry& entry : mEntries) {
    if (TextView(mNames).substr(begin, entry.nameEnd - begin) == name) return true;
    begin = entry.nameEnd;
  }
  return false;
}

std::unique_ptr<cFSXFile> cFSXFiles::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) return nullptr;
  const cFSXFileFacts facts = Facts(index);
  auto file = std::make_unique<cFSXFile>();
  file->SetPath(ParentFolderPath().append(facts.name));
  file->SetSize(facts.size);
  file->SetAttributes(facts.attributes);
  file->SetLastModifiedDateAsCurr(facts.lastModifiedAsCurr);
  file->SetCreatedDateAsCurr(facts.createdAsCurr);
  return file;
}

bool MakeDupeFileUDT(const cFSXFileFacts& facts, std::int32_t parentFolderIdx, NameArena& names,
                     DupeFileUDT& record) {
  record = {};
  const PathOfFile path = [&] { return GetFolderPathByIdx(parentFolderIdx).append(facts.name); };
  return Guarded(u"cFSXFile.DupeFileUDT", [&] {
    record.Attributes = facts.attributes;
    record.CreatedDate = WholeSecondDateOfRawTime(facts.createdAsCurr, path);
    record.Name = names.Add(facts.name);
    record.LastModifiedDate = WholeSecondDateOfRawTime(facts.lastModifiedAsCurr, path);
    record.ParentFolderIdx = parentFolderIdx;
    record.Size = facts.size;
  });
}

}  // namespace quillmarsh
