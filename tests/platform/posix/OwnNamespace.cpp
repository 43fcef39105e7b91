// SPDX-License-Identifier: MIT
// Namespaces are made by the system's own program for it.
#include "platform/posix/OwnNamespace.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace quillmarsh::test {

bool IsInOwnNamespace() {
  return std::getenv("QUILLMARSH_TEST_NAMESPACE") != nullptr;
}

bool CanHaveOwnNamespace() {
  return std::system("unshare -Urm true 2>/dev/null") == 0;
}

int RunInOwnNamespace(const char* test) {
  std::string program(4096, '\0');
  program.resize(static_cast<std::size_t>(
      std::max<ssize_t>(0, ::readlink("/proc/self/exe", program.data(), program.size()))));
  const std::string command = "QUILLMARSH_TEST_NAMESPACE=1 unshare -Urm --propagation private '" +
                              program + "' --gtest_filter=" + test;
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void MountOrFail(const std::string& source, const std::string& target, const char* type,
                 unsigned long flags) {
  ASSERT_EQ(::mount(source.c_str(), target.c_str(), type, flags, nullptr), 0) << target;
}

}  // namespace quillmarsh::test
