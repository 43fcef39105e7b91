// SPDX-License-Identifier: MIT
// Rows on finding and on attributes by path.
#include <algorithm>
#include <set>
#include <thread>

#include "platform/ConformanceRows.h"

namespace quillmarsh {

namespace {

constexpr std::int64_t someMoment = 133'000'000'123'000'000;  // a whole tenth of a second

struct Found {
  HANDLE search = INVALID_HANDLE;
  WIN32_FIND_DATAW entry;
  std::uint32_t code = 0;
};

// One look for a pattern; the search is closed again.
Found FindOnce(MachineUnderTest& ground, TextView pattern) {
  Found found;
  found.search = ground.Get().Find().FindFirstFileW(pattern, found.entry);
  if (found.search == INVALID_HANDLE)
    found.code = ground.Get().GetLastError();
  else
    EXPECT_TRUE(ground.Get().Find().FindClose(found.search));
  return found;
}

// 0, or the code with which the attributes could not be had.
std::uint32_t AttributesCode(MachineUnderTest& ground, TextView path) {
  const bool failed = ground.Get().Files().GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES;
  return failed ? ground.Get().GetLastError() : 0;
}

void EmptyFolder(MachineUnderTest& ground) {
  ground.MakeFolder(u"empty");
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"empty\\*"));
  EXPECT_EQ(listing.dotsFirst, 2);
  EXPECT_TRUE(listing.names.empty());
  EXPECT_EQ(listing.endCode, ERROR_NO_MORE_FILES);
}

void EntriesOnce(MachineUnderTest& ground) {
  std::multiset<Text> expected;
  for (int i = 0; i < 3000; ++i) {
    const Text name = u"entry " + DecimalText(i);
    if (i % 10 == 0)
      ground.MakeFolder(u"many\\" + name);
    else
      ground.MakeFile(u"many\\" + name, "x");
    expected.insert(name);
  }
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"many\\*"));
  EXPECT_EQ(listing.dotsFirst, 2);
  EXPECT_EQ(std::multiset<Text>(listing.names.begin(), listing.names.end()), expected);
  EXPECT_EQ(listing.endCode, ERROR_NO_MORE_FILES);
}

// Takes until the end; its code in `end`.
std::multiset<Text> TakenInBackground(MachineUnderTest& ground, TextView folder,
                                      std::uint32_t& end) {
  std::multiset<Text> names;
  const auto listing = ground.Get().Find().ListInBackground(folder);
  end = 0;
  while (end == 0) {
    end = listing->Take([&](const WIN32_FIND_DATAW& entry) { names.emplace(entry.cFileName); });
    std::this_thread::yield();
  }
  return names;
}

void ListedInBackground(MachineUnderTest& ground) {
  std::multiset<Text> expected = {u".", u".."};
  for (int i = 0; i < 1200; ++i) {
    const Text name = u"entry " + DecimalText(i);
    ground.MakeFile(u"beside\\" + name, "x");
    expected.insert(name);
  }
  std::uint32_t end = 0;
  EXPECT_EQ(TakenInBackground(ground, ground.PathOf(u"beside\\"), end), expected);
  EXPECT_EQ(end, ERROR_NO_MORE_FILES);
  EXPECT_TRUE(TakenInBackground(ground, ground.PathOf(u"no folder\\"), end).empty());
  EXPECT_EQ(end, ERROR_PATH_NOT_FOUND);
  // One that is given up upsets no other.
  static_cast<void>(ground.Get().Find().ListInBackground(ground.PathOf(u"beside\\")));
  EXPECT_EQ(ListFolder(ground.Get(), ground.PathOf(u"beside\\*")).names.size(), 1200U);
}

void FoldersTold(MachineUnderTest& ground) {
  ground.MakeFolder(u"mixed\\a folder");
  ground.MakeFile(u"mixed\\the file", "12345");
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"mixed\\*"));
  ASSERT_EQ(listing.names.size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    const bool isFolder = (listing.records[i].dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    EXPECT_EQ(isFolder, listing.names[i] == u"a folder");
    if (!isFolder) {
      EXPECT_EQ(listing.records[i].nFileSizeLow, 5U);
    }
  }
}

void MissingThings(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "x");
  struct Row {
    TextView relative;
    std::uint32_t find;
    std::uint32_t attributes;
  };
  const Row rows[] = {
      {u"no entry", ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND},
      {u"no folder\\entry", ERROR_PATH_NOT_FOUND, ERROR_PATH_NOT_FOUND},
      {u"no\\folder\\at\\all", ERROR_PATH_NOT_FOUND, ERROR_PATH_NOT_FOUND},
      {u"file\\below\\deeper", ERROR_PATH_NOT_FOUND, ERROR_PATH_NOT_FOUND},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(ToUtf8(row.relative));
    EXPECT_EQ(FindOnce(ground, ground.PathOf(row.relative)).code, row.find);
    EXPECT_EQ(AttributesCode(ground, ground.PathOf(row.relative)), row.attributes);
  }
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"no folder\\*")).code, ERROR_PATH_NOT_FOUND);
}

void ListingAFile(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "x");
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"file\\*")).code, ERROR_DIRECTORY);
}

Text PathOnMissingDrive(MachineUnderTest& ground) {
  const Text drives = ground.Get().Drives().GetLogicalDriveStringsW();
  Text missing = u"Z:\\x";
  while (drives.find(missing[0]) != Text::npos) --missing[0];
  return missing;
}

void SearchOnMissingDrive(MachineUnderTest& ground) {
  EXPECT_EQ(FindOnce(ground, PathOnMissingDrive(ground)).code, ERROR_PATH_NOT_FOUND);
}

void MissingDriveOrShare(MachineUnderTest& ground) {
  EXPECT_EQ(AttributesCode(ground, PathOnMissingDrive(ground)), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(AttributesCode(ground, u"\\\\nobody\\share\\x"), ERROR_BAD_NETPATH);
}

void WrongNames(MachineUnderTest& ground) {
  for (const TextView name : {u"a?b", u"a*b", u"a<b", u"a>b", u"a|b", u"a\"b", u"a\u0001b"}) {
    SCOPED_TRACE(ToUtf8(name));
    EXPECT_EQ(AttributesCode(ground, ground.PathOf(name)), ERROR_INVALID_NAME);
  }
  EXPECT_EQ(AttributesCode(ground, u""), ERROR_PATH_NOT_FOUND);
}

void SingleEntry(MachineUnderTest& ground) {
  ground.MakeFile(u"some file.txt", "abc");
  ground.SetWritten(u"some file.txt", someMoment);
  WIN32_FIND_DATAW entry;
  const HANDLE search = ground.Get().Find().FindFirstFileW(ground.PathOf(u"some file.txt"), entry);
  ASSERT_NE(search, INVALID_HANDLE);
  EXPECT_EQ(entry.cFileName, u"some file.txt");
  EXPECT_EQ(entry.nFileSizeLow, 3U);
  EXPECT_EQ(entry.ftLastWriteTime.Ticks(), someMoment);
  EXPECT_FALSE(ground.Get().Find().FindNextFileW(search, entry));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_NO_MORE_FILES);
  EXPECT_TRUE(ground.Get().Find().FindClose(search));
}

void WriteTimesListed(MachineUnderTest& ground) {
  ground.MakeFile(u"times\\file", "abc");
  ground.SetWritten(u"times\\file", someMoment);
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"times\\*"));
  ASSERT_EQ(listing.records.size(), 1U);
  EXPECT_EQ(listing.records[0].ftLastWriteTime.Ticks(), someMoment);
  EXPECT_GT(listing.records[0].ftCreationTime.Ticks(), 0);
}

void LongSizes(MachineUnderTest& ground) {
  const std::uint64_t size = 0x1'8000'0001;
  ground.MakeLongFile(u"long\\file", size);
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"long\\*"));
  ASSERT_EQ(listing.records.size(), 1U);
  EXPECT_EQ(listing.records[0].nFileSizeHigh, 1U);
  EXPECT_EQ(listing.records[0].nFileSizeLow, 0x8000'0001U);
}

void UnusualNames(MachineUnderTest& ground) {
  const TextView names[] = {u"\u00FCbung \u20AC.txt",
                            u"\U0001F4BE disk",
                            u"100%;a&b=c,d'e.f.g",
                            u"\u65E5\u672C\u8A9E",
                            u"no-dot",
                            u"[x](1)~$#@!{}",
                            u"no-dot.",
                            u"no-dot ",
                            u"NUL.txt"};
  std::set<Text> expected;
  for (const TextView name : names) {
    ground.MakeFile(u"names\\" + Text(name), "x");
    expected.emplace(name);
  }
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"names\\*"));
  EXPECT_EQ(std::set<Text>(listing.names.begin(), listing.names.end()), expected);
  for (const Text& name : listing.names)
    EXPECT_EQ(AttributesCode(ground, ground.PathOf(u"names\\" + name)), 0U) << ToUtf8(name);
}

void DeepPaths(MachineUnderTest& ground) {
  Text relative = u"deep";
  for (int i = 0; i < 12; ++i) relative += u"\\" + Text(200, u'd');
  ground.MakeFile(relative + u"\\file.txt", "deep down");
  const Text prefixed = u"\\\\?\\" + ground.PathOf(relative);
  EXPECT_EQ(ListFolder(ground.Get(), prefixed + u"\\*").names, std::vector<Text>{u"file.txt"});
  EXPECT_EQ(AttributesCode(ground, prefixed + u"\\file.txt"), 0U);
  EXPECT_EQ(FindOnce(ground, prefixed + u"\\file.txt").entry.nFileSizeLow, 9U);
}

void PrefixMeansTheSame(MachineUnderTest& ground) {
  ground.MakeFile(u"folder\\file", "x");
  for (const TextView relative : {u"folder", u"folder\\", u"folder\\file"}) {
    const std::uint32_t plain = ground.Get().Files().GetFileAttributesW(ground.PathOf(relative));
    EXPECT_NE(plain, INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(ground.Get().Files().GetFileAttributesW(u"\\\\?\\" + ground.PathOf(relative)), plain);
  }
}

void RemovedWhileListing(MachineUnderTest& ground) {
  for (int i = 0; i < 20; ++i) ground.MakeFile(u"going\\" + DecimalText(i), "x");
  WIN32_FIND_DATAW entry;
  const HANDLE search = ground.Get().Find().FindFirstFileW(ground.PathOf(u"going\\*"), entry);
  ASSERT_NE(search, INVALID_HANDLE);
  std::multiset<Text> seen;
  bool removed = false;
  do {
    if (entry.cFileName == u"." || entry.cFileName == u"..") continue;
    const Text name(entry.cFileName);
    seen.insert(name);
    if (removed) continue;
    // The one just told and one that is still to come, or was told: neither may upset the rest.
    ground.Remove(u"going\\" + name);
    ground.Remove(u"going\\" + Text(name == u"7" ? u"8" : u"7"));
    removed = true;
  } while (ground.Get().Find().FindNextFileW(search, entry));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_NO_MORE_FILES);
  ground.Get().Find().FindClose(search);
  for (int i = 0; i < 20; ++i) {
    const std::size_t times = seen.count(DecimalText(i));
    const bool mayBeGone = i == 7 || i == 8;
    EXPECT_TRUE(times == 1 || (mayBeGone && times == 0)) << i << " came " << times << " times";
  }
}

void ClosedSearch(MachineUnderTest& ground) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = ground.Get().Find().FindFirstFileW(ground.Base() + u"\\*", entry);
  ASSERT_NE(search, INVALID_HANDLE);
  EXPECT_TRUE(ground.Get().Find().FindClose(search));
  EXPECT_FALSE(ground.Get().Find().FindNextFileW(search, entry));
  EXPECT_EQ(ground.Get().GetLastError(), ERROR_INVALID_HANDLE);
  EXPECT_FALSE(ground.Get().Find().FindClose(search));
  EXPECT_FALSE(ground.Get().Find().FindClose(INVALID_HANDLE));
}

void TwoListingsAtOnce(MachineUnderTest& ground) {
  ground.MakeFile(u"outer\\inner\\c", "x");
  ground.MakeFile(u"outer\\b", "x");
  WIN32_FIND_DATAW outer;
  const HANDLE search = ground.Get().Find().FindFirstFileW(ground.PathOf(u"outer\\*"), outer);
  ASSERT_NE(search, INVALID_HANDLE);
  std::set<Text> names;
  do {
    EXPECT_EQ(ListFolder(ground.Get(), ground.PathOf(u"outer\\inner\\*")).names,
              std::vector<Text>{u"c"});
    names.emplace(outer.cFileName);
  } while (ground.Get().Find().FindNextFileW(search, outer));
  ground.Get().Find().FindClose(search);
  EXPECT_EQ(names, (std::set<Text>{u".", u"..", u"b", u"inner"}));
}

void FinalBackslashFindsNothing(MachineUnderTest& ground) {
  ground.MakeFolder(u"folder");
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"folder\\")).code, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"folder")).code, 0U);
}

void KindsByAttributes(MachineUnderTest& ground) {
  ground.MakeFile(u"folder\\file", "x");
  const auto attributes = [&](TextView relative) {
    return ground.Get().Files().GetFileAttributesW(ground.PathOf(relative));
  };
  EXPECT_NE(attributes(u"folder") & FILE_ATTRIBUTE_DIRECTORY, 0U);
  EXPECT_NE(attributes(u"folder\\") & FILE_ATTRIBUTE_DIRECTORY, 0U);
  EXPECT_EQ(attributes(u"folder\\file") & FILE_ATTRIBUTE_DIRECTORY, 0U);
  EXPECT_NE(attributes(u"folder\\file") & FILE_ATTRIBUTE_ARCHIVE, 0U);
  EXPECT_EQ(attributes(u"folder\\file"),
            FindOnce(ground, ground.PathOf(u"folder\\file")).entry.dwFileAttributes);
}

void ReadOnlyBit(MachineUnderTest& ground) {
  ground.MakeFile(u"file", "x");
  ground.SetReadOnly(u"file", true);
  EXPECT_NE(
      ground.Get().Files().GetFileAttributesW(ground.PathOf(u"file")) & FILE_ATTRIBUTE_READONLY,
      0U);
  EXPECT_NE(
      FindOnce(ground, ground.PathOf(u"file")).entry.dwFileAttributes & FILE_ATTRIBUTE_READONLY,
      0U);
}

void FolderLinkDescribed(MachineUnderTest& ground) {
  ground.MakeFile(u"target\\file", "x");
  ground.MakeFolderLink(u"links\\link", u"target");
  constexpr std::uint32_t linkBits = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  const Found found = FindOnce(ground, ground.PathOf(u"links\\link"));
  ASSERT_EQ(found.code, 0U);
  EXPECT_EQ(found.entry.dwFileAttributes & linkBits, linkBits);
  const FolderListing listing = ListFolder(ground.Get(), ground.PathOf(u"links\\*"));
  ASSERT_EQ(listing.names, std::vector<Text>{u"link"});
  EXPECT_EQ(listing.records[0].dwFileAttributes & linkBits, linkBits);
  EXPECT_EQ(ground.Get().Files().GetFileAttributesW(ground.PathOf(u"links\\link")) & linkBits,
            linkBits);
}

void FolderLinkTold(MachineUnderTest& ground) {
  ground.MakeFolder(u"target");
  ground.MakeFolderLink(u"link", u"target");
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"link")).entry.dwReserved0, IO_REPARSE_TAG_MOUNT_POINT);
  EXPECT_NE(ground.Get().Files().GetFileAttributesW(ground.PathOf(u"link\\")) &
                FILE_ATTRIBUTE_REPARSE_POINT,
            0U);
}

void FolderLinkIsNoMountPoint(MachineUnderTest& ground) {
  ground.MakeFolder(u"target");
  ground.MakeFolderLink(u"link", u"target");
  EXPECT_EQ(ground.Get().Drives().GetVolumeNameForVolumeMountPointW(ground.PathOf(u"link\\")), u"");
  EXPECT_EQ(ground.Get().Drives().GetVolumeNameForVolumeMountPointW(ground.PathOf(u"target\\")),
            u"");
}

void KeptOut(MachineUnderTest& ground) {
  if (!ground.CanKeepOut()) GTEST_SKIP() << "nobody can be kept out here";
  ground.MakeFile(u"shut\\file", "x");
  ground.KeepOut(u"shut");
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"shut\\*")).code, ERROR_ACCESS_DENIED);
  EXPECT_EQ(FindOnce(ground, ground.PathOf(u"shut\\file")).code, ERROR_ACCESS_DENIED);
  EXPECT_EQ(AttributesCode(ground, ground.PathOf(u"shut\\file")), ERROR_ACCESS_DENIED);
  EXPECT_EQ(AttributesCode(ground, ground.PathOf(u"shut")), 0U);
}

constexpr ConformanceRow rows[] = {
    {"cFSXFolder.Enumerate", "an empty folder lists two dot entries first and ends with 18",
     EmptyFolder},
    {"cFSXFolder.Enumerate", "every entry of a large folder is listed exactly once", EntriesOnce},
    {"cFSXFolder.Enumerate", "the directory bit parts folders from files", FoldersTold},
    {"cFSXFile.LoadFileInfo", "missing entries and missing folders have codes of their own",
     MissingThings},
    {"cFSXFolder.Enumerate", "the listing of a file is 267", ListingAFile},
    {"cFSXFile.LoadFileInfo", "a search on a missing drive is 3", SearchOnMissingDrive},
    {"cFSXFileSystemObject.FileExists", "a missing drive is 3 and a missing server 53",
     MissingDriveOrShare},
    {"cFSXFileSystemObject.FileExists", "a name that no entry can have is 123 and no name is 3",
     WrongNames},
    {"cFSXFile.LoadFileInfo", "a search for a name gives that one entry", SingleEntry},
    {"cFSXFiles.Add", "listed write times are UTC ticks", WriteTimesListed},
    {"HiLoToCurr", "a listed size above 4 GiB comes in two halves", LongSizes},
    {"cFSXFiles.Item", "unusual names come back exactly and can be asked for", UnusualNames},
    {"ToLongPath", "a path of 2400 characters works behind the long prefix", DeepPaths},
    {"ToLongPath", "the long prefix changes no answer", PrefixMeansTheSame},
    {"cFSXFolder.Enumerate", "entries that vanish during a listing upset no other",
     RemovedWhileListing},
    {"ucBrowse", "a listing in the background gives the same entries and ends", ListedInBackground},
    {"cFSXFolder.Enumerate", "a closed search is an invalid handle", ClosedSearch},
    {"CopyFolder", "listings may be open one inside the other", TwoListingsAtOnce},
    {"cFSXFolder.GetJunctionPointType", "a search with a final backslash finds nothing",
     FinalBackslashFindsNothing},
    {"cFSXFileSystemObject.FolderExists", "attributes by path tell files from folders",
     KindsByAttributes},
    {"cFSXFile.IsReadOnly", "a read-only file bears bit 1", ReadOnlyBit},
    {"cFSXFolder.IsJunction", "a folder link is described and not followed", FolderLinkDescribed},
    {"cFSXFolder.IsJunction", "a folder link tells its tag and is one behind a backslash too",
     FolderLinkTold},
    {"cFSXFolder.GetJunctionPointType", "a folder link has no volume name",
     FolderLinkIsNoMountPoint},
    {"cFSXFileSystemObject.FileExists", "a folder that keeps one out fails with 5", KeptOut},
};

}  // namespace

std::span<const ConformanceRow> FindingRows() {
  return rows;
}

}  // namespace quillmarsh
