// SPDX-License-Identifier: MIT
// What the program gets from the system that it was built for: its arguments, standard streams that
// carry UTF-8, and the machine. Each system has an implementation of its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Machine.h"

namespace quillmarsh {

class Entry {
 public:
  Entry(int argc, char** argv);
  ~Entry();
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

  // The program's name comes first.
  [[nodiscard]] const std::vector<std::string>& Arguments() const { return mArguments; }
  // Made at the first call.
  [[nodiscard]] Machine& GetMachine();

 private:
  struct Streams;
  std::unique_ptr<Streams> mStreams;
  std::vector<std::string> mArguments;
  std::unique_ptr<Machine> mMachine;
};

}  // namespace quillmarsh
