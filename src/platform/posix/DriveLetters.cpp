// SPDX-License-Identifier: MIT
// Which mounts get a letter, what a letter is remembered by, and the way from a native path to a
// drive.
#include "platform/posix/DriveLetters.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/posix/LetterMemory.h"
#include "platform/posix/NameMapping.h"

namespace quillmarsh {
namespace {

using DeviceNames = std::map<dev_t, std::string>;

// The names under which a folder of links (by UUID, by label) knows devices.
DeviceNames ReadDeviceNames(const std::string& folder) {
  DeviceNames names;
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), &::closedir);
  while (listing) {
    const dirent* entry = ::readdir(listing.get());
    if (entry == nullptr) break;
    struct stat facts {};
    const bool isDevice =
        ::fstatat(::dirfd(listing.get()), entry->d_name, &facts, 0) == 0 && S_ISBLK(facts.st_mode);
    if (isDevice) names.emplace(facts.st_rdev, entry->d_name);
  }
  return names;
}

// "\x20" for bytes that the makers of the links do not like in a name.
std::string UnescapedLabel(const std::string& name) {
  std::string label;
  for (std::size_t place = 0; place < name.size(); ++place) {
    if (name.compare(place, 2, "\\x") == 0 && place + 3 < name.size()) {
      label += static_cast<char>(std::strtol(name.substr(place + 2, 2).c_str(), nullptr, 16));
      place += 3;
    } else {
      label += name[place];
    }
  }
  return label;
}

std::string NameOfDevice(const Mount& mount, const DeviceNames& names) {
  struct stat facts {};
  // Only device nodes are asked: a source of another form may name another machine.
  if (!mount.source.starts_with("/dev/") || ::stat(mount.source.c_str(), &facts) != 0) return {};
  const auto found = names.find(facts.st_rdev);
  return S_ISBLK(facts.st_mode) && found != names.end() ? found->second : std::string();
}

// A source such as "tmpfs" or "none" tells nothing apart; then the place does.
std::string IdentityOf(const Mount& mount, const std::string& uuid) {
  const bool named = mount.source.find_first_of("/:") != std::string::npos;
  std::string identity =
      uuid.empty() ? "source:" + mount.type + ":" + mount.source : "uuid:" + uuid;
  if (mount.root != "/") identity += ":" + mount.root;
  if (uuid.empty() && !named) identity += ":" + mount.point;
  return identity;
}

bool HoldsFilesOfPeople(const Mount& mount, const FileSystemKind& kind) {
  if (mount.point == "/") return true;
  const bool ofTheSystem = LiesBelow(mount.point, "/run") || LiesBelow(mount.point, "/dev") ||
                           LiesBelow(mount.point, "/sys");
  if (!kind.holdsFiles || (mount.type == "tmpfs" && ofTheSystem)) return false;
  // A single file can be a mount too. What does not answer is not asked.
  struct stat facts {};
  return !kind.answers || ::stat(mount.point.c_str(), &facts) != 0 || S_ISDIR(facts.st_mode);
}

// Where a folder of the drive's file system shows below the drive; none when it does not.
std::optional<std::string> PlaceBelow(const Drive& drive, const MountTable& mounts,
                                      const std::string& device, std::string_view root) {
  if (drive.mount->device != device || !LiesBelow(root, drive.mount->root)) return {};
  std::string place = JoinNative(drive.mount->point, BelowFolder(root, drive.mount->root));
  if (mounts.VisibleAt(place) != drive.mount) return {};
  return place;
}

// On which the mounts of a table stand that names no root: below a changed root theirs is not told.
int MissingParentIn(const MountTable& table) {
  for (const Mount& mount : table.Mounts()) {
    if (std::ranges::find(table.Mounts(), mount.parent, &Mount::id) == table.Mounts().end())
      return mount.parent;
  }
  return 1;
}

// The mounts that are to have a letter, "/" first, then wholes before parts, so that a part that
// shows below a whole gets none.
std::vector<Drive> ChooseDrives(const MountTable& mounts) {
  std::vector<Drive> wanted;
  for (const Mount& mount : mounts.Mounts()) {
    const FileSystemKind kind = KindOfFileSystem(mount.type);
    if (mounts.VisibleAt(mount.point) != &mount || !HoldsFilesOfPeople(mount, kind)) continue;
    Drive drive;
    drive.mount = &mount;
    drive.kind = kind;
    wanted.push_back(std::move(drive));
  }
  const auto rank = [](const Drive& drive) {
    return drive.mount->point == "/" ? 0 : drive.mount->root.size();
  };
  std::stable_sort(wanted.begin(), wanted.end(),
                   [&](const Drive& a, const Drive& b) { return rank(a) < rank(b); });
  std::vector<Drive> chosen;
  for (Drive& drive : wanted) {
    const Mount& mount = *drive.mount;
    const bool shown = std::any_of(chosen.begin(), chosen.end(), [&](const Drive& other) {
      return PlaceBelow(other, mounts, mount.device, mount.root).has_value();
    });
    if (shown) continue;
    for (const Drive& other : chosen)
      if (PlaceBelow(drive, mounts, other.mount->device, other.mount->root))
        drive.innerRoots.emplace_back(BelowFolder(other.mount->root, mount.root));
    chosen.push_back(std::move(drive));
  }
  std::sort(chosen.begin(), chosen.end(),
            [](const Drive& a, const Drive& b) { return a.mount < b.mount; });
  return chosen;
}

}  // namespace

std::optional<std::string> ReadWholeFile(const std::string& path, int& error) {
  const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  std::string text;
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t got = file ? ::read(file.Get(), block.data(), block.size()) : -1;
    if (got == 0) return text;
    if (got > 0) {
      text.append(block.data(), static_cast<std::size_t>(got));
    } else if (!file || errno != EINTR) {
      error = errno;
      return {};
    }
  }
}

const Drive* DriveTable::ByLetter(char letter) const {
  for (const Drive& drive : drives)
    if (drive.letter == letter) return &drive;
  return nullptr;
}

std::optional<Text> DriveTable::DriveForm(std::string_view native) const {
  const Mount* mount = mounts.VisibleAt(native);
  if (mount == nullptr) return {};
  const std::string inside = JoinNative(mount->root, BelowFolder(native, mount->point));
  // Only "/" can be a part of another drive, and it comes first.
  const auto holder = std::find_if(drives.begin(), drives.end(), [&](const Drive& drive) {
    return PlaceBelow(drive, mounts, mount->device, inside).has_value();
  });
  if (holder == drives.end()) return {};
  Text form = {static_cast<char16_t>(holder->letter), u':'};
  std::string_view rest = BelowFolder(inside, holder->mount->root);
  if (rest.empty()) form += u'\\';
  while (!rest.empty()) {
    const std::size_t slash = rest.find('/');
    form += u'\\';
    AppendMappedName(rest.substr(0, slash), form);
    rest.remove_prefix(slash == std::string_view::npos ? rest.size() : slash + 1);
  }
  return form;
}

DriveLetters::DriveLetters(Sources sources)
    : mSources(std::move(sources)),
      mWatched(::open(mSources.mountInfoFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)),
      mCurrent(std::make_shared<DriveTable>()) {
  Refresh();
}

std::shared_ptr<const DriveTable> DriveLetters::Current() const {
  const std::lock_guard lock(mMutex);
  return mCurrent;
}

// The question takes the event back, so a change during the reading shows in the next one. A list
// that is a plain file tells none.
void DriveLetters::RefreshIfChanged() {
  pollfd watched{mWatched.Get(), POLLPRI, 0};
  if (::poll(&watched, 1, 0) > 0 && (watched.revents & (POLLPRI | POLLERR)) != 0) Refresh();
}

void DriveLetters::Refresh() {
  int error = 0;
  auto text = ReadWholeFile(mSources.mountInfoFile, error);
  // Without the list, or below a changed root that is no mount, there is still the root.
  if (!text) text.emplace();
  if (const MountTable table(*text); table.VisibleAt("/") == nullptr)
    text->insert(0, std::to_string(MissingParentIn(table)) + " 0 0:0 / / rw - rootfs / rw\n");
  if (*text == mMountInfo) return;
  mMountInfo = std::move(*text);

  auto table = std::make_shared<DriveTable>();
  table->mounts = MountTable(mMountInfo);
  table->drives = ChooseDrives(table->mounts);
  const DeviceNames uuids = ReadDeviceNames(mSources.uuidFolder);
  const DeviceNames labels = ReadDeviceNames(mSources.labelFolder);
  for (Drive& drive : table->drives) {
    drive.uuid = NameOfDevice(*drive.mount, uuids);
    drive.label = UnescapedLabel(NameOfDevice(*drive.mount, labels));
    drive.identity = IdentityOf(*drive.mount, drive.uuid);
  }
  GiveLetters(*table);
  const std::lock_guard lock(mMutex);
  mCurrent = std::move(table);
}

void DriveLetters::GiveLetters(DriveTable& table) {
  std::vector<Drive> lettered;
  ChangeLetterMemory(mSources.memoryFile, mMemory, [&] {
    const Memory before = mMemory;
    std::map<std::string, int> met;
    for (Drive& drive : table.drives) {
      // A copy of a disk bears the UUID of its original: its place tells it apart.
      if (met[drive.identity]++ > 0) drive.identity += ":" + drive.mount->point;
      drive.letter = drive.mount->point == "/" ? 'C' : LetterFor(drive.identity, table);
      if (drive.letter == 0)
        table.withoutLetter.push_back(drive.mount->point);
      else
        lettered.push_back(drive);
    }
    return before != mMemory;
  });
  std::sort(lettered.begin(), lettered.end(), [](const Drive& a, const Drive& b) {
    return (a.letter == 'C' ? 0 : a.letter) < (b.letter == 'C' ? 0 : b.letter);
  });
  table.drives = std::move(lettered);
  for (const auto& [letter, identity] : mMemory)
    if (table.ByLetter(letter) == nullptr) table.remembered += letter;
}

char DriveLetters::LetterFor(const std::string& identity, const DriveTable& table) {
  const auto inUse = [&](char letter) { return table.ByLetter(letter) != nullptr; };
  for (const auto& [letter, owner] : mMemory)
    if (owner == identity && !inUse(letter)) return letter;
  for (const char letter : mSources.letters)
    if (mMemory.emplace(letter, identity).second) return letter;
  return 0;
}

}  // namespace quillmarsh
