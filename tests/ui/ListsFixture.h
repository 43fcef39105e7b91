// SPDX-License-Identifier: MIT
// Results made by hand on a simulated machine, for the views of the two lists.
#pragma once

#include <QApplication>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include "fsobjects/cFSXFolderPathsList.h"
#include "search/ProgramFixture.h"
#include "ui/QtText.h"
#include "ui/ResultsLists.h"

namespace quillmarsh {

class ListsFixture : public ProgramFixture {
 protected:
  ListsFixture() {
    results.mCriteria.namesMatch = true;
    gViews.pump = &pump;
  }

  void AddRecord(TextView name, std::int64_t size, std::int32_t folder) {
    DupeFileUDT record;
    record.Name = results.mNames.Add(name);
    record.Size = Currency::FromInteger(size);
    record.CreatedDate = Date(40000 + static_cast<double>(results.mFileCount % 9973) / 7);
    record.LastModifiedDate = Date(41000 + static_cast<double>(results.mFileCount % 7919) / 3);
    record.ParentFolderIdx = folder;
    record.Attributes = FILE_ATTRIBUTE_ARCHIVE;
    results.mDupeFiles.push_back(record);
    results.mFileCount += 1;
  }
  // `groups` groups of `files` files each; sizes and names are not in their order.
  void Make(std::int32_t groups, std::int32_t files) {
    std::vector<std::int32_t> folders;
    for (std::int32_t folder = 0; folder < std::min(groups, 1000); ++folder)
      folders.push_back(gFolderPathsList->AddFolder(
          u"C:\\home\\someone\\pictures\\the year\\folder " + DecimalText(folder) + u"\\"));
    for (std::int32_t group = 0; group < groups; ++group) {
      const Text name = u"picture " + DecimalText(group * 7919LL % 1000003) + u".jpg";
      for (std::int32_t file = 0; file < files; ++file)
        AddRecord(name, 1 + group * 104729LL % 999983,
                  folders[static_cast<std::size_t>(group + file) % folders.size()]);
    }
    results.mFileMarked.assign(results.mDupeFiles.size(), false);
  }
  // As the end of a search does.
  void List(std::int32_t groups, std::int32_t files) {
    results.ClearGroups();
    {
      const cResultsList::UpdateLock lock(results.ulvwDupeGroups);
      for (std::int32_t group = 0; group < groups; ++group) {
        results.AddGroup(1 + group * files, files,
                         Currency::FromInteger(1000 + group * 15485863LL % 32452843));
        results.ulvwDupeGroups.Add(results.mGroupCount);
      }
    }
    results.DisplayDupeGroupDetails(1, true);
    results.ulvwDupeGroups.Select(0);
  }

  static void ClickHeading(const ResultsList& list, int column) {
    const QHeaderView& header = *list.header();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier,
                      {header.sectionViewportPosition(column) + 20, header.height() / 2});
  }
  static void ClickRow(const ResultsList& list, int row, int column = 1,
                       Qt::MouseButton button = Qt::LeftButton) {
    const QRect cell = list.visualRect(list.model()->index(row, column));
    QTest::mouseClick(list.viewport(), button, Qt::NoModifier, cell.center());
  }
  static QString Cell(const ResultsList& list, int row, int column) {
    return list.model()->index(row, column).data().toString();
  }
};

}  // namespace quillmarsh
