// SPDX-License-Identifier: MIT
// The floor of reading: opens each file of a list once, reads it with a buffer of 256 KiB and
// throws the bytes away. The list stands in a file, each path ended by a NUL.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "bare_read LIST\n");
    return 2;
  }
  std::ifstream list(argv[1], std::ios::binary);
  const std::string paths((std::istreambuf_iterator<char>(list)), std::istreambuf_iterator<char>());
  std::vector<char> buffer(std::size_t{256} << 10U);
  std::size_t files = 0;
  std::size_t bytes = 0;
  for (std::size_t begin = 0; begin < paths.size(); begin = paths.find('\0', begin) + 1) {
    const int file = ::open(paths.c_str() + begin, O_RDONLY | O_CLOEXEC);
    if (file < 0) continue;
    ++files;
    for (;;) {
      const ssize_t got = ::read(file, buffer.data(), buffer.size());
      if (got <= 0) break;
      bytes += static_cast<std::size_t>(got);
    }
    ::close(file);
  }
  std::printf("%zu files, %zu bytes\n", files, bytes);
  return 0;
}
