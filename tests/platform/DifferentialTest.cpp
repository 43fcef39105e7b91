// SPDX-License-Identifier: MIT
// Runs seeded random operations on the simulated machine and on each other machine and compares
// every answer: results, error codes, bytes, attributes. A failure prints the seed; the environment
// sets the number of operations (QUILLMARSH_DIFFERENTIAL_OPERATIONS) and the first seed
// (QUILLMARSH_DIFFERENTIAL_SEED).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <utility>

#include "base/CaseMapping.h"
#include "platform/MachineUnderTest.h"

namespace quillmarsh {

namespace {

constexpr std::uint64_t operationsInARun = 250;
constexpr std::size_t handlesAtOnce = 4;

std::uint64_t NumberFromEnvironment(const char* name, std::uint64_t usual) {
  const char* const text = std::getenv(name);
  return text == nullptr ? usual : std::strtoull(text, nullptr, 10);
}

std::string Code(Machine& machine, bool succeeded) {
  return succeeded ? "ok" : "error " + std::to_string(machine.GetLastError());
}

// One thing to do, drawn before it is done, so that every machine does the same.
struct Step {
  enum class Kind {
    MakeFolder,
    Open,
    Close,
    Read,
    Write,
    Seek,
    SetEnd,
    Facts,
    List,
    FindOne,
    Attributes,
    SetReadOnly,
    Remove,
    RemoveFolder,
    Delete,
    Move,
    Copy
  };
  Kind kind;
  Text path;  // relative to the ground
  Text newPath;
  std::size_t slot;
  std::uint32_t access, disposition, method;
  std::int64_t distance;
  std::string bytes;
  bool flag;
};

constexpr const char* kindNames[] = {
    "MakeFolder", "Open",         "Close",  "Read",    "Write",      "Seek",
    "SetEnd",     "Facts",        "List",   "FindOne", "Attributes", "SetReadOnly",
    "Remove",     "RemoveFolder", "Delete", "Move",    "Copy"};

class Drawer {
 public:
  explicit Drawer(std::uint64_t seed) : mRandom(seed) {}

  Step Draw() {
    static constexpr std::uint32_t accesses[] = {GENERIC_READ, GENERIC_WRITE,
                                                 GENERIC_READ | GENERIC_WRITE, FILE_APPEND_DATA};
    // Trees and open files are to grow, so what makes them comes more often than what ends them.
    static constexpr Step::Kind kinds[] = {
        Step::Kind::MakeFolder,  Step::Kind::MakeFolder,   Step::Kind::MakeFolder,
        Step::Kind::Open,        Step::Kind::Open,         Step::Kind::Open,
        Step::Kind::Open,        Step::Kind::Read,         Step::Kind::Read,
        Step::Kind::Write,       Step::Kind::Write,        Step::Kind::Write,
        Step::Kind::Seek,        Step::Kind::Seek,         Step::Kind::SetEnd,
        Step::Kind::Facts,       Step::Kind::Close,        Step::Kind::List,
        Step::Kind::List,        Step::Kind::FindOne,      Step::Kind::FindOne,
        Step::Kind::Attributes,  Step::Kind::SetReadOnly,  Step::Kind::Remove,
        Step::Kind::SetReadOnly, Step::Kind::RemoveFolder, Step::Kind::RemoveFolder,
        Step::Kind::Delete,      Step::Kind::Delete,       Step::Kind::Move,
        Step::Kind::Move,        Step::Kind::Move,         Step::Kind::Move,
        Step::Kind::Copy,        Step::Kind::Copy,         Step::Kind::Copy};
    Step step;
    step.kind = kinds[Below(static_cast<int>(std::size(kinds)))];
    step.path = Path();
    step.newPath = Path();
    // What a final backslash behind the name of a file means is each system's own affair.
    const bool isOfFolders = step.kind == Step::Kind::MakeFolder || step.kind == Step::Kind::List ||
                             step.kind == Step::Kind::FindOne;
    if (isOfFolders && Below(10) == 0) step.path += u'\\';
    step.slot = static_cast<std::size_t>(Below(handlesAtOnce));
    step.access = accesses[Below(4)];
    step.disposition = static_cast<std::uint32_t>(CREATE_NEW + static_cast<unsigned>(Below(4)));
    step.method = static_cast<std::uint32_t>(Below(4));  // 3 is none
    step.distance = Below(60) - 20;
    step.bytes.assign(static_cast<std::size_t>(Below(30)), static_cast<char>('a' + Below(26)));
    step.flag = Below(2) == 0;
    return step;
  }

 private:
  int Below(int limit) { return static_cast<int>(mRandom() % static_cast<std::uint64_t>(limit)); }

  // Few names, so that operations meet; spellings in two cases, which are two names or one.
  Text Path() {
    static constexpr TextView names[] = {u"a",     u"A", u"a.", u"b c", u"\u00E9t\u00E9",
                                         u"x.txt", u"a "};
    static constexpr TextView wrongNames[] = {u"q?", u"<", u"p|q", u"a\u0007"};
    Text path;
    const int depth = 1 + std::min(Below(4), Below(4));
    for (int i = 0; i < depth; ++i) {
      if (i > 0) path += u'\\';
      path +=
          Below(60) == 0 ? wrongNames[Below(4)] : names[Below(static_cast<int>(std::size(names)))];
    }
    return path;
  }

  std::mt19937_64 mRandom;
};

// One of those that are drawn.
bool HasWrongName(TextView path) {
  return path.find_first_of(u"?<|\u0007") != TextView::npos;
}

std::string Describe(const Step& step) {
  return std::string(kindNames[static_cast<std::size_t>(step.kind)]) + " '" + ToUtf8(step.path) +
         "' to '" + ToUtf8(step.newPath) + "' slot " + std::to_string(step.slot) + " access " +
         std::to_string(step.access) + " disposition " + std::to_string(step.disposition) +
         " distance " + std::to_string(step.distance) + " method " + std::to_string(step.method);
}

// One machine that carries out operations and tells what came of each as a text.
class Player {
 public:
  Player(std::unique_ptr<MachineUnderTest> ground, bool onWindows, bool onWine)
      : mGround(std::move(ground)), mOnWindows(onWindows), mOnWine(onWine) {
    std::fill(std::begin(mHandles), std::end(mHandles), INVALID_HANDLE);
  }
  ~Player() { CloseAll(); }
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;
  [[nodiscard]] MachineUnderTest& Ground() { return *mGround; }

  std::string Do(const Step& step) {
    const Text path = mGround->PathOf(step.path);
    HANDLE& handle = mHandles[step.slot];
    switch (step.kind) {
      case Step::Kind::MakeFolder:
        return Code(The(), The().Disk().CreateDirectoryW(path));
      case Step::Kind::Open:
        mAccess[step.slot] = step.access;
        return Open(handle, path, step);
      case Step::Kind::Close: {
        // Windows takes the number of no handle for one of the program itself and "closes" it.
        if (handle == INVALID_HANDLE) return "not asked";
        std::string outcome = Code(The(), Files().CloseHandle(handle));
        handle = INVALID_HANDLE;
        return outcome;
      }
      case Step::Kind::Read:
        return Read(handle, step.bytes.size());
      case Step::Kind::Write:
        return Write(handle, step.bytes);
      case Step::Kind::Seek: {
        // Of two reasons to refuse, which one is told is each system's own affair.
        const bool isRefusedTwice =
            handle == INVALID_HANDLE && (step.distance < 0 || step.method > FILE_END);
        if (Appends(step.slot) || isRefusedTwice) return "not asked";
        std::int64_t position = 0;
        const bool moved = Files().SetFilePointerEx(handle, step.distance, position, step.method);
        return moved ? "at " + std::to_string(position) : Code(The(), false);
      }
      case Step::Kind::SetEnd:
        // Wine cuts a file that it has made or emptied through a handle for reading too.
        if (Appends(step.slot) || (mOnWine && mAccess[step.slot] == GENERIC_READ))
          return "not asked";
        return Code(The(), Files().SetEndOfFile(handle));
      case Step::Kind::Facts:
        return Facts(handle);
      case Step::Kind::List:
        return List(path + (path.ends_with(u'\\') ? u"*" : u"\\*"));
      case Step::Kind::FindOne:
        return FindOne(path);
      case Step::Kind::Attributes:
        return Attributes(path);
      case Step::Kind::SetReadOnly:
        return SetReadOnly(path, step.flag);
      case Step::Kind::Remove:
        CloseIfNamesStay();
        if (Files().GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES) return "nothing there";
        mGround->Remove(step.path);
        return "done";
      case Step::Kind::RemoveFolder:
        CloseAll();
        return Code(The(), The().Disk().RemoveDirectoryW(path));
      case Step::Kind::Delete:
        CloseIfNamesStay();
        return Code(The(), The().Disk().DeleteFileW(path));
      case Step::Kind::Move: {
        CloseAll();
        // What happens to a file that is open is each system's own affair.
        const std::uint32_t flags = step.method;  // none, replace, copy allowed, both
        return Code(The(), The().Disk().MoveFileExW(path, mGround->PathOf(step.newPath), flags));
      }
      case Step::Kind::Copy:
        CloseAll();
        return Code(The(), The().Disk().CopyFileW(path, mGround->PathOf(step.newPath), step.flag));
    }
    return {};
  }

 private:
  void CloseAll() {
    for (HANDLE& handle : mHandles)
      if (handle != INVALID_HANDLE) Files().CloseHandle(std::exchange(handle, INVALID_HANDLE));
  }
  // On some Windows the name of a deleted file stays until the file is closed.
  void CloseIfNamesStay() {
    if (mOnWindows) CloseAll();
  }
  Machine& The() { return mGround->Get(); }
  FileInputOutput& Files() { return mGround->Get().Files(); }
  // Nobody moves or cuts through a handle that only appends, and systems differ there.
  [[nodiscard]] bool Appends(std::size_t slot) const { return mAccess[slot] == FILE_APPEND_DATA; }

  std::string Open(HANDLE& handle, const Text& path, const Step& step) {
    if (handle != INVALID_HANDLE) Files().CloseHandle(handle);
    constexpr std::uint32_t shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    handle =
        Files().CreateFileW(path, step.access, shareAll, step.disposition, FILE_ATTRIBUTE_NORMAL);
    const std::string code = std::to_string(The().GetLastError());
    return (handle == INVALID_HANDLE ? "error " : "opened with ") + code;
  }

  std::string Read(HANDLE handle, std::size_t count) {
    std::string bytes(count, '?');
    std::uint32_t done = 0;
    if (!Files().ReadFile(handle, std::as_writable_bytes(std::span(bytes)), done))
      return Code(The(), false);
    return "read " + bytes.substr(0, done);
  }

  std::string Write(HANDLE handle, const std::string& bytes) {
    std::uint32_t done = 0;
    const bool written = Files().WriteFile(handle, std::as_bytes(std::span(bytes)), done);
    return Code(The(), written) + " " + std::to_string(done);
  }

  std::string Facts(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION information;
    if (!Files().GetFileInformationByHandle(handle, information)) return Code(The(), false);
    return std::to_string(information.dwFileAttributes) + " size " +
           std::to_string(information.nFileSizeLow);
  }

  static std::string FactsOf(const WIN32_FIND_DATAW& entry, TextView name) {
    const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return ToUtf8(name) + " " + std::to_string(entry.dwFileAttributes) + " " +
           (isFolder ? "" : std::to_string(entry.nFileSizeLow));
  }

  // The code with which a search fails where a file stands in the place of the folder; Wine answers
  // that of a name that cannot be.
  [[nodiscard]] std::uint32_t CodeOfNoFolder(std::uint32_t code, TextView path) const {
    const bool isFile = code == ERROR_DIRECTORY || (mOnWine && code == ERROR_INVALID_NAME);
    return isFile && !HasWrongName(path) ? ERROR_PATH_NOT_FOUND : code;
  }

  std::string List(const Text& pattern) {
    FolderListing listing = ListFolder(The(), pattern);
    listing.endCode = CodeOfNoFolder(listing.endCode, pattern);
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < listing.names.size(); ++i)
      lines.push_back(FactsOf(listing.records[i], listing.names[i]));
    std::ranges::sort(lines);
    std::string text =
        std::to_string(listing.dotsFirst) + " dots, end " + std::to_string(listing.endCode);
    for (const std::string& line : lines) text += "; " + line;
    return text;
  }

  std::string FindOne(const Text& path) {
    // A final backslash finds nothing, and a wrong name neither; Windows looks at the backslash
    // first.
    if (mOnWindows && path.ends_with(u'\\') && HasWrongName(path)) return "not asked";
    WIN32_FIND_DATAW entry;
    const HANDLE search = The().Find().FindFirstFileW(path, entry);
    // That a file stands where the folder should be may be told by a code of its own.
    if (search == INVALID_HANDLE)
      return "error " + std::to_string(CodeOfNoFolder(The().GetLastError(), path));
    std::string text = FactsOf(entry, entry.cFileName);
    text += The().Find().FindNextFileW(search, entry) ? " and more" : "";
    text += " end " + std::to_string(The().GetLastError());
    The().Find().FindClose(search);
    return text;
  }

  std::string Attributes(const Text& path) {
    const std::uint32_t attributes = Files().GetFileAttributesW(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return Code(The(), false);
    return std::to_string(attributes);
  }

  // What it means on a folder is each system's own affair.
  std::string SetReadOnly(const Text& path, bool readOnly) {
    const std::uint32_t found = Files().GetFileAttributesW(path);
    const std::uint32_t before = found == INVALID_FILE_ATTRIBUTES ? FILE_ATTRIBUTE_ARCHIVE : found;
    if ((before & FILE_ATTRIBUTE_DIRECTORY) != 0) return "not asked";
    const std::uint32_t bit = readOnly ? FILE_ATTRIBUTE_READONLY : 0;
    const std::uint32_t wanted = (before & ~FILE_ATTRIBUTE_READONLY) | bit;
    return Code(The(), The().Disk().SetFileAttributesW(path, wanted));
  }

  std::unique_ptr<MachineUnderTest> mGround;
  HANDLE mHandles[handlesAtOnce];
  std::uint32_t mAccess[handlesAtOnce] = {};
  bool mOnWindows, mOnWine;
};

// Whether a name that is there is spelled as in the path.
bool HasThisCase(MachineUnderTest& ground, const Text& path) {
  WIN32_FIND_DATAW entry;
  Finding& find = ground.Get().Find();
  const HANDLE search = find.FindFirstFileW(ground.PathOf(path), entry);
  const bool isSpelledSo = search != INVALID_HANDLE && path.ends_with(entry.cFileName);
  find.FindClose(search);
  return isSpelledSo;
}

// Whether Wine 8 answers other than Windows is documented to, or known to where nothing is said; by
// the state of the simulated machine.
bool WineIsKnownToDiffer(MachineUnderTest& ground, const Step& step, bool isSuperuser) {
  const auto attributesOf = [&](TextView path) {
    return ground.Get().Files().GetFileAttributesW(ground.PathOf(path));
  };
  // Who may write to a read-only file it leaves to the system below.
  if (step.kind == Step::Kind::SetReadOnly) return isSuperuser;
  if (step.kind != Step::Kind::Move) return false;
  // The code of a move below itself.
  const Text source = UpperCaseText(step.path);
  const Text target = UpperCaseText(step.newPath);
  if (target.starts_with(source + u'\\')) return true;
  const std::uint32_t moved = attributesOf(step.path);
  const std::uint32_t there = attributesOf(step.newPath);
  if (moved == INVALID_FILE_ATTRIBUTES || there == INVALID_FILE_ATTRIBUTES) return false;
  // A move onto itself leaves the case of the name as it was. One that replaces does so too, and
  // replaces read-only files, and files by folders.
  if (source == target) return true;
  const bool replaces = (step.method & MOVEFILE_REPLACE_EXISTING) != 0;
  if (!replaces || (there & FILE_ATTRIBUTE_DIRECTORY) != 0) return false;
  const bool isRefused =
      (there & FILE_ATTRIBUTE_READONLY) != 0 || (moved & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return isRefused || !HasThisCase(ground, step.newPath);
}

class Differential : public testing::TestWithParam<MachineKind> {};

// False at the first difference, which is then told.
bool RunAgrees(const MachineKind& kind, std::uint64_t seed) {
  Drawer drawer(seed);
  std::unique_ptr<MachineUnderTest> ground = kind.make();
  const bool onWine = ground->IsWine();
  const bool isSuperuser = !ground->CanKeepOut();
  const bool onWindows = !kind.tellsCaseApart;  // of the machines that take part here
  Player simulated(MakeSimulatedUnderTest(kind.tellsCaseApart), onWindows, onWine);
  Player other(std::move(ground), onWindows, onWine);
  std::string history;
  for (std::uint64_t i = 0; i < operationsInARun; ++i) {
    const Step step = drawer.Draw();
    if (onWine && WineIsKnownToDiffer(simulated.Ground(), step, isSuperuser)) continue;
    const std::string expected = simulated.Do(step);
    const std::string found = other.Do(step);
    history += std::to_string(i) + ": " + Describe(step) + " -> " + expected + "\n";
    EXPECT_EQ(expected, found) << "At " << Describe(step)
                               << ". Set QUILLMARSH_DIFFERENTIAL_SEED=" << seed
                               << " to see this again. All that was done:\n"
                               << history;
    if (expected != found) return false;
  }
  return true;
}

TEST_P(Differential, RandomOperationsHaveTheSameOutcomeOnBothMachines) {
  const std::uint64_t operations =
      NumberFromEnvironment("QUILLMARSH_DIFFERENTIAL_OPERATIONS", 5000);
  const std::uint64_t firstSeed = NumberFromEnvironment("QUILLMARSH_DIFFERENTIAL_SEED", 1);
  for (std::uint64_t done = 0; done < operations; done += operationsInARun)
    if (!RunAgrees(GetParam(), firstSeed + done / operationsInARun)) break;
}

std::vector<MachineKind> OtherKinds() {
  std::vector<MachineKind> kinds = MachineKinds();
  std::erase_if(kinds, [](const MachineKind& kind) { return kind.make == MachineKinds()[0].make; });
  return kinds;
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Differential);
INSTANTIATE_TEST_SUITE_P(Machines, Differential, testing::ValuesIn(OtherKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace

}  // namespace quillmarsh
