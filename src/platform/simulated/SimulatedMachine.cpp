// SPDX-License-Identifier: MIT
// The machine itself: its roles, its settings and what a test sees of it.
#include "platform/simulated/SimulatedMachine.h"

#include <algorithm>
#include <stdexcept>

#include "base/CaseMapping.h"
#include "platform/simulated/SimulatedPinning.h"

namespace quillmarsh {

namespace simulated {

struct Roles {
  Roles(CallState& state, World& world)
      : finding(state, world),
        files(state, world),
        diskChange(state, world),
        volumes(state, world),
        access(state, world),
        shell(state, world),
        versions(state, world),
        modules(state, world),
        locale(state, world),
        queue(state, world),
        pins(state, world) {}

  SimulatedFinding finding;
  SimulatedFiles files;
  SimulatedDiskChange diskChange;
  SimulatedVolumes volumes;
  SimulatedAccess access;
  SimulatedShell shell;
  SimulatedVersions versions;
  SimulatedModules modules;
  SimulatedLocale locale;
  SimulatedQueue queue;
  SimulatedPinning pins;
};

}  // namespace simulated

using simulated::LastLink;
using simulated::Node;

namespace {

struct ShellFolder {
  std::int32_t csidl;
  TextView path;
};
constexpr ShellFolder usualFolders[] = {
    {CSIDL_PERSONAL, u"C:\\Users\\User\\Documents"},
    {CSIDL_DESKTOPDIRECTORY, u"C:\\Users\\User\\Desktop"},
    {CSIDL_LOCAL_APPDATA, u"C:\\Users\\User\\AppData\\Local"},
    {CSIDL_WINDOWS, u"C:\\Windows"},
    {CSIDL_SYSTEM, u"C:\\Windows\\System32"},
    {CSIDL_PROFILE, u"C:\\Users\\User"},
};

const Node& ExistingEntry(simulated::World& world, TextView path) {
  const auto place =
      world.Resolve(simulated::ParsePath(path, {}, simulated::NoPathLimit, false), LastLink::Keep);
  if (place.error != 0) throw std::logic_error("there is no " + ToUtf8(path));
  return *place.node;
}

void ListTree(const Node& folder, std::vector<Text>& paths) {
  for (const Node* child : folder.folder->byName) {
    paths.push_back(PathOf(*child));
    if (child->IsFolder()) ListTree(*child, paths);
  }
}

}  // namespace

SimulatedMachine::SimulatedMachine()
    : mWorld(std::make_unique<simulated::World>()),
      mRoles(std::make_unique<simulated::Roles>(mCalls, *mWorld)) {
  for (const ShellFolder& row : usualFolders) mWorld->shellFolders[row.csidl] = row.path;
  mWorld->typeNames[u"LNK"] = u"Shortcut";
  mWorld->patience = [this] { return CurrentPatience(); };
}

SimulatedMachine::~SimulatedMachine() = default;

bool SimulatedMachine::Exists(TextView path) const {
  const auto parsed = simulated::ParsePath(path, {}, simulated::NoPathLimit, false);
  return mWorld->Resolve(parsed, LastLink::Keep).error == 0;
}

std::uint32_t SimulatedMachine::AttributesOf(TextView path) const {
  return simulated::World::ToldAttributes(ExistingEntry(*mWorld, path));
}

std::uint64_t SimulatedMachine::SizeOf(TextView path) const {
  return ExistingEntry(*mWorld, path).size;
}

std::string SimulatedMachine::ContentsOf(TextView path) const {
  const Node& node = ExistingEntry(*mWorld, path);
  std::string bytes(node.size, '\0');
  (void)mWorld->disk.Read(node, 0, std::as_writable_bytes(std::span(bytes)));
  return bytes;
}

SimulatedFacts SimulatedMachine::FactsOf(TextView path) const {
  const Node& node = ExistingEntry(*mWorld, path);
  return {simulated::World::ToldAttributes(node), node.created, node.accessed, node.written};
}

std::vector<Text> SimulatedMachine::TreeOf(TextView folder) const {
  std::vector<Text> paths;
  const Node& node = ExistingEntry(*mWorld, folder);
  if (node.IsFolder()) ListTree(node, paths);
  return paths;
}

std::size_t SimulatedMachine::OpenHandles() const {
  const auto own = std::ranges::count_if(mWorld->files,
                                         [](const auto& entry) { return !entry.second.isForeign; });
  return static_cast<std::size_t>(own) + mWorld->searches.size() + mWorld->tokens.size();
}

bool SimulatedMachine::IsImpersonating() const {
  return mWorld->impersonating;
}
int SimulatedMachine::RedirectionDepth() const {
  return mWorld->redirectionOff;
}

void SimulatedMachine::SetClock(std::int64_t utcTicks) {
  mWorld->clock = utcTicks;
}
std::int64_t SimulatedMachine::Clock() const {
  return mWorld->clock;
}
void SimulatedMachine::SetTimeZoneBias(std::int32_t minutes) {
  mWorld->zoneBias = minutes;
}
void SimulatedMachine::SetLocale(const LocaleFacts& facts) {
  mWorld->locale = facts;
}
void SimulatedMachine::SetLocaleText(std::uint32_t type, TextView text) {
  mWorld->localeTexts[type] = text;
}
void SimulatedMachine::SetWow64(bool isWow64) {
  mWorld->isWow64 = isWow64;
}
void SimulatedMachine::SetVersion(const SystemVersion& version) {
  mWorld->version = version;
}
void SimulatedMachine::SetProgramPath(TextView path) {
  mWorld->programPath = path;
}
void SimulatedMachine::SetModule(TextView path, std::map<std::string, void*> exports) {
  mWorld->modules[Text(path)].exports = std::move(exports);
}
void SimulatedMachine::SetCurrentFolder(TextView path) {
  mWorld->currentFolder = path;
}
void SimulatedMachine::SetTempPath(TextView path) {
  mWorld->tempPath = path;
}
void SimulatedMachine::SetShellFolder(std::int32_t csidl, TextView path) {
  if (path.empty())
    mWorld->shellFolders.erase(csidl);
  else
    mWorld->shellFolders[csidl] = path;
}
void SimulatedMachine::SetTypeName(TextView extension, TextView name) {
  mWorld->typeNames[UpperCaseText(extension)] = name;
}
void SimulatedMachine::SetShellAnswer(std::intptr_t answer) {
  mWorld->shellAnswer = answer;
}
void SimulatedMachine::SetBinAnswer(std::int32_t code) {
  mWorld->binAnswer = code;
}
const std::vector<RecycledEntry>& SimulatedMachine::Recycled() const {
  return mWorld->recycled;
}
const std::vector<StartedProgram>& SimulatedMachine::Started() const {
  return mWorld->started;
}
void SimulatedMachine::SetWaitingEvents(std::uint32_t kinds) {
  mWorld->waitingEvents = kinds;
}
void SimulatedMachine::SetPlacesWithoutLetter(std::vector<Text> places) {
  mWorld->placesWithoutLetter = std::move(places);
}

Finding& SimulatedMachine::Find() {
  return mRoles->finding;
}
FileInputOutput& SimulatedMachine::Files() {
  return mRoles->files;
}
DiskChange& SimulatedMachine::Disk() {
  return mRoles->diskChange;
}
Pinning& SimulatedMachine::Pins() {
  return mRoles->pins;
}
Volumes& SimulatedMachine::Drives() {
  return mRoles->volumes;
}
Access& SimulatedMachine::Security() {
  return mRoles->access;
}
Shell& SimulatedMachine::Desktop() {
  return mRoles->shell;
}
VersionResources& SimulatedMachine::Versions() {
  return mRoles->versions;
}
Modules& SimulatedMachine::Process() {
  return mRoles->modules;
}
LocaleAndTime& SimulatedMachine::Locale() {
  return mRoles->locale;
}
QueueAndMailbox& SimulatedMachine::Queue() {
  return mRoles->queue;
}

}  // namespace quillmarsh
