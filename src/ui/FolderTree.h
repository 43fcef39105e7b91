// SPDX-License-Identifier: MIT
// The folders of the machine for a tree view: special folders and drives, and below them what has
// been opened. A folder is listed in the background and shown when all of it is there, in natural
// order. Left out are hidden folders, links to folders and mount points, none of which a search
// enters. Owns its nodes and the listings that are under way. While a command runs it asks the
// machine for nothing.
#pragma once

#include <QAbstractItemModel>
#include <QBasicTimer>
#include <deque>
#include <memory>
#include <vector>

#include "base/Text.h"

namespace quillmarsh {

struct FolderNode;

class FolderTree final : public QAbstractItemModel {
  Q_OBJECT
 public:
  explicit FolderTree(QObject* parent = nullptr);
  ~FolderTree() override;

  // Special folders and drives as they are now, with nothing opened.
  void Rebuild();

  // With a final backslash; empty for a row that is no folder.
  [[nodiscard]] Text PathOf(const QModelIndex& index) const;
  // The place of a folder below a root (an index without a parent, or an invalid one for its
  // drive); folders on the way that are not there yet are put in. Invalid when the path does not
  // exist or leads through a link; what does not answer at once counts as there.
  [[nodiscard]] QModelIndex PlaceOf(TextView path, const QModelIndex& root = {});
  // PlaceOf for the nearest folder above that is there.
  [[nodiscard]] QModelIndex NearestPlaceOf(TextView path, const QModelIndex& root);
  // Whether a root is a drive and no special folder.
  [[nodiscard]] bool IsDrive(const QModelIndex& root) const;
  // The root of that kind with this path; invalid when there is none.
  [[nodiscard]] QModelIndex RootWith(TextView path, bool isDrive) const;

  // A view has opened or closed a folder. A closed one that is still being listed is given up.
  void Open(const QModelIndex& index);
  void Close(const QModelIndex& index);

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent) const override;
  [[nodiscard]] bool hasChildren(const QModelIndex& parent) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  struct Reading;
  using Nodes = std::vector<std::unique_ptr<FolderNode>>;

  [[nodiscard]] FolderNode* NodeOf(const QModelIndex& index) const;
  [[nodiscard]] QModelIndex IndexOf(const FolderNode& node) const;
  void AddRoots();
  [[nodiscard]] FolderNode* ChildNamed(FolderNode& parent, TextView name);
  void Insert(FolderNode& parent, std::size_t at, Nodes nodes);
  void RemoveNote(FolderNode& node);
  void SetNote(FolderNode& node, const QString& text);
  void WorkFor(qint64 milliseconds);
  [[nodiscard]] bool ReadOn(Reading& reading);
  void Finish(Reading& reading);
  void AskFreeSpace();

  std::unique_ptr<FolderNode> mTop;  // above the roots; never shown
  std::vector<std::unique_ptr<Reading>> mReadings;
  std::deque<int> mWithoutSpace;  // rows of drives whose free space is not known yet
  QBasicTimer mTimer;             // runs while anything is left to do
};

}  // namespace quillmarsh
