// SPDX-License-Identifier: MIT
// The count members of a folder: of the folder itself, and of the whole tree below it, depth first,
// with a fresh object for each folder on the way that is read once and dropped again. A failure
// ends the member with its zero value.
#include "base/CaseMapping.h"
#include "frame/ErrorReporting.h"
#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/TextTable.h"
#include "frame/Views.h"
#include "fsobjects/cFSXFolder.h"

namespace quillmarsh {
namespace {

constexpr TextView kLineBreak = u"\r\n";

void ShowFolderPermissionDenied(TextView source, TextView path) {
  const Text lineBreak(kLineBreak);
  const Text text = LoadResString(157) + u":70" + lineBreak +                     //
                    LoadResString(158) + u":" + LoadResString(705) + lineBreak +  //
                    LoadResString(706) + u":" + Text(source) + lineBreak +        //
                    lineBreak +                                                   //
                    UpperCaseText(LoadResString(688)) + u" - " + LoadResString(707) + u":" +
                    lineBreak + lineBreak +  //
                    u"\"" + Text(path) + u"\"" + lineBreak + lineBreak + LoadResString(192);
  ShowMessageBox({text, LoadResString(708), MessageBoxIcon::Exclamation});
}

// Cannot happen once a folder was read; stands for a status that was written from outside.
bool IsThere(const void* collection, TextView name, TextView member) {
  if (collection != nullptr) return true;
  ShowMessageBox({Text(name) + u" object is Nothing in cFSXFolder." + Text(member) + u"()",
                  u"Unexpected Error", MessageBoxIcon::Exclamation});
  return false;
}

std::int32_t Sum(std::int32_t a, std::int32_t b) {
  const std::int64_t sum = std::int64_t{a} + b;
  if (sum > INT32_MAX) throw RuntimeError(runtime_error::Overflow);
  return static_cast<std::int32_t>(sum);
}

bool IsJunctionWord(std::int32_t attributes) {
  constexpr std::int32_t Junction = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
  return (attributes & Junction) == Junction;
}

}  // namespace

class FolderCounting {
 public:
  explicit FolderCounting(cFSXFolder& folder) : mFolder(folder) {}

  // Runs a member's body under its handler: a denied permission has a box of its own, all else goes
  // to the reporter.
  template <typename Result, typename Body>
  Result Member(TextView name, Body&& body) {
    const Text source = u"cFSXFolder." + Text(name);
    Result result{};
    Guarded(
        source,
        [&] {
          try {
            result = body();
          } catch (const RuntimeError& error) {
            if (error.Number() != runtime_error::PermissionDenied) throw;
            ShowFolderPermissionDenied(source, mFolder.Path());
          }
        },
        [&] { return u"Folder Path: " + Text(kLineBreak) + mFolder.Path(); });
    return result;
  }

  // False when there is nothing to count.
  bool Read() {
    if (mFolder.mEnumerationStatus == cFSXFolder::NotEnumerated) mFolder.Enumerate(false);
    return !mFolder.ErrorsDuringEnumeration();
  }
  bool HasFiles(TextView member) const {
    return IsThere(mFolder.mobjFiles.get(), u"mobjFiles", member);
  }
  bool HasSubFolders(TextView member) const {
    return IsThere(mFolder.mobjSubFoldersAndJunctions.get(), u"mobjSubFoldersAndJunctions", member);
  }

  std::int32_t GetSubFolderAndJunctionCount() const {
    return mFolder.mobjSubFoldersAndJunctions->Count();
  }
  std::int32_t GetSubFolderCount() const { return CountOfKind(u"GetSubFolderCount", false); }
  std::int32_t GetJunctionCount() const { return CountOfKind(u"GetJunctionCount", true); }

  std::int32_t GetFolderTreeFileCount() {
    return Tree<std::int32_t>(
        u"GetFolderTreeFileCount", [&] { return mFolder.NumFiles(false); },
        [](cFSXFolder& sub) { return sub.NumFiles(true); }, Sum);
  }
  std::int32_t GetFolderTreeSubFolderCount() {
    return Tree<std::int32_t>(
        u"GetFolderTreeSubFolderCount", [&] { return GetSubFolderCount(); },
        [](cFSXFolder& sub) { return sub.NumSubFolders(true); }, Sum);
  }
  std::int32_t GetFolderTreeJunctionCount() {
    return Tree<std::int32_t>(
        u"GetFolderTreeJunctionCount", [&] { return GetJunctionCount(); },
        [](cFSXFolder& sub) { return sub.NumJunctionPoints(true); }, Sum);
  }
  std::int32_t GetFolderTreeSubFolderAndJunctionCount() {
    return Tree<std::int32_t>(
        u"GetFolderTreeSubFolderAndJunctionCount", [&] { return GetSubFolderAndJunctionCount(); },
        [](cFSXFolder& sub) { return sub.NumSubFoldersAndJunctions(true); }, Sum);
  }
  double GetFolderTreeSize() {
    return Tree<double>(
        u"GetFolderTreeSize", [&] { return mFolder.Size(false); },
        [](cFSXFolder& sub) { return sub.Size(true); }, std::plus<double>());
  }

  cFSXFolderCounts OwnCounts() const {
    cFSXFolderCounts counts{
        true, mFolder.mobjFiles->Count(), GetSubFolderCount(), GetJunctionCount(), mFolder.mSize,
        {}};
    if (mFolder.mListingError != 0) counts.failedPath = mFolder.Path();
    return counts;
  }

  // The first folder that failed ends the walk with the sums so far.
  cFSXFolderCounts GetAllFolderTreeCounts() {
    cFSXFolderCounts sums = OwnCounts();
    const bool whole = Guarded(u"cFSXFolder.GetAllFolderTreeCounts", [&] {
      ForEachSubFolder([&](cFSXFolder& sub) {
        const cFSXFolderCounts counts = sub.CountOfAllFSObjects(true);
        sums.files = Sum(sums.files, counts.files);
        sums.subFolders = Sum(sums.subFolders, counts.subFolders);
        sums.junctions = Sum(sums.junctions, counts.junctions);
        sums.size += counts.size;
        if (!counts.succeeded || sums.failedPath.empty()) sums.failedPath = counts.failedPath;
        sums.succeeded = counts.succeeded;
        return counts.succeeded;
      });
    });
    sums.succeeded = sums.succeeded && whole;
    return sums;
  }

 private:
  // A list of one level holds every entry's attributes, so no objects are made to count them.
  std::int32_t CountOfKind(TextView name, bool junctions) const {
    std::int32_t count = 0;
    Guarded(u"cFSXFolder." + Text(name), [&] {
      const cFSXSubFolders& folders = *mFolder.mobjSubFoldersAndJunctions;
      for (std::int32_t index = 1; index <= folders.Count(); ++index)
        count += IsJunctionWord(folders.Attributes(index)) == junctions ? 1 : 0;
    });
    return count;
  }

  // Until the body answers false. A stop ends it without touching the folders that are left.
  template <typename Body>
  void ForEachSubFolder(Body&& body) {
    const std::shared_ptr<cFSXSubFolders> folders = mFolder.mobjSubFoldersAndJunctions;
    for (std::int32_t index = 1; index <= folders->Count(); ++index) {
      DoEvents_Fast();
      if (gUserAbort) return;
      const std::shared_ptr<cFSXFolder> sub = folders->Item(index);
      if (sub == nullptr) continue;
      sub->EnterFrom(mFolder);
      if (!body(*sub)) return;
    }
  }

  template <typename Result, typename Own, typename OfSubFolder, typename Add>
  Result Tree(TextView name, Own&& own, OfSubFolder&& ofSubFolder, Add&& add) {
    Result total{};
    const bool whole = Guarded(u"cFSXFolder." + Text(name), [&] {
      total = own();
      ForEachSubFolder([&](cFSXFolder& sub) {
        total = add(total, ofSubFolder(sub));
        return true;
      });
    });
    return whole ? total : Result{};
  }

  cFSXFolder& mFolder;
};

cFSXFolderCounts cFSXFolder::CountOfAllFSObjects(bool recursive) {
  FolderCounting counting(*this);
  return counting.Member<cFSXFolderCounts>(u"CountOfAllFSObjects", [&]() -> cFSXFolderCounts {
    if (!counting.Read() && mEnumerationStatus == Failed) return {.failedPath = Path()};
    if (!counting.HasFiles(u"CountOfAllFSObjects") ||
        !counting.HasSubFolders(u"CountOfAllFSObjects"))
      return {};
    return recursive ? counting.GetAllFolderTreeCounts() : counting.OwnCounts();
  });
}

std::int32_t cFSXFolder::NumFiles(bool recursive) {
  FolderCounting counting(*this);
  return counting.Member<std::int32_t>(u"NumFiles", [&] {
    if (!counting.Read() || !counting.HasFiles(u"NumFiles")) return 0;
    if (!recursive) return mobjFiles->Count();
    if (mTreeFileCount == -1) mTreeFileCount = counting.GetFolderTreeFileCount();
    return mTreeFileCount;
  });
}

std::int32_t cFSXFolder::NumSubFolders(bool recursive) {
  FolderCounting counting(*this);
  return counting.Member<std::int32_t>(u"NumSubFolders", [&] {
    if (!counting.Read() || !counting.HasSubFolders(u"NumSubFolders")) return 0;
    if (!recursive) return counting.GetSubFolderCount();
    if (mTreeSubFolderCount == -1) mTreeSubFolderCount = counting.GetFolderTreeSubFolderCount();
    return mTreeSubFolderCount;
  });
}

std::int32_t cFSXFolder::NumJunctionPoints(bool recursive) {
  FolderCounting counting(*this);
  return counting.Member<std::int32_t>(u"NumJunctionPoints", [&] {
    if (!counting.Read() || !counting.HasSubFolders(u"NumJunctionPoints")) return 0;
    return recursive ? counting.GetFolderTreeJunctionCount() : counting.GetJunctionCount();
  });
}

std::int32_t cFSXFolder::NumSubFoldersAndJunctions(bool recursive) {
  FolderCounting counting(*this);
  return counting.Member<std::int32_t>(u"NumSubFoldersAndJunctions", [&] {
    if (!counting.Read() || !counting.HasSubFolders(u"NumSubFoldersAndJunctions")) return 0;
    return recursive ? counting.GetFolderTreeSubFolderAndJunctionCount()
                     : counting.GetSubFolderAndJunctionCount();
  });
}

double cFSXFolder::Size(bool recursive) {
  FolderCounting counting(*this);
  return counting.Member<double>(u"Size", [&] {
    if (!counting.Read()) return 0.0;
    if (!recursive) return mSize;
    if (mTreeSize == -1.0) mTreeSize = counting.GetFolderTreeSize();
    return mTreeSize;
  });
}

}  // namespace quillmarsh
