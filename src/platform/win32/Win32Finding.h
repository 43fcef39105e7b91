// SPDX-License-Identifier: MIT
// Finding on Windows: the system's own listings, and no reading ahead, which the system does.
#pragma once

#include <memory>
#include <unordered_map>

#include "platform/win32/Win32Calls.h"

namespace quillmarsh {

class Win32Finding final : public Finding {
 public:
  explicit Win32Finding(CallState& calls) : Finding(calls), mCalls(calls) {}
  ~Win32Finding() override;

 private:
  HANDLE DoFindFirst(TextView pattern, WIN32_FIND_DATAW& entry) override;
  bool DoFindNext(HANDLE search, WIN32_FIND_DATAW& entry) override;
  bool DoFindClose(HANDLE search) override;
  void DoReadAhead(TextView) override {}
  void DoDropReadAhead() override {}

  CallState& mCalls;
  // The record of each open search, in which the name that was told last lives on. The system does
  // not look whether a handle is one of its searches, so only these reach it.
  std::unordered_map<std::intptr_t, std::unique_ptr<::WIN32_FIND_DATAW>> mOpen;
};

}  // namespace quillmarsh
