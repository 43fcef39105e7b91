// SPDX-License-Identifier: MIT
// A folder on the real disk for one test, removed at its end at any depth, and a machine that knows
// it as a drive of its own by a mount list that the test writes.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/PosixMachine.h"

namespace quillmarsh::test {

class TempTree {
 public:
  TempTree();
  ~TempTree();
  TempTree(const TempTree&) = delete;
  TempTree& operator=(const TempTree&) = delete;

  [[nodiscard]] const std::string& Root() const { return mRoot; }
  [[nodiscard]] std::string At(const std::string& relative) const { return mRoot + "/" + relative; }
  // Folders above are made as needed. All answer the native path.
  std::string Folder(const std::string& relative) const;
  std::string File(const std::string& relative, const std::string& bytes = "x") const;
  // Empty files "f0", "f1" and so on.
  void Many(const std::string& relative, int count) const;
  std::string Link(const std::string& relative, const std::string& target) const;

 private:
  std::string mRoot;
};

// A line of a mount list.
struct MountLine {
  std::string point;
  std::string type = "ext4";
  std::string source = "/dev/test1";
  std::string device = "8:1";
  std::string root = "/";
  int id = 0;      // 0: the next number
  int parent = 0;  // 0: the root's
  std::string options = "rw";
};
[[nodiscard]] std::string MountList(const std::vector<MountLine>& lines);

// Options of a machine whose drive D: is `folder`, of the given type of file system.
[[nodiscard]] PosixOptions DriveAt(const TempTree& scratch, const std::string& folder,
                                   const std::string& type = "ext4");

// An entry as a listing tells it.
struct Listed {
  Text name;
  std::uint32_t attributes = 0;
  std::uint32_t tag = 0;
  std::uint64_t size = 0;
  FILETIME created;
  FILETIME written;
};
struct WholeListing {
  std::vector<Listed> entries;
  std::uint32_t end = 0;  // the code that the listing ended or failed with

  [[nodiscard]] const Listed* Find(TextView name) const;
  [[nodiscard]] std::multiset<Text> Names() const;
};
// `folder` with its final backslash.
[[nodiscard]] WholeListing ListAll(Machine& machine, const Text& folder);
// Reads a file through the machine; the code of the failure in `error`.
[[nodiscard]] std::string ReadAll(Machine& machine, const Text& path, std::uint32_t& error);

// Runs the body as a user without privileges, in a child process where this one is the
// administrator. The body answers an empty text when all was well.
[[nodiscard]] std::string AsOrdinaryUser(const std::function<std::string()>& body);

}  // namespace quillmarsh::test
