// SPDX-License-Identifier: MIT
// What a file object knows without opening the file: its path and the parts of it, its attribute
// word, and the state that tells which facts are there.
#include "fsobjects/cFSXFile.h"

#include "base/TextEquality.h"
#include "fsobjects/AttributeLetters.h"
#include "fsobjects/cFSXDrive.h"
#include "fsobjects/cFSXFolder.h"
#include "fsobjects/cFSXFolderPathsList.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modBitManipulation.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"
#include "fsobjects/modUnicode.h"
#include "platform/Machine.h"

namespace quillmarsh {

bool cFSXFile::GetStateBit(FileFact fact) const {
  return IsBitSetInLong(static_cast<std::int32_t>(fact), mStateBits);
}

void cFSXFile::SetStateBit(FileFact fact, bool value) {
  const auto bit = static_cast<std::int32_t>(fact);
  mStateBits = value ? SetBitInLong(bit, mStateBits) : ClearBitInLong(bit, mStateBits);
}

void cFSXFile::ResetFileObject() {
  mStateBits = 0;
  mParentFolderIdx = -1;
  for (Text* text :
       {&mMD5, &mName, &mNameWithoutExtension, &mExtension, &mFileTypeDesc, &mDriveName,
        &mParentName, &mShortPathName, &mAttributesString, &mVersionNumber, &mOriginalName})
    text->clear();
}

void cFSXFile::NeedFileInfo() {
  if (!GetStateBit(FileFact::FileInfoRead)) LoadFileInfo();
}

std::uint32_t cFSXFile::Attributes() {
  if (GetStateBit(FileFact::AttributesKnown)) return mAttributes;
  NeedFileInfo();
  SetAttributes(mFileInfo.dwFileAttributes);
  return mAttributes;
}

void cFSXFile::SetAttributes(std::uint32_t attributes) {
  mAttributes = attributes;
  SetStateBit(FileFact::AttributesKnown, true);
}

void cFSXFile::ChangeAttribute(std::uint32_t mask, bool value) {
  const std::uint32_t before = Attributes();
  SetAttributes(value ? before | mask : before & ~mask);
}

bool cFSXFile::IsReadOnly() {
  return (Attributes() & FILE_ATTRIBUTE_READONLY) != 0;
}
void cFSXFile::SetIsReadOnly(bool value) {
  ChangeAttribute(FILE_ATTRIBUTE_READONLY, value);
}
bool cFSXFile::IsHidden() {
  return (Attributes() & FILE_ATTRIBUTE_HIDDEN) != 0;
}
void cFSXFile::SetIsHidden(bool value) {
  ChangeAttribute(FILE_ATTRIBUTE_HIDDEN, value);
}
bool cFSXFile::IsSystem() {
  return (Attributes() & FILE_ATTRIBUTE_SYSTEM) != 0;
}
void cFSXFile::SetIsSystem(bool value) {
  ChangeAttribute(FILE_ATTRIBUTE_SYSTEM, value);
}
bool cFSXFile::IsArchive() {
  return (Attributes() & FILE_ATTRIBUTE_ARCHIVE) != 0;
}
void cFSXFile::SetIsArchive(bool value) {
  ChangeAttribute(FILE_ATTRIBUTE_ARCHIVE, value);
}
bool cFSXFile::IsTemporary() {
  return (Attributes() & FILE_ATTRIBUTE_TEMPORARY) != 0 ||
         AreStringsEqual(Extension(), u"TMP", true);
}
bool cFSXFile::IsCompressed() {
  return (Attributes() & FILE_ATTRIBUTE_COMPRESSED) != 0;
}

const Text& cFSXFile::AttributesString() {
  if (!GetStateBit(FileFact::AttributesStringKnown)) {
    mAttributesString = AttributeLetters(Attributes());
    SetStateBit(FileFact::AttributesStringKnown, true);
  }
  return mAttributesString;
}

Currency cFSXFile::Size() {
  if (!GetStateBit(FileFact::SizeKnown)) {
    NeedFileInfo();
    SetSize(HiLoToCurr(mFileInfo.nFileSizeHigh, mFileInfo.nFileSizeLow));
  }
  return mSize;
}

void cFSXFile::SetSize(Currency size) {
  mSize = size;
  SetStateBit(FileFact::SizeKnown, true);
}

Text cFSXFile::Path() {
  return ParentFolderPath() + mName;
}

void cFSXFile::SetPath(TextView path) {
  mParentFolderIdx = gFolderPathsList->AddFolder(gFileSpecParser->GetFolderPath(path));
  SetName(gFileSpecParser->GetFileName(path));
  mOriginalName = mName;
}

std::int32_t cFSXFile::ParentFolderIdx() {
  if (mParentFolderIdx != -1) return mParentFolderIdx;
  // Without a folder the path is the name alone; asking Path for it would lead back to here.
  const Text parent = GetParentFolderPathOf(mName);
  if (!parent.empty()) mParentFolderIdx = gFolderPathsList->AddFolder(parent);
  return mParentFolderIdx;
}

Text cFSXFile::ParentFolderPath() {
  return GetFolderPathByIdx(ParentFolderIdx());
}

bool cFSXFile::NameContainsUnicodeChars() const {
  return ContainsUnicodeChars(mName);
}
bool cFSXFile::PathContainsUnicodeChars() {
  return ContainsUnicodeChars(Path());
}

void cFSXFile::SplitName() {
  auto [base, extension] = SplitNameAndExtension(mName);
  mNameWithoutExtension = std::move(base);
  mExtension = std::move(extension);
}

const Text& cFSXFile::NameWithoutExtension() {
  if (mNameWithoutExtension.empty()) SplitName();
  return mNameWithoutExtension;
}

const Text& cFSXFile::Extension() {
  if (mExtension.empty()) SplitName();
  return mExtension;
}

const Text& cFSXFile::ShortPathName() {
  if (mShortPathName.empty()) mShortPathName = GetShortPath(Path());
  return mShortPathName;
}

const Text& cFSXFile::FileTypeDesc() {
  if (mFileTypeDesc.empty())
    mFileTypeDesc = TrimAtNull(TheMachine().Desktop().SHGetFileInfoW(ToLongPath(mName)));
  return mFileTypeDesc;
}

const Text& cFSXFile::DriveName() {
  if (mDriveName.empty()) mDriveName = GetDriveRootOf(Path());
  return mDriveName;
}

std::unique_ptr<cFSXDrive> cFSXFile::Drive() {
  auto drive = std::make_unique<cFSXDrive>();
  drive->SetName(GetDriveRootOf(ParentFolderPath()));
  return drive;
}

const Text& cFSXFile::ParentName() {
  if (mParentName.empty()) mParentName = GetLastFolderName(ParentFolderPath());
  return mParentName;
}

std::unique_ptr<cFSXFolder> cFSXFile::ParentFolder() {
  auto folder = std::make_unique<cFSXFolder>();
  folder->SetPath(ParentFolderPath());
  return folder;
}

}  // namespace quillmarsh
