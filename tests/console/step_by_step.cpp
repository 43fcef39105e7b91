// SPDX-License-Identifier: MIT
// Runs a program, numbers the system calls by which it deals with files, and holds it before one:
//   step_by_step STEP TELL LISTEN PROGRAM [ARGUMENT...]
// TELL and LISTEN are the numbers of two open pipes. The first step is the call that opens
// removal.lock. A line into TELL says of each step, with tabs between: its number, the call, its
// paths and the outcome. Before the call of number STEP comes the line "stop" with the call and its
// paths, and the thread waits for a byte from LISTEN. The last line is "exit" and the exit code,
// negative for a signal, or "refused" where no program may be traced.
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kRefused = 77;
constexpr std::string_view kFirstOpened = "/removal.lock";

struct Call {
  unsigned number;
  const char* name;
  std::string_view takes;  // its first arguments: a Handle, or a Path, which may be below a Folder
};

// clang-format off
#define CALL(name, takes) Call{SYS_##name, #name, takes}
constexpr std::array kCalls = {
#ifdef SYS_open
    CALL(open, "P"), CALL(unlink, "P"), CALL(mkdir, "P"), CALL(rename, "PP"), CALL(link, "PP"),
#endif
    CALL(openat, "FP"), CALL(openat2, "FP"), CALL(newfstatat, "FP"), CALL(statx, "FP"),
    CALL(faccessat2, "FP"), CALL(mkdirat, "FP"), CALL(fchmodat, "FP"), CALL(utimensat, "FP"),
    CALL(unlinkat, "FP"), CALL(linkat, "FPFP"), CALL(renameat, "FPFP"), CALL(renameat2, "FPFP"),
    CALL(read, "H"), CALL(pread64, "H"), CALL(write, "H"), CALL(pwrite64, "H"), CALL(close, "H"),
    CALL(copy_file_range, "H"), CALL(sendfile, "H"), CALL(ioctl, "H"), CALL(fallocate, "H"),
    CALL(ftruncate, "H"), CALL(fstat, "H"), CALL(fstatfs, "H"), CALL(getdents64, "H"),
    CALL(flock, "H"), CALL(fcntl, "H"), CALL(fchmod, "H"), CALL(fchown, "H"), CALL(fsync, "H"),
    CALL(fdatasync, "H"), CALL(syncfs, "H"), CALL(fgetxattr, "H"), CALL(fsetxattr, "H")};
// clang-format on

std::string TextAt(pid_t thread, std::uint64_t address) {
  std::string text;
  for (; address != 0 && text.size() < PATH_MAX; address += sizeof(long)) {
    const long word = ::ptrace(PTRACE_PEEKDATA, thread, address, nullptr);
    const std::string_view letters(reinterpret_cast<const char*>(&word), sizeof word);
    text += letters.substr(0, letters.find('\0'));
    if (letters.find('\0') != std::string_view::npos) break;
  }
  return text;
}

std::string PathOfHandle(pid_t thread, int handle) {
  std::array<char, PATH_MAX> path;
  const std::string link = "/proc/" + std::to_string(thread) + "/fd/" + std::to_string(handle);
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
  return {path.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

std::string PathsOf(pid_t thread, std::string_view takes, const std::uint64_t* given) {
  std::string paths;
  int folder = AT_FDCWD;
  for (const char kind : takes) {
    const std::uint64_t value = *given++;
    if (kind == 'H') paths += "\t" + PathOfHandle(thread, static_cast<int>(value));
    if (kind == 'F') folder = static_cast<int>(value);
    if (kind != 'P') continue;
    const std::string path = TextAt(thread, value);
    const bool isWhole = path.starts_with('/') || folder == AT_FDCWD;
    paths += "\t" + (isWhole ? "" : PathOfHandle(thread, folder) + (path.empty() ? "" : "/"));
    paths += path;
  }
  return paths;
}

// The kernel is to stop the program at the calls above, and at no others.
bool FilterCalls() {
  std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
  for (const Call& call : kCalls) {
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.number, 0, 1));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
  }
  filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

class Steps {
 public:
  Steps(int wanted, int tell, int listen) : mWanted(wanted), mTell(tell), mListen(listen) {}

  void Tell(const std::string& line) const {
    if (::write(mTell, (line + "\n").data(), line.size() + 1) < 0) std::exit(1);
  }
  // Answers how the thread is to go on.
  __ptrace_request Enter(pid_t thread, const __ptrace_syscall_info& info) {
    const auto call = std::find_if(kCalls.begin(), kCalls.end(),
                                   [&](const Call& one) { return one.number == info.seccomp.nr; });
    const bool opens = std::string_view(call->name).starts_with("open");
    if (mCount == 0 && !opens) return PTRACE_CONT;
    const std::string line = call->name + PathsOf(thread, call->takes, info.seccomp.args);
    if (mCount == 0 && !line.ends_with(kFirstOpened)) return PTRACE_CONT;
    mUnderWay[thread] = std::to_string(++mCount) + "\t" + line;
    char answer = 0;
    if (mCount == mWanted) Tell("stop\t" + line);
    if (mCount == mWanted && ::read(mListen, &answer, 1) != 1) std::exit(1);
    return PTRACE_SYSCALL;
  }
  void Leave(pid_t thread, const __ptrace_syscall_info& info) {
    Tell(mUnderWay[thread] + "\t" + std::to_string(info.exit.rval));
  }

 private:
  const int mWanted;
  const int mTell;
  const int mListen;
  int mCount = 0;
  std::map<pid_t, std::string> mUnderWay;
};

// Answers the program's last status.
int Follow(pid_t program, Steps& steps) {
  std::set<pid_t> known{program};
  int status = 0;
  while (true) {
    const pid_t thread = ::waitpid(-1, &status, __WALL);
    if (thread < 0 || (!WIFSTOPPED(status) && thread == program)) return status;
    if (!WIFSTOPPED(status)) continue;
    __ptrace_syscall_info info;
    ::ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof info, &info);
    __ptrace_request request = PTRACE_CONT;
    if (info.op == PTRACE_SYSCALL_INFO_SECCOMP) request = steps.Enter(thread, info);
    if (info.op == PTRACE_SYSCALL_INFO_EXIT) steps.Leave(thread, info);
    const int signal = WSTOPSIG(status);
    const bool isFirst = known.insert(thread).second && signal == SIGSTOP;
    const bool isOurs = isFirst || (signal & ~0x80) == SIGTRAP;
    ::ptrace(request, thread, nullptr, isOurs ? 0 : signal);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) return 2;
  const int tell = std::atoi(argv[2]);
  const int listen = std::atoi(argv[3]);
  for (const int pipe : {tell, listen}) ::fcntl(pipe, F_SETFD, FD_CLOEXEC);
  const pid_t program = ::fork();
  if (program == 0) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(kRefused);
    ::raise(SIGSTOP);
    if (!FilterCalls()) ::_exit(kRefused);
    ::execv(argv[4], argv + 4);
    ::_exit(127);
  }
  Steps steps(std::atoi(argv[1]), tell, listen);
  int status = 0;
  ::waitpid(program, &status, 0);
  if (WIFSTOPPED(status)) {
    ::ptrace(PTRACE_SETOPTIONS, program, nullptr,
             PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE |
                 PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_EXITKILL);
    ::ptrace(PTRACE_CONT, program, nullptr, nullptr);
    status = Follow(program, steps);
  }
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  steps.Tell(code == kRefused ? "refused" : "exit\t" + std::to_string(code));
  return 0;
}
