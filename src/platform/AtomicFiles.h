// SPDX-License-Identifier: MIT
// Files replaced as a whole, and small ones read so. Whoever looks at a file that is being
// replaced, also after a kill or on a full disk, finds the old contents or the new ones, and never
// a part. A failure leaves the code of the call that failed as the last error.
#pragma once

#include <string>
#include <string_view>

#include "platform/Machine.h"

namespace quillmarsh {

// Reads a file to its end, opened with this sharing (FILE_SHARE_...).
[[nodiscard]] bool ReadFileContents(Machine& machine, TextView path, std::uint32_t share,
                                    std::string& bytes);

// A file that is being written piece by piece beside the one that it will replace, under a name of
// its own. Begin, Write as often as needed, PutInPlace; after a failure nothing but the end of this
// object may follow. What was not put in place is deleted then, as far as the machine lets go of
// it.
class FileReplacement {
 public:
  FileReplacement(Machine& machine, TextView path) : mMachine(machine), mPath(path) {}
  ~FileReplacement();
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  // False with the code of that when the file is there and read-only or otherwise not to be written
  // to.
  [[nodiscard]] bool Begin();
  [[nodiscard]] bool Write(std::string_view bytes);
  // Flushes, and moves the new file over the old one.
  [[nodiscard]] bool PutInPlace();

 private:
  Machine& mMachine;
  Text mPath;
  Text mBeside;  // empty when nothing lies there
  HANDLE mFile = INVALID_HANDLE;
};

// Gives an existing or new file these bytes, by a FileReplacement.
[[nodiscard]] bool ReplaceFileContents(Machine& machine, TextView path, std::string_view bytes);

}  // namespace quillmarsh
