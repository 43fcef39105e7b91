// SPDX-License-Identifier: MIT
// One INI file, and one key of it at a time: set Path and Name, then Section and Key, then read or
// write. Every operation checks that what it needs is set and says so if not. A write that fails is
// told once for each kind of write and object and never stops the caller. Holds no file open, and
// keeps nothing that it read but during a batch.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "base/Text.h"
#include "platform/ProfileFiles.h"

namespace quillmarsh {

class CIniFile {
 public:
  // Path is at first the folder that the program lies in.
  CIniFile();

  [[nodiscard]] const Text& Name() const { return mName; }
  // Once: a second name is refused with a message.
  void SetName(TextView name);
  // With its final backslash, which the setter adds.
  [[nodiscard]] const Text& Path() const { return mPath; }
  void SetPath(TextView path);
  void SetSection(TextView section) { mSection = section; }
  [[nodiscard]] const Text& Section() const { return mSection; }
  void SetKey(TextView key) { mKey = key; }
  [[nodiscard]] const Text& Key() const { return mKey; }

  // Asks for the bare Name, which the system looks for in its own folder. Error 6 where the number
  // does not fit.
  [[nodiscard]] std::int16_t GetIntegerValue(std::int16_t defaultValue) const;
  // From now on values are read from a copy of the file that is made here, and SetStringValue
  // changes the copy; EndBatch writes it in one go and tells a failure as SetStringValue does. An
  // object that goes without EndBatch has written nothing. Path and Name must be set.
  void BeginBatch(ProfileBatch::Encoding encoding);
  void EndBatch();

  // The default for a missing key and for an empty value alike. At most 16,383 characters; a longer
  // value is cut there without notice.
  [[nodiscard]] Text GetStringValue(TextView defaultValue) const;
  void SetStringValue(TextView value);
  void DeleteKey();
  // "key=value" texts, each ended by a NUL, in place of all keys of the section.
  void WriteSection(TextView entries);
  void DeleteSection();

  // Whether the file was there and is gone.
  bool DeleteINI();
  [[nodiscard]] bool IsUTF16() const;
  // Makes a UTF-16 file of an 8-bit one, or a new one that holds the mark alone. Does not look
  // whether it is UTF-16 already.
  bool ConvertToUTF16();

 private:
  enum class Write { SetStringValue, DeleteKey, WriteSection, DeleteSection };
  struct Needs;

  void RebuildFullPath();
  [[nodiscard]] bool HasAll(const Needs& needs) const;
  void TellFailure(Write write);

  std::optional<ProfileBatch> mBatch;
  Text mName;
  Text mSection;
  Text mKey;
  Text mPath;
  Text mFullPath;  // mPath and mName
  std::array<bool, 4> mFailureTold{};
};

}  // namespace quillmarsh
