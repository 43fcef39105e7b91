// SPDX-License-Identifier: MIT
// What of the simulated machine is no disk: shared look-ups, shell folders, the process, locale,
// clock and queue.
#include <algorithm>

#include "base/CaseMapping.h"
#include "base/CheckedArithmetic.h"
#include "platform/ExecutableFormats.h"
#include "platform/simulated/SimulatedSystemRoles.h"

namespace quillmarsh::simulated {

namespace {

constexpr std::int64_t ticksPerMinute = 600'000'000;
constexpr std::uint32_t accessThatReads = 0x21;  // read data, execute
constexpr std::uint32_t accessThatWrites = 0x6;  // write data, append data

struct Use {
  bool reads, writes, deletes;
};

Use UseOf(std::uint32_t access) {
  return {(access & accessThatReads) != 0, (access & accessThatWrites) != 0,
          (access & DELETE_ACCESS) != 0};
}

bool Allows(std::uint32_t share, const Use& use) {
  return (!use.reads || (share & FILE_SHARE_READ) != 0) &&
         (!use.writes || (share & FILE_SHARE_WRITE) != 0) &&
         (!use.deletes || (share & FILE_SHARE_DELETE) != 0);
}

TextView ExtensionOf(TextView name) {
  const std::size_t dot = name.rfind(u'.');
  return dot == TextView::npos ? TextView() : name.substr(dot + 1);
}

struct LocaleText {
  std::uint32_t type;
  Text LocaleFacts::*text;
};
constexpr LocaleText localeTexts[] = {
    {LOCALE_SDECIMAL, &LocaleFacts::decimalSeparator},
    {LOCALE_STHOUSAND, &LocaleFacts::thousandsSeparator},
    {LOCALE_SDATE, &LocaleFacts::dateSeparator},
    {LOCALE_STIME, &LocaleFacts::timeSeparator},
    {LOCALE_SSHORTDATE, &LocaleFacts::shortDate},
    {LOCALE_STIMEFORMAT, &LocaleFacts::longTime},
    {LOCALE_S1159, &LocaleFacts::amMarker},
    {LOCALE_S2359, &LocaleFacts::pmMarker},
};

}  // namespace

bool World::KeepWaiting() {
  Patience* const waiting = patience();
  return waiting != nullptr && waiting->KeepWaiting();
}

ParsedPath World::Parse(TextView path, std::size_t limit, bool lastMayBeStar) const {
  ParsedPath parsed = ParsePath(path, currentFolder, limit, lastMayBeStar);
  if (!isWow64 || redirectionOff > 0 || parsed.error != 0) return parsed;
  const auto folder = shellFolders.find(CSIDL_WINDOWS);
  if (folder == shellFolders.end()) return parsed;
  const ParsedPath windows = ParsePath(folder->second, {}, NoPathLimit, false);
  const std::size_t depth = windows.components.size();
  if (parsed.components.size() <= depth || !EqualIgnoringCase(parsed.root, windows.root) ||
      !EqualIgnoringCase(parsed.components[depth], u"System32") ||
      !std::equal(windows.components.begin(), windows.components.end(), parsed.components.begin(),
                  [](const Text& a, const Text& b) { return EqualIgnoringCase(a, b); }))
    return parsed;
  parsed.components[depth] = u"SysWOW64";
  return parsed;
}

ReadBytesAt World::ReaderOf(const Node& node) const {
  return [this, &node](std::uint64_t offset, std::span<std::byte> bytes) {
    return disk.Read(node, offset, bytes) == bytes.size();
  };
}

Resolved World::Look(TextView path, LastLink lastLink, std::size_t limit) {
  return Resolve(Parse(path, limit, false), lastLink);
}

bool World::Grants(const Node& node, std::uint32_t rights) const {
  const Volume* const volume = VolumeOf(node);
  if (volume == nullptr || (volume->Flags() & FS_PERSISTENT_ACLS) == 0) return true;
  std::uint32_t granted = disk.GrantedRights(node);
  // Whoever may list a folder may see the attributes of what is in it.
  const bool listable =
      node.parent == nullptr || (disk.GrantedRights(*node.parent) & FILE_READ_DATA) != 0;
  if (listable) granted |= FILE_READ_ATTRIBUTES;
  return (granted & rights) == rights;
}

bool World::SharingForbids(const Node& node, std::uint32_t access, std::uint32_t share) const {
  const Use wanted = UseOf(access);
  if (!wanted.reads && !wanted.writes && !wanted.deletes) return false;
  return std::ranges::any_of(files, [&](const auto& entry) {
    const OpenFile& open = entry.second;
    const Use present = UseOf(open.access);
    if (open.node != &node || (!present.reads && !present.writes && !present.deletes)) return false;
    return !Allows(open.share, wanted) || !Allows(share, present);
  });
}

std::uint32_t World::WhyNotAdded(const Node& parent, const Volume& volume,
                                 std::uint32_t right) const {
  if (volume.facts.readOnly) return ERROR_WRITE_PROTECT;
  return Grants(parent, right) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

Node& World::AddNow(Node& parent, TextView name, std::uint32_t attributes, bool isFolder) {
  parent.written = clock;
  return disk.AddChild(parent, name, {attributes, clock, clock, clock}, isFolder);
}

Text SimulatedShell::DoGetFolder(std::int32_t csidl) {
  const auto found = mWorld->shellFolders.find(csidl);
  return found == mWorld->shellFolders.end() ? Fail(ERROR_FILE_NOT_FOUND, Text()) : found->second;
}

Text SimulatedShell::DoGetItemPath(std::int32_t csidl) {
  return DoGetFolder(csidl);
}

Text SimulatedShell::DoGetTempPath() {
  return mWorld->tempPath;
}

Text SimulatedShell::DoGetTypeName(TextView name) {
  const Text extension = UpperCaseText(ExtensionOf(name));
  const auto found = mWorld->typeNames.find(extension);
  if (found != mWorld->typeNames.end()) return found->second;
  return extension.empty() ? Text(u"File") : extension + u" File";
}

std::intptr_t SimulatedShell::DoExecute(TextView verb, TextView file, TextView parameters,
                                        std::int32_t show) {
  if (mWorld->shellAnswer > kLastShellFailure)
    mWorld->started.push_back({Text(verb), Text(file), Text(parameters), show});
  return mWorld->shellAnswer;
}

// Only of what is there are there properties.
bool SimulatedShell::DoExecuteEx(const SHELLEXECUTEINFOW& execution) {
  const Resolved place = mWorld->Look(execution.lpFile, LastLink::Keep);
  if (place.error != 0) return Fail(place.error, false);
  if (mWorld->shellAnswer <= kLastShellFailure)
    return Fail(static_cast<std::uint32_t>(mWorld->shellAnswer), false);
  mWorld->started.push_back(
      {execution.lpVerb, execution.lpFile, {}, execution.nShow, execution.fMask});
  return true;
}

std::optional<VersionBlock> SimulatedVersions::BlockOf(TextView path) {
  const std::optional<VersionBlock> none;
  const Resolved place = mWorld->Look(path, LastLink::Follow);
  if (place.error != 0) return Fail(place.error, none);
  if (place.node->IsFolder() || !mWorld->Grants(*place.node, FILE_READ_DATA))
    return Fail(ERROR_ACCESS_DENIED, none);
  VersionBlock block = ReadVersionBlock(mWorld->ReaderOf(*place.node));
  if (block.error != 0) return Fail(block.error, none);
  return block;
}

std::uint32_t SimulatedVersions::DoGetSize(TextView path) {
  const auto block = BlockOf(path);
  return block ? static_cast<std::uint32_t>(block->bytes.size()) : 0;
}

bool SimulatedVersions::DoGetBlock(TextView path, std::vector<std::byte>& buffer) {
  const auto block = BlockOf(path);
  if (!block) return false;
  std::copy_n(block->bytes.begin(), std::min(block->bytes.size(), buffer.size()), buffer.begin());
  return true;
}

std::optional<VS_FIXEDFILEINFO> SimulatedVersions::DoQueryRoot(
    const std::vector<std::byte>& block) {
  return FixedFileInfoOf(block);
}

HANDLE SimulatedModules::DoLoadLibrary(TextView path) {
  const auto module = mWorld->modules.find(Text(path));
  if (module == mWorld->modules.end()) return Fail(ERROR_MOD_NOT_FOUND, NULL_HANDLE);
  if (module->second.handle == NULL_HANDLE) module->second.handle = mWorld->NewHandle();
  ++module->second.loads;
  return module->second.handle;
}

HANDLE SimulatedModules::DoLoadLibraryOfSystem(TextView fileName) {
  for (const auto& [path, module] : mWorld->modules) {
    if (path.ends_with(u"\\" + Text(fileName))) return DoLoadLibrary(path);
  }
  return Fail(ERROR_MOD_NOT_FOUND, NULL_HANDLE);
}

HANDLE SimulatedModules::DoGetModuleHandle(TextView name) {
  for (const auto& [path, module] : mWorld->modules) {
    if (module.loads > 0 && path.ends_with(u"\\" + Text(name))) return module.handle;
  }
  return Fail(ERROR_MOD_NOT_FOUND, NULL_HANDLE);
}

void* SimulatedModules::DoGetProcAddress(HANDLE handle, const char* name) {
  for (const auto& [path, module] : mWorld->modules) {
    const auto found = module.exports.find(name);
    if (module.loads > 0 && module.handle == handle && found != module.exports.end())
      return found->second;
  }
  return Fail(ERROR_PROC_NOT_FOUND, static_cast<void*>(nullptr));
}

bool SimulatedModules::DoFreeLibrary(HANDLE handle) {
  for (auto& [path, module] : mWorld->modules) {
    if (module.loads == 0 || module.handle != handle) continue;
    --module.loads;
    return true;
  }
  return Fail(ERROR_INVALID_HANDLE, false);
}

bool SimulatedModules::DoDisableRedirection() {
  if (!mWorld->isWow64) return Fail(ERROR_INVALID_FUNCTION, false);
  ++mWorld->redirectionOff;
  return true;
}

bool SimulatedModules::DoRevertRedirection() {
  if (!mWorld->isWow64) return Fail(ERROR_INVALID_FUNCTION, false);
  if (mWorld->redirectionOff == 0) return Fail(ERROR_INVALID_PARAMETER, false);
  --mWorld->redirectionOff;
  return true;
}

Text SimulatedLocale::DoGetLocaleInfo(std::uint32_t type) {
  const auto given = mWorld->localeTexts.find(type);
  if (given != mWorld->localeTexts.end()) return given->second;
  const LocaleFacts& facts = mWorld->locale;
  for (const LocaleText& row : localeTexts)
    if (row.type == type) return facts.*row.text;
  // The system counts days from Monday, the facts from Sunday.
  if (type >= LOCALE_SDAYNAME1 && type < LOCALE_SDAYNAME1 + 7)
    return facts.dayNames[(type - LOCALE_SDAYNAME1 + 1) % 7];
  if (type >= LOCALE_SABBREVDAYNAME1 && type < LOCALE_SABBREVDAYNAME1 + 7)
    return facts.shortDayNames[(type - LOCALE_SABBREVDAYNAME1 + 1) % 7];
  if (type >= LOCALE_SMONTHNAME1 && type < LOCALE_SMONTHNAME1 + 12)
    return facts.monthNames[type - LOCALE_SMONTHNAME1];
  if (type >= LOCALE_SABBREVMONTHNAME1 && type < LOCALE_SABBREVMONTHNAME1 + 12)
    return facts.shortMonthNames[type - LOCALE_SABBREVMONTHNAME1];
  return Fail(ERROR_INVALID_PARAMETER, Text());
}

FILETIME SimulatedLocale::DoGetLocalTime() {
  return FILETIME::FromTicks(mWorld->clock - mWorld->zoneBias * ticksPerMinute);
}

bool SimulatedLocale::DoToLocal(const FILETIME& utc, FILETIME& local) {
  std::int64_t ticks = 0;
  if (utc.Ticks() < 0 || SubtractOverflows(utc.Ticks(), mWorld->zoneBias * ticksPerMinute, ticks) ||
      ticks < 0)
    return Fail(ERROR_INVALID_PARAMETER, false);
  local = FILETIME::FromTicks(ticks);
  return true;
}

bool SimulatedLocale::DoToUtc(const FILETIME& local, FILETIME& utc) {
  std::int64_t ticks = 0;
  if (local.Ticks() < 0 || AddOverflows(local.Ticks(), mWorld->zoneBias * ticksPerMinute, ticks) ||
      ticks < 0)
    return Fail(ERROR_INVALID_PARAMETER, false);
  utc = FILETIME::FromTicks(ticks);
  return true;
}

Text SimulatedLocale::DoFormatMessage(std::uint32_t code) {
  const TextView text = EnglishSystemErrorText(code);
  return text.empty() ? Fail(std::uint32_t{317}, Text()) : Text(text);
}

std::uint32_t SimulatedQueue::DoGetStatus(std::uint32_t kinds) {
  const std::uint32_t waiting = mWorld->waitingEvents & kinds;
  return (waiting << 16U) | waiting;
}

}  // namespace quillmarsh::simulated
