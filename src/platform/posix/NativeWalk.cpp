// SPDX-License-Identifier: MIT
// Resolution of a path by handles, as the kernel would do it, without its limit of length.
#include "platform/posix/NativeWalk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "platform/posix/UniqueFd.h"

namespace quillmarsh {
namespace {

constexpr int MostLinks = 40;

std::string LinkText(int link, int& error) {
  std::string text(256, '\0');
  for (;;) {
    const ssize_t length = ::readlinkat(link, "", text.data(), text.size());
    if (length < 0) {
      error = errno;
      return {};
    }
    if (static_cast<std::size_t>(length) < text.size()) {
      text.resize(static_cast<std::size_t>(length));
      return text;
    }
    text.resize(text.size() * 2);
  }
}

class Walker {
 public:
  CanonicalPath Walk(std::string_view native, MissingTail tail) {
    if (native.empty()) return {{}, ENOENT, true};
    if (native.find('\0') != std::string_view::npos) return {{}, EILSEQ, false};
    mPending = native;
    int error = Start(native.front() == '/');
    while (error == 0 && NextName()) error = Step();
    if (error == ENOENT && tail == MissingTail::Kept && !mName.empty()) {
      do Append(mName);
      while (NextName());
      error = 0;
    }
    // Anything left behind the missing name means that a folder is missing.
    const bool parentMissing =
        error == ENOENT && mPending.find_first_not_of('/') != std::string::npos;
    return {error == 0 ? (mPath.empty() ? "/" : mPath) : std::string(), error, parentMissing};
  }

 private:
  int Start(bool atRoot) {
    mPath.clear();
    if (!atRoot) {
      const std::unique_ptr<char, void (*)(void*)> folder(::getcwd(nullptr, 0), &std::free);
      // A current folder that cannot be reached from the root has no canonical path.
      if (folder == nullptr) return errno;
      if (folder.get()[0] != '/') return ENOENT;
      if (folder.get()[1] != '\0') mPath = folder.get();
    }
    mFolder.Reset(::open(atRoot ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    return mFolder ? 0 : errno;
  }

  // Takes the next name off what is to be walked; false at the end.
  bool NextName() {
    do {
      const std::size_t begin = mPending.find_first_not_of('/');
      if (begin == std::string::npos) return false;
      const std::size_t end = std::min(mPending.find('/', begin), mPending.size());
      mName = mPending.substr(begin, end - begin);
      mPending.erase(0, end);
    } while (mName == ".");
    return true;
  }

  void Append(const std::string& name) {
    if (name == "..") {
      mPath.resize(mPath.empty() ? 0 : mPath.rfind('/'));
    } else {
      mPath += '/';
      mPath += name;
    }
  }

  int Step() {
    // As a folder first: a folder that is mounted on demand is then mounted, since a person asks
    // for it by name.
    UniqueFd next(
        ::openat(mFolder.Get(), mName.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (next) {
      Append(mName);
      mFolder = std::move(next);
      return 0;
    }
    if (errno != ENOTDIR && errno != ELOOP) return errno;
    next.Reset(::openat(mFolder.Get(), mName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat facts {};
    if (!next || ::fstat(next.Get(), &facts) != 0) return errno;
    if (S_ISLNK(facts.st_mode)) return FollowLink(next.Get());
    Append(mName);
    mFolder = std::move(next);  // no folder: a further step fails with ENOTDIR
    return 0;
  }

  int FollowLink(int link) {
    if (++mLinks > MostLinks) return ELOOP;
    int error = 0;
    const std::string text = LinkText(link, error);
    if (error != 0) return error;
    if (text.empty()) return ENOENT;
    mPending = text + mPending;
    return text.front() == '/' ? Start(true) : 0;
  }

  UniqueFd mFolder;
  std::string mPath;     // canonical so far, empty for the root
  std::string mPending;  // what is still to be walked
  std::string mName;     // the component at hand
  int mLinks = 0;
};

}  // namespace

CanonicalPath Canonical(std::string_view native, MissingTail tail) {
  return Walker().Walk(native, tail);
}

}  // namespace quillmarsh
