// SPDX-License-Identifier: MIT
// Between the profile calls and the text of a file.
#include "platform/ProfileFiles.h"

#include <algorithm>

#include "platform/AtomicFiles.h"
#include "platform/ProfileText.h"

namespace quillmarsh {
namespace {

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::uint32_t kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Empty, with the last error set, where a bare name has no folder to lie in.
Text PathOfProfile(Machine& machine, TextView fileName) {
  if (fileName.find_first_of(u"\\/:") != TextView::npos) return Text(fileName);
  Text folder = machine.Desktop().SHGetFolderPathW(CSIDL_WINDOWS);
  if (folder.empty()) return folder;
  if (!folder.ends_with(u'\\')) folder += u'\\';
  return folder.append(fileName);
}

bool ReadProfile(Machine& machine, TextView fileName, std::string& bytes) {
  if (fileName.empty()) {
    machine.SetLastError(ERROR_FILE_NOT_FOUND);
    return false;
  }
  const Text path = PathOfProfile(machine, fileName);
  return !path.empty() && ReadFileContents(machine, path, kShareAll, bytes);
}

TextView WithoutQuotes(TextView value) {
  const bool isQuoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == u'"' || value.front() == u'\'');
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

TextView WithoutTrailingBlanks(TextView text) {
  while (text.ends_with(u' ')) text.remove_suffix(1);
  return text;
}

enum class IfMissing { Make, Leave };

// Reads the file, lets the change work on its text, and writes what came of it.
template <typename Change>
bool ChangeProfile(Machine& machine, TextView fileName, IfMissing ifMissing, Change&& change) {
  if (fileName.empty()) {
    machine.SetLastError(ERROR_ACCESS_DENIED);
    return false;
  }
  const Text path = PathOfProfile(machine, fileName);
  if (path.empty()) return false;
  std::string bytes;
  bool exists = true;
  if (!ReadFileContents(machine, path, kShareAll, bytes)) {
    // Nothing but this may be taken for an empty file: the rest of it would be lost.
    if (machine.GetLastError() != ERROR_FILE_NOT_FOUND) return false;
    if (ifMissing == IfMissing::Leave) return true;
    exists = false;
  }
  ProfileText text(bytes);
  change(text);
  const std::string changed = text.Bytes();
  return (exists && changed == bytes) || ReplaceFileContents(machine, path, changed);
}

// What may stand before the digits, in small letters only, and the base that it means.
std::uint32_t TakeBase(TextView& text) {
  struct Prefix {
    TextView text;
    std::uint32_t base;
  };
  static constexpr Prefix prefixes[] = {{u"0x", 16}, {u"0o", 8}, {u"0b", 2}};
  for (const Prefix& prefix : prefixes) {
    if (!text.starts_with(prefix.text)) continue;
    text.remove_prefix(prefix.text.size());
    return prefix.base;
  }
  return 10;
}

std::int32_t NumberAtStart(TextView text) {
  const bool isNegative = text.starts_with(u'-');
  if (isNegative || text.starts_with(u'+')) text.remove_prefix(1);
  const std::uint32_t base = TakeBase(text);
  std::uint32_t number = 0;
  for (const char16_t unit : text) {
    const TextView digits = u"0123456789abcdefABCDEF";
    const std::size_t place = digits.find(unit);
    const auto digit = static_cast<std::uint32_t>(place > 15 ? place - 6 : place);
    if (place == TextView::npos || digit >= base) break;
    number = number * base + digit;
  }
  return static_cast<std::int32_t>(isNegative ? 0U - number : number);
}

std::string Widened(std::string_view bytes) {
  std::string wide(kUtf16Mark);
  for (const char16_t unit : FromCodePage1252(bytes)) {
    wide += static_cast<char>(unit & 0xFFU);
    wide += static_cast<char>(unit >> 8U);
  }
  return wide;
}

std::uint32_t ValueInto(const ProfileText& text, TextView section, TextView key,
                        TextView defaultText, std::span<char16_t> buffer) {
  if (buffer.empty()) return 0;
  const auto found = text.Find(section, key);
  const TextView value = found ? WithoutQuotes(*found) : WithoutTrailingBlanks(defaultText);
  const std::size_t count = std::min(value.size(), buffer.size() - 1);
  value.copy(buffer.data(), count);
  buffer[count] = u'\0';
  return static_cast<std::uint32_t>(count);
}

}  // namespace

std::uint32_t GetPrivateProfileStringW(Machine& machine, TextView section, TextView key,
                                       TextView defaultText, std::span<char16_t> buffer,
                                       TextView fileName) {
  if (buffer.empty()) return 0;
  std::string bytes;
  if (!ReadProfile(machine, fileName, bytes)) bytes.clear();
  return ValueInto(ProfileText(bytes), section, key, defaultText, buffer);
}

std::int32_t GetPrivateProfileIntW(Machine& machine, TextView section, TextView key,
                                   std::int32_t defaultValue, TextView fileName) {
  std::string bytes;
  if (!ReadProfile(machine, fileName, bytes)) return defaultValue;
  const ProfileText text(bytes);
  const TextView value = WithoutQuotes(text.Find(section, key).value_or(TextView()));
  return value.empty() ? defaultValue : NumberAtStart(value);
}

bool WritePrivateProfileStringW(Machine& machine, TextView section, std::optional<TextView> key,
                                std::optional<TextView> value, TextView fileName) {
  const IfMissing ifMissing = key && value ? IfMissing::Make : IfMissing::Leave;
  return ChangeProfile(machine, fileName, ifMissing, [&](ProfileText& text) {
    if (!key)
      text.RemoveSection(section);
    else if (!value)
      text.RemoveKey(section, *key);
    else
      text.SetKey(section, *key, *value);
  });
}

bool WritePrivateProfileSectionW(Machine& machine, TextView section, TextView entries,
                                 TextView fileName) {
  return ChangeProfile(machine, fileName, IfMissing::Make,
                       [&](ProfileText& text) { text.SetSection(section, entries); });
}

ProfileBatch::ProfileBatch(Machine& machine, TextView fileName, Encoding encoding)
    : mMachine(machine), mPath(PathOfProfile(machine, fileName)), mText(std::string_view()) {
  if (!ReadFileContents(machine, mPath, kShareAll, mBytes)) {
    // Nothing but this may be taken for an empty file: the rest of it would be lost.
    const std::uint32_t code = machine.GetLastError();
    mReadError = code == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : code;
    mBytes.clear();
  }
  const bool isWidened = encoding == Encoding::Utf16 && !mBytes.starts_with(kUtf16Mark);
  mText = ProfileText(isWidened ? Widened(mBytes) : mBytes);
}

std::uint32_t ProfileBatch::GetString(TextView section, TextView key, TextView defaultText,
                                      std::span<char16_t> buffer) const {
  return ValueInto(mText, section, key, defaultText, buffer);
}

void ProfileBatch::SetString(TextView section, TextView key, TextView value) {
  mText.SetKey(section, key, value);
}

bool ProfileBatch::Commit() {
  if (mReadError != ERROR_SUCCESS) {
    mMachine.SetLastError(mReadError);
    return false;
  }
  std::string changed = mText.Bytes();
  if (changed == mBytes) return true;
  if (!ReplaceFileContents(mMachine, mPath, changed)) return false;
  mBytes = std::move(changed);
  return true;
}

}  // namespace quillmarsh
