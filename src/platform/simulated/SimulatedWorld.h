// SPDX-License-Identifier: MIT
// Everything that the roles of one simulated machine share: the disk, open handles, clock, locale,
// folders of the shell. Internal to this folder; tests see SimulatedMachine.h.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "base/LocaleFormat.h"
#include "platform/ExecutableFormats.h"
#include "platform/Machine.h"
#include "platform/simulated/RecycledEntry.h"
#include "platform/simulated/SimulatedPaths.h"
#include "platform/simulated/StartedProgram.h"

namespace quillmarsh::simulated {

// Rights that a folder's list can refuse one by one.
inline constexpr std::uint32_t FILE_READ_DATA = 0x1;   // of a folder: list it
inline constexpr std::uint32_t FILE_WRITE_DATA = 0x2;  // of a folder: add a file
inline constexpr std::uint32_t FILE_ADD_SUBDIRECTORY = 0x4;
inline constexpr std::uint32_t FILE_READ_ATTRIBUTES = 0x80;
inline constexpr std::uint32_t FILE_WRITE_ATTRIBUTES = 0x100;
inline constexpr std::uint32_t DELETE_ACCESS = 0x10000;
inline constexpr std::uint32_t READ_CONTROL = 0x20000;
// Attributes that a file can be given.
inline constexpr std::uint32_t storableAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
    FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_TEMPORARY | FILE_ATTRIBUTE_OFFLINE |
    FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

struct OpenFile {
  Node* node = nullptr;
  Volume* volume = nullptr;
  std::uint32_t access = 0;  // specific rights
  std::uint32_t share = 0;
  std::int64_t position = 0;
  bool isForeign = false;  // held by another program
  bool isLocked = false;
};

struct Search {
  Node* folder = nullptr;  // none for the search of a single entry
  Volume* volume = nullptr;
  std::uint64_t changes = 0;  // of the folder when `next` was set
  std::set<Node*, NameOrder>::const_iterator nextByName;
  std::set<Node*, AgeOrder>::const_iterator nextByAge;
  Text lastName;
  std::uint64_t lastNumber = 0;
  int dotsGiven = 0;  // of the two entries "." and ".."
};

// A module that can be loaded: its functions, and how many times it is loaded now.
struct SimulatedModule {
  std::map<std::string, void*> exports;
  HANDLE handle = NULL_HANDLE;
  int loads = 0;
};

struct World final : Resolver {
  World() : Resolver(disk) {}

  Disk disk;
  std::map<HANDLE, OpenFile> files;
  std::map<HANDLE, Search> searches;
  std::map<HANDLE, bool> tokens;
  std::intptr_t nextHandle = 4;
  Node* lastFolder = nullptr;  // where an entry was built last, none after anything went away
  Text lastFolderPath;

  std::int64_t clock = 134'397'310'400'000'000;  // UTC ticks
  std::int32_t zoneBias = 0;                     // minutes; UTC is local time and the bias
  LocaleFacts locale;
  std::map<std::uint32_t, Text> localeTexts;  // these go before `locale`

  bool isWow64 = false;
  int redirectionOff = 0;
  bool impersonating = false;
  SystemVersion version{10, VER_PLATFORM_WIN32_NT};
  Text programPath = u"C:\\Program Files\\Quillmarsh\\quillmarsh.exe";
  std::map<Text, SimulatedModule> modules;  // by path
  Text currentFolder = u"C:\\";
  Text tempPath = u"C:\\Users\\User\\AppData\\Local\\Temp\\";
  std::map<std::int32_t, Text> shellFolders;
  std::map<Text, Text> typeNames;  // by upper-cased extension
  std::intptr_t shellAnswer = 42;
  std::vector<StartedProgram> started;
  std::int32_t binAnswer = 0;  // with which the Recycle Bin refuses
  std::vector<RecycledEntry> recycled;
  std::uint32_t waitingEvents = 0;
  std::vector<Text> placesWithoutLetter;
  std::function<Patience*()> patience = [] { return nullptr; };

  [[nodiscard]] HANDLE NewHandle() {
    const HANDLE handle{nextHandle};
    nextHandle += 4;
    return handle;
  }
  // The entry that a path of the seam means: with the usual limit and with redirection.
  [[nodiscard]] Resolved Look(TextView path, LastLink lastLink, std::size_t limit = UsualPathLimit);
  [[nodiscard]] ReadBytesAt ReaderOf(const Node& node) const;
  [[nodiscard]] ParsedPath Parse(TextView path, std::size_t limit, bool lastMayBeStar) const;
  // Whether the entry's list, or its folder's for the attributes, grants the rights.
  [[nodiscard]] bool Grants(const Node& node, std::uint32_t rights) const;
  // Whether another open handle forbids an open with these rights and this sharing.
  [[nodiscard]] bool SharingForbids(const Node& node, std::uint32_t access,
                                    std::uint32_t share) const;
  // 0, or the code with which a folder refuses a new entry; the right is FILE_WRITE_DATA or
  // FILE_ADD_SUBDIRECTORY.
  [[nodiscard]] std::uint32_t WhyNotAdded(const Node& parent, const Volume& volume,
                                          std::uint32_t right) const;
  // 0, or the code with which an entry refuses to go away from where it is. The right to delete is
  // asked of the entry alone, as of a person who may change files but has no full control of
  // folders.
  [[nodiscard]] std::uint32_t WhyNotTakenAway(const Resolved& place) const;
  // A new entry with the times of this moment.
  Node& AddNow(Node& parent, TextView name, std::uint32_t attributes, bool isFolder);
  // Attributes as the platform tells them: 128 where no other bit is set.
  [[nodiscard]] static std::uint32_t ToldAttributes(const Node& node) {
    return node.attributes == 0 ? FILE_ATTRIBUTE_NORMAL : node.attributes;
  }

 private:
  bool KeepWaiting() override;
};

}  // namespace quillmarsh::simulated
