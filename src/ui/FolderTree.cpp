// SPDX-License-Identifier: MIT
// Nodes, and how they come: a timer asks the listings what is new, a helper thread sorts.
#include "ui/FolderTree.h"

#include <QElapsedTimer>
#include <QThreadPool>
#include <QTimerEvent>
#include <algorithm>
#include <atomic>
#include <iterator>
#include <optional>
#include <span>

#include "base/TextEquality.h"
#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "fsobjects/modShlWAPI.h"
#include "ui/FolderNode.h"
#include "ui/Icons.h"
#include "ui/Impatience.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

constexpr int kTick = 10;               // milliseconds
constexpr qint64 kWorkOfTick = 8;       // milliseconds of it that work may take
constexpr std::size_t kFewNodes = 500;  // sorted and freed without a helper
constexpr int kMostListings = 16;       // at a time: each has a thread of its own
// Of one folder: a view lays its rows out in one go, which no person should notice.
constexpr std::size_t kMostRows = 100'000;
const QString kReadingText = QStringLiteral("Reading\u2026");

using Nodes = std::vector<std::unique_ptr<FolderNode>>;

// Work for a helper thread. It owns what it works on and may outlive the tree.
struct SortJob {
  Nodes nodes;
  std::size_t omitted = 0;  // of those that were given, behind the ones that are left
  std::atomic<bool> isDone{false};
};

std::shared_ptr<SortJob> SortInBackground(Nodes nodes) {
  auto job = std::make_shared<SortJob>();
  job->nodes = std::move(nodes);
  const auto sort = [job] {
    std::ranges::sort(job->nodes, ComesBefore);
    job->omitted = job->nodes.size() - std::min(job->nodes.size(), kMostRows);
    job->nodes.resize(job->nodes.size() - job->omitted);
    job->isDone.store(true, std::memory_order_release);
  };
  if (job->nodes.size() <= kFewNodes)
    sort();
  else
    QThreadPool::globalInstance()->start(sort);
  return job;
}

// Many thousands of nodes take their time to go.
void FreeInBackground(Nodes nodes) {
  if (nodes.size() <= kFewNodes) return;
  QThreadPool::globalInstance()->start([kept = std::make_shared<Nodes>(std::move(nodes))] {});
}

// Of reparse points only those that lead elsewhere are no folders of their own.
bool IsFolderOfItsOwn(const WIN32_FIND_DATAW& entry) {
  const bool leadsElsewhere = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                              (entry.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT ||
                               entry.dwReserved0 == IO_REPARSE_TAG_SYMLINK);
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && !leadsElsewhere;
}

bool IsShownFolder(const WIN32_FIND_DATAW& entry) {
  return IsFolderOfItsOwn(entry) && (entry.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) == 0 &&
         entry.cFileName != u"." && entry.cFileName != u"..";
}

// False only where that is certain: what does not answer at once may well be there. `path` has a
// final backslash.
bool MayExist(TextView path) {
  const Impatience impatience;
  Machine& machine = TheMachine();
  if (StripToRoot(path) + u"\\" == path || StripToRoot(path) == path)
    return machine.Files().GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES ||
           machine.GetLastError() == ERROR_OPERATION_ABORTED;
  WIN32_FIND_DATAW entry;
  const HANDLE search = machine.Find().FindFirstFileW(path.substr(0, path.size() - 1), entry);
  if (search == INVALID_HANDLE) return machine.GetLastError() == ERROR_OPERATION_ABORTED;
  const bool isFolder = IsFolderOfItsOwn(entry);
  machine.Find().FindClose(search);
  return isFolder;
}

Text WithBackslash(TextView path) {
  Text text(path);
  if (!text.empty() && !text.ends_with(u'\\')) text += u'\\';
  return text;
}

bool StartsWithRoot(TextView path, TextView root) {
  return path.size() >= root.size() && CompareIgnoringCase(path.substr(0, root.size()), root) == 0;
}

std::unique_ptr<FolderNode> NewRoot(FolderKind kind, TextView path, const QString& name) {
  auto node = std::make_unique<FolderNode>();
  node->kind = kind;
  node->name = WithBackslash(path);
  node->root = std::make_unique<FolderNode::RootFacts>();
  node->root->name = name;
  return node;
}

std::unique_ptr<FolderNode> NewDrive(TextView root) {
  QString shown = ToQString(TheMachine().Drives().ShownPath(root));
  if (shown.size() > 1 && shown.endsWith(QLatin1Char('/'))) shown.chop(1);
  VolumeInformation volume;
  const Impatience impatience;
  const bool isKnown = TheMachine().Drives().GetVolumeInformationW(root, volume);
  const QString name =
      isKnown && !volume.label.empty()
          ? ToQString(volume.label) + QStringLiteral(" (") + shown + QLatin1Char(')')
          : shown;
  return NewRoot(FolderKind::Drive, root, name);
}

void Renumber(Nodes& nodes, std::size_t from) {
  for (std::size_t row = from; row < nodes.size(); ++row) nodes[row]->row = static_cast<int>(row);
}

}  // namespace

struct FolderTree::Reading {
  FolderNode* node = nullptr;
  std::unique_ptr<BackgroundListing> listing;  // gone when it has ended
  Nodes found;
  std::uint32_t end = 0;
  std::shared_ptr<SortJob> sorting;
};

FolderTree::FolderTree(QObject* parent)
    : QAbstractItemModel(parent), mTop(std::make_unique<FolderNode>()) {}

FolderTree::~FolderTree() = default;

// ---- The roots ----

void FolderTree::Rebuild() {
  beginResetModel();
  mReadings.clear();
  mWithoutSpace.clear();
  FreeInBackground(std::move(mTop->children));
  mTop->children.clear();
  static_cast<void>(Guarded(u"ucBrowse.Rebuild", [this] { AddRoots(); }));
  Renumber(mTop->children, 0);
  endResetModel();
  if (!mWithoutSpace.empty()) mTimer.start(kTick, this);
}

void FolderTree::AddRoots() {
  struct SpecialFolder {
    std::int32_t csidl;
    FolderKind kind;
    const char* name;
  };
  constexpr SpecialFolder kSpecialFolders[] = {
      {CSIDL_PROFILE, FolderKind::Home, "Home"},
      {CSIDL_PERSONAL, FolderKind::Special, "Documents"},
      {CSIDL_DESKTOPDIRECTORY, FolderKind::Special, "Desktop"},
  };
  Machine& machine = TheMachine();
  std::vector<Text> known;
  for (const SpecialFolder& special : kSpecialFolders) {
    const Impatience impatience;
    const Text path = WithBackslash(machine.Desktop().SHGetFolderPathW(special.csidl));
    // A home without folders of its own names itself for them.
    if (path.empty() || std::ranges::find(known, path) != known.end()) continue;
    if (!MayExist(path)) continue;
    known.push_back(path);
    mTop->children.push_back(NewRoot(special.kind, path, QString::fromLatin1(special.name)));
  }
  const Text strings = machine.Drives().GetLogicalDriveStringsW();
  for (TextView rest = strings; !rest.empty();) {
    const std::size_t end = std::min(rest.find(u'\0'), rest.size());
    mWithoutSpace.push_back(static_cast<int>(mTop->children.size()));
    mTop->children.push_back(NewDrive(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  for (const auto& node : mTop->children) node->parent = mTop.get();
}

// One drive at a time: one that does not answer costs a moment each.
void FolderTree::AskFreeSpace() {
  const int row = mWithoutSpace.front();
  mWithoutSpace.pop_front();
  FolderNode& drive = *mTop->children[static_cast<std::size_t>(row)];
  DiskSpace space;
  const Impatience impatience;
  if (!TheMachine().Drives().GetDiskFreeSpaceExW(drive.name, space)) return;
  const auto bytes = static_cast<std::int64_t>(
      std::min<std::uint64_t>(space.freeBytesAvailableToCaller, 900'000'000'000'000));
  drive.root->space =
      ToQString(FormatByteSize(Currency::FromInteger(bytes))) + QStringLiteral(" free");
  const QModelIndex index = IndexOf(drive);
  emit dataChanged(index, index);
}

// ---- Paths and places ----

Text FolderTree::PathOf(const QModelIndex& index) const {
  const FolderNode* node = NodeOf(index);
  if (node == mTop.get() || node->kind == FolderKind::Note) return {};
  std::vector<TextView> names;
  for (; node->root == nullptr; node = node->parent) names.push_back(node->name);
  Text path = node->name;
  for (auto name = names.rbegin(); name != names.rend(); ++name) path.append(*name) += u'\\';
  return path;
}

bool FolderTree::IsDrive(const QModelIndex& root) const {
  return NodeOf(root)->kind == FolderKind::Drive;
}

QModelIndex FolderTree::RootWith(TextView path, bool isDrive) const {
  for (const auto& node : mTop->children)
    if ((node->kind == FolderKind::Drive) == isDrive && node->name == path) return IndexOf(*node);
  return {};
}

QModelIndex FolderTree::PlaceOf(TextView path, const QModelIndex& root) {
  const Text whole = WithBackslash(path);
  FolderNode* node = nullptr;
  for (const auto& candidate : mTop->children) {
    const bool isMeant =
        root.isValid() ? candidate.get() == NodeOf(root) : candidate->kind == FolderKind::Drive;
    if (isMeant && StartsWithRoot(whole, candidate->name)) node = candidate.get();
  }
  if (node == nullptr || !MayExist(whole)) return {};
  TextView rest = TextView(whole).substr(node->name.size());
  while (!rest.empty()) {
    const std::size_t end = rest.find(u'\\');
    if (end > 0) node = ChildNamed(*node, rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
  return IndexOf(*node);
}

QModelIndex FolderTree::NearestPlaceOf(TextView path, const QModelIndex& root) {
  TextView rest = path;
  while (!rest.empty()) {
    const QModelIndex place = PlaceOf(rest, root);
    if (place.isValid()) return place;
    rest = rest.substr(0, rest.size() - 1);
    rest = rest.substr(0, rest.rfind(u'\\') + 1);
  }
  return {};
}

// The one in its own letters, else one in others, else a new one.
FolderNode* FolderTree::ChildNamed(FolderNode& parent, TextView name) {
  FolderNode* similar = nullptr;
  for (const auto& child : parent.children) {
    if (child->kind == FolderKind::Note) continue;
    if (child->name == name) return child.get();
    if (similar == nullptr && CompareIgnoringCase(child->name, name) == 0) similar = child.get();
  }
  VolumeInformation volume;
  const FolderNode* root = &parent;
  while (root->root == nullptr) root = root->parent;
  const Impatience impatience;
  const bool foldsCase =
      TheMachine().Drives().GetVolumeInformationW(StripToRoot(root->name) + u"\\", volume) &&
      (volume.fileSystemFlags & FS_CASE_SENSITIVE) == 0;
  if (similar != nullptr && foldsCase) return similar;

  Nodes fresh;
  fresh.push_back(std::make_unique<FolderNode>());
  fresh.front()->name = name;
  const auto at = std::ranges::find_if(parent.children, [&](const auto& child) {
    return child->kind == FolderKind::Note || CompareNaturally(name, child->name) < 0;
  });
  const auto row = static_cast<std::size_t>(at - parent.children.begin());
  Insert(parent, row, std::move(fresh));
  return parent.children[row].get();
}

// ---- Opening and closing ----

void FolderTree::Open(const QModelIndex& index) {
  FolderNode& node = *NodeOf(index);
  if (node.state != FolderState::Unlisted || node.kind == FolderKind::Note) return;
  node.state = FolderState::Wanted;
  auto reading = std::make_unique<Reading>();
  reading->node = &node;
  mReadings.push_back(std::move(reading));
  SetNote(node, kReadingText);
  mTimer.start(kTick, this);
}

void FolderTree::Close(const QModelIndex& index) {
  FolderNode& node = *NodeOf(index);
  if (node.state == FolderState::Unlisted || node.state == FolderState::Listed) return;
  std::erase_if(mReadings, [&](const auto& reading) { return reading->node == &node; });
  RemoveNote(node);
  node.state = FolderState::Unlisted;
}

void FolderTree::SetNote(FolderNode& node, const QString& text) {
  RemoveNote(node);
  Nodes note;
  note.push_back(std::make_unique<FolderNode>());
  note.front()->kind = FolderKind::Note;
  note.front()->name = FromQString(text);
  Insert(node, node.children.size(), std::move(note));
}

void FolderTree::RemoveNote(FolderNode& node) {
  if (node.children.empty() || node.children.back()->kind != FolderKind::Note) return;
  const int row = static_cast<int>(node.children.size()) - 1;
  beginRemoveRows(IndexOf(node), row, row);
  node.children.pop_back();
  endRemoveRows();
}

void FolderTree::Insert(FolderNode& parent, std::size_t at, Nodes nodes) {
  if (nodes.empty()) return;
  for (const auto& node : nodes) node->parent = &parent;
  beginInsertRows(IndexOf(parent), static_cast<int>(at), static_cast<int>(at + nodes.size()) - 1);
  parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(at),
                         std::make_move_iterator(nodes.begin()),
                         std::make_move_iterator(nodes.end()));
  Renumber(parent.children, at);
  endInsertRows();
}

// ---- Reading ----

void FolderTree::timerEvent(QTimerEvent* event) {
  if (event->timerId() != mTimer.timerId()) return QAbstractItemModel::timerEvent(event);
  // The machine is the command's. Also a listing that has begun waits.
  if (CommandScope::IsRunning()) return;
  static_cast<void>(Guarded(u"ucBrowse.ReadOn", [this] {
    try {
      WorkFor(kWorkOfTick);
    } catch (...) {
      // Before the report, whose box lets this timer run.
      mReadings.clear();
      mWithoutSpace.clear();
      throw;
    }
  }));
  if (mReadings.empty() && mWithoutSpace.empty()) mTimer.stop();
}

void FolderTree::WorkFor(qint64 milliseconds) {
  QElapsedTimer clock;
  clock.start();
  if (!mWithoutSpace.empty()) AskFreeSpace();
  bool isMoving = true;
  while (isMoving && clock.elapsed() < milliseconds) {
    isMoving = false;
    for (std::size_t index = 0; index < mReadings.size() && clock.elapsed() < milliseconds;) {
      const std::size_t before = mReadings.size();
      isMoving = ReadOn(*mReadings[index]) || isMoving;
      if (mReadings.size() == before) ++index;
    }
  }
}

// True when something came; a reading that is through is no longer there.
bool FolderTree::ReadOn(Reading& reading) {
  if (reading.sorting != nullptr) {
    if (!reading.sorting->isDone.load(std::memory_order_acquire)) return false;
    Finish(reading);
    return true;
  }
  if (reading.listing == nullptr) {
    const auto isUnderWay = [](const auto& other) { return other->listing != nullptr; };
    if (std::ranges::count_if(mReadings, isUnderWay) >= kMostListings) return false;
    reading.node->state = FolderState::Reading;
    reading.listing = TheMachine().Find().ListInBackground(PathOf(IndexOf(*reading.node)));
  }
  bool hasCome = false;
  reading.end = reading.listing->Take([&](const WIN32_FIND_DATAW& entry) {
    hasCome = true;
    if (!IsShownFolder(entry)) return;
    reading.found.push_back(std::make_unique<FolderNode>());
    reading.found.back()->name = entry.cFileName;
  });
  if (reading.end == 0) return hasCome;
  reading.listing.reset();
  reading.sorting = SortInBackground(std::move(reading.found));
  return true;
}

// Puts the sorted folders between those that are there already, which a path has led through.
void FolderTree::Finish(Reading& reading) {
  FolderNode& node = *reading.node;
  Nodes found = std::move(reading.sorting->nodes);
  const std::size_t omitted = reading.sorting->omitted;
  const std::uint32_t end = reading.end;
  std::erase_if(mReadings, [&](const auto& other) { return other.get() == &reading; });
  RemoveNote(node);
  const bool isWhole = end == ERROR_NO_MORE_FILES || !found.empty();
  node.state = isWhole ? FolderState::Listed : FolderState::Failed;
  if (!isWhole) return SetNote(node, ToQString(GetSystemErrorText(end)));

  std::size_t at = 0;
  auto next = found.begin();
  while (at < node.children.size()) {
    const std::unique_ptr<FolderNode>& present = node.children[at];
    const auto border = std::lower_bound(next, found.end(), present, ComesBefore);
    const bool isKnown = border != found.end() && (*border)->name == present->name;
    Nodes before(std::make_move_iterator(next), std::make_move_iterator(border));
    next = isKnown ? border + 1 : border;
    const std::size_t count = before.size();
    Insert(node, at, std::move(before));
    at += count + 1;
  }
  Insert(node, at, Nodes(std::make_move_iterator(next), std::make_move_iterator(found.end())));
  if (omitted > 0) SetNote(node, QStringLiteral("%L1 more folders are not shown").arg(omitted));
  // An empty folder loses its mark, which is drawn with its own row.
  const QModelIndex index = IndexOf(node);
  emit dataChanged(index, index);
}

// ---- For the views ----

FolderNode* FolderTree::NodeOf(const QModelIndex& index) const {
  return index.isValid() ? static_cast<FolderNode*>(index.internalPointer()) : mTop.get();
}

QModelIndex FolderTree::IndexOf(const FolderNode& node) const {
  return &node == mTop.get() ? QModelIndex() : createIndex(node.row, 0, &node);
}

QModelIndex FolderTree::index(int row, int column, const QModelIndex& parent) const {
  const FolderNode& node = *NodeOf(parent);
  if (column != 0 || row < 0 || static_cast<std::size_t>(row) >= node.children.size()) return {};
  return createIndex(row, 0, node.children[static_cast<std::size_t>(row)].get());
}

QModelIndex FolderTree::parent(const QModelIndex& index) const {
  const FolderNode& node = *NodeOf(index);
  return node.parent != nullptr ? IndexOf(*node.parent) : QModelIndex();
}

int FolderTree::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(NodeOf(parent)->children.size());
}

int FolderTree::columnCount(const QModelIndex&) const {
  return 1;
}

bool FolderTree::hasChildren(const QModelIndex& parent) const {
  const FolderNode& node = *NodeOf(parent);
  if (node.kind == FolderKind::Note) return false;
  return !node.children.empty() || node.state == FolderState::Unlisted;
}

Qt::ItemFlags FolderTree::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  if (NodeOf(index)->kind == FolderKind::Note) return Qt::ItemNeverHasChildren;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QVariant FolderTree::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const FolderNode& node = *NodeOf(index);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      if (node.kind == FolderKind::Note) return ToQString(node.name);
      if (node.root == nullptr) return ToQString(TheMachine().Drives().ShownPath(node.name));
      if (node.root->space.isEmpty()) return node.root->name;
      return node.root->name + QStringLiteral("  \u2013  ") + node.root->space;
    case Qt::ToolTipRole:
      if (node.kind == FolderKind::Note) return ToQString(node.name);
      return ToQString(TheMachine().Drives().ShownPath(PathOf(index)));
    case Qt::DecorationRole: {
      static const QIcon home = IconFor(QStringLiteral("home"));
      static const QIcon drive = IconFor(QStringLiteral("drive"));
      static const QIcon folder = IconFor(QStringLiteral("folder"));
      if (node.kind == FolderKind::Note) return {};
      if (node.kind == FolderKind::Home) return home;
      return node.kind == FolderKind::Drive ? drive : folder;
    }
    default:
      return {};
  }
}

}  // namespace quillmarsh
