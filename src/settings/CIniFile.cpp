// SPDX-License-Identifier: MIT
// The checks and messages around the profile calls.
#include "settings/CIniFile.h"

#include <limits>

#include "frame/ErrorReporting.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/Handles.h"
#include "fsobjects/modAPIReadWriteFile.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modUnicode.h"
#include "platform/ProfileFiles.h"

namespace quillmarsh {
namespace {

constexpr TextView kLineBreak = u"\r\n";
constexpr TextView kErrorCaption = u"CIniFile Error";
constexpr std::size_t kBufferCharacters = 16384;  // the last one is for the NUL

constexpr std::array<TextView, 4> kWriteSources = {
    u"CIniFile.SetStringValue()",
    u"CIniFile.DeleteKey()",
    u"CIniFile.WriteSection()",
    u"CIniFile.DeleteSection()",
};

bool RefuseUnset(TextView property, TextView fullStop) {
  ShowMessageBox({Text(property).append(u" property must be set first").append(fullStop),
                  Text(kErrorCaption), MessageBoxIcon::Stop});
  return false;
}

}  // namespace

// What an operation wants set besides Path and Name. The messages of those that write end in a full
// stop where they name Section or Key, all others do not; people search for these texts.
struct CIniFile::Needs {
  bool key = false;
  TextView fullStop;
};

CIniFile::CIniFile() {
  const Text program = TheMachine().Process().GetModuleFileNameW();
  SetPath(program.substr(0, program.rfind(u'\\') + 1));
}

void CIniFile::RebuildFullPath() {
  mFullPath = mPath + mName;
}

void CIniFile::SetName(TextView name) {
  if (!mName.empty()) {
    ShowMessageBox({u"This IniFile Object is already in use by " +
                        TheMachine().Drives().ShownPath(mFullPath) + Text(kLineBreak) +
                        u"Create a new object.",
                    Text(kErrorCaption), MessageBoxIcon::Exclamation});
    return;
  }
  mName = name;
  RebuildFullPath();
}

void CIniFile::SetPath(TextView path) {
  mPath = AddBackslash(path);
  RebuildFullPath();
}

bool CIniFile::HasAll(const Needs& needs) const {
  if (mPath.empty()) return RefuseUnset(u"Path", {});
  if (mName.empty()) return RefuseUnset(u"Name", {});
  if (mSection.empty()) return RefuseUnset(u"Section", needs.fullStop);
  if (needs.key && mKey.empty()) return RefuseUnset(u"Key", needs.fullStop);
  return true;
}

std::int16_t CIniFile::GetIntegerValue(std::int16_t defaultValue) const {
  if (!HasAll({.key = true, .fullStop = {}})) return defaultValue;
  const std::int32_t number =
      GetPrivateProfileIntW(TheMachine(), mSection, mKey, defaultValue, mName);
  using Limits = std::numeric_limits<std::int16_t>;
  if (number < Limits::min() || number > Limits::max()) throw RuntimeError(runtime_error::Overflow);
  return static_cast<std::int16_t>(number);
}

Text CIniFile::GetStringValue(TextView defaultValue) const {
  if (!HasAll({.key = true, .fullStop = {}})) return Text(defaultValue);
  Text value(kBufferCharacters, u'\0');
  const std::uint32_t count = mBatch ? mBatch->GetString(mSection, mKey, {}, value)
                                     : GetPrivateProfileStringW(TheMachine(), mSection, mKey, {},
                                                                value, ToLongPath(mFullPath));
  if (count == 0) return Text(defaultValue);
  value.resize(count);
  return value;
}

void CIniFile::SetStringValue(TextView value) {
  if (!HasAll({.key = true, .fullStop = u"."})) return;
  if (mBatch) return mBatch->SetString(mSection, mKey, value);
  if (!WritePrivateProfileStringW(TheMachine(), mSection, mKey, value, ToLongPath(mFullPath)))
    TellFailure(Write::SetStringValue);
}

void CIniFile::BeginBatch(ProfileBatch::Encoding encoding) {
  mBatch.emplace(TheMachine(), ToLongPath(mFullPath), encoding);
}

void CIniFile::EndBatch() {
  if (mBatch && !mBatch->Commit()) TellFailure(Write::SetStringValue);
  mBatch.reset();
}

void CIniFile::DeleteKey() {
  if (!HasAll({.key = true, .fullStop = u"."})) return;
  if (!WritePrivateProfileStringW(TheMachine(), mSection, mKey, {}, ToLongPath(mFullPath)))
    TellFailure(Write::DeleteKey);
}

void CIniFile::WriteSection(TextView entries) {
  if (!HasAll({.key = false, .fullStop = u"."})) return;
  if (!WritePrivateProfileSectionW(TheMachine(), mSection, entries, ToLongPath(mFullPath)))
    TellFailure(Write::WriteSection);
}

void CIniFile::DeleteSection() {
  if (!HasAll({.key = false, .fullStop = u"."})) return;
  if (!WritePrivateProfileStringW(TheMachine(), mSection, {}, {}, ToLongPath(mFullPath)))
    TellFailure(Write::DeleteSection);
}

void CIniFile::TellFailure(Write write) {
  const std::uint32_t code = TheMachine().GetLastError();
  const auto index = static_cast<std::size_t>(write);
  if (mFailureTold[index]) return;
  const Text lineBreak(kLineBreak);
  const Text between = u": ";
  ShowMessageBox(
      {u"An error occurred while saving your settings to the application INI file!" + lineBreak +
           lineBreak + LoadResString(641) + between + Text(kWriteSources[index]) + lineBreak +
           LoadResString(157) + between + DecimalText(code) + lineBreak + LoadResString(158) +
           between + GetSystemErrorText(code),
       u"Error Writing to INI file - " + LoadResString(688), MessageBoxIcon::Exclamation});
  mFailureTold[index] = true;
}

bool CIniFile::DeleteINI() {
  bool deleted = false;
  Guarded(u"CIniFile.DeleteINI",
          [&] { deleted = TheMachine().Disk().DeleteFileW(ToLongPath(mFullPath)); });
  return deleted;
}

bool CIniFile::IsUTF16() const {
  return GetEncodingOfFile(mFullPath) == TextEncoding::Utf16LittleEndian;
}

bool CIniFile::ConvertToUTF16() {
  return ConvertASCIIFileToUTF16(mFullPath);
}

}  // namespace quillmarsh
