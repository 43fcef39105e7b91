// SPDX-License-Identifier: MIT
// What a file object makes of the operations that change the disk: their arguments, and what it
// knows afterwards. The operations themselves are scripted.
#include "FsObjectsFixture.h"
#include "fsobjects/FileOperations.h"
#include "fsobjects/cFSXFile.h"

namespace quillmarsh {
namespace {

class ScriptedOperations final : public FileOperations {
 public:
  bool answer = true;
  std::vector<std::string> calls;

  bool FSXFSO_CopyFSO(TextView source, TextView folder) override {
    return Note("copy", source, folder);
  }
  bool FSXFSO_MoveFSO(TextView source, TextView folder) override {
    return Note("move", source, folder);
  }
  bool FSXFSO_DeleteFSO(TextView path, bool permanently) override {
    return Note("delete", path, permanently ? u"for good" : u"to the bin");
  }
  bool FSXFSO_RenameFSO(TextView path, TextView newName) override {
    return Note("rename", path, newName);
  }
  bool SaveFilePropertyChanges(cFSXFile& file) override { return Note("save", file.Path(), u""); }

 private:
  bool Note(const char* verb, TextView a, TextView b) {
    calls.push_back(std::string(verb) + " " + ToUtf8(a) + " | " + ToUtf8(b));
    return answer;
  }
};

class FileOperationsOfTheObject : public FsObjectsFixture {
 protected:
  FileOperationsOfTheObject() {
    file.SetPath(u"C:\\d\\a.txt");
    file.SetAttributes(FILE_ATTRIBUTE_ARCHIVE);
    gFileOperations = &operations;
  }
  ~FileOperationsOfTheObject() override { gFileOperations = nullptr; }
  std::string LastCall() const { return operations.calls.empty() ? "" : operations.calls.back(); }

  ScriptedOperations operations;
  cFSXFile file;
};

TEST_F(FileOperationsOfTheObject, CopyIgnoresANameInTheDestination) {
  EXPECT_TRUE(file.CopyFile(u"D:\\to\\other.txt"));
  EXPECT_EQ(LastCall(), "copy C:\\d\\a.txt | D:\\to\\");
  EXPECT_EQ(file.Path(), u"C:\\d\\a.txt");
}

// Required as it is: the object takes the name that the destination has.
TEST_F(FileOperationsOfTheObject, MoveTakesTheWholeDestinationAsItsNewPath) {
  EXPECT_TRUE(file.MoveFile(u"D:\\to\\other.txt"));
  EXPECT_EQ(LastCall(), "move C:\\d\\a.txt | D:\\to\\");
  EXPECT_EQ(file.Path(), u"D:\\to\\other.txt");
  EXPECT_EQ(file.OriginalName(), u"other.txt");
  operations.answer = false;
  EXPECT_FALSE(file.MoveFile(u"E:\\x\\y.txt"));
  EXPECT_EQ(file.Path(), u"D:\\to\\other.txt");
}

TEST_F(FileOperationsOfTheObject, RenameChangesTheNameAndNotTheOriginalOne) {
  EXPECT_TRUE(file.RenameFile(u"b.txt"));
  EXPECT_EQ(LastCall(), "rename C:\\d\\a.txt | b.txt");
  EXPECT_EQ(file.Path(), u"C:\\d\\b.txt");
  EXPECT_EQ(file.OriginalName(), u"a.txt");
  operations.answer = false;
  EXPECT_FALSE(file.RenameFile(u"c.txt"));
  EXPECT_EQ(file.Name(), u"b.txt");
}

TEST_F(FileOperationsOfTheObject, DeletedFileForgetsItsPath) {
  operations.answer = false;
  EXPECT_FALSE(file.DeleteFile(false));
  EXPECT_EQ(LastCall(), "delete C:\\d\\a.txt | to the bin");
  EXPECT_EQ(file.Path(), u"C:\\d\\a.txt");
  operations.answer = true;
  EXPECT_TRUE(file.DeleteFile(true));
  EXPECT_EQ(LastCall(), "delete C:\\d\\a.txt | for good");
  EXPECT_EQ(file.Path(), u"");
  EXPECT_EQ(file.OriginalName(), u"");
}

// Required as it is: what reads as read-only is never written, a new read-only bit included.
TEST_F(FileOperationsOfTheObject, SaveWritesNothingForWhatReadsAsReadOnly) {
  machine.AddFile(u"C:\\d\\a.txt");
  file.SetIsReadOnly(true);
  EXPECT_FALSE(file.SaveChanges());
  EXPECT_EQ(LastCall(), "");
  EXPECT_EQ(file.Path(), u"C:\\d\\a.txt");
  file.SetIsReadOnly(false);
  EXPECT_TRUE(file.SaveChanges());
  EXPECT_EQ(LastCall(), "save C:\\d\\a.txt | ");
  EXPECT_EQ(file.Path(), u"") << "the object is not to be used again";
}

TEST_F(FileOperationsOfTheObject, WithoutTheOperationsEveryMemberFails) {
  gFileOperations = nullptr;
  EXPECT_FALSE(file.CopyFile(u"D:\\"));
  EXPECT_FALSE(file.MoveFile(u"D:\\x"));
  EXPECT_FALSE(file.DeleteFile(true));
  EXPECT_FALSE(file.RenameFile(u"x"));
  EXPECT_FALSE(file.SaveChanges());
  EXPECT_EQ(file.Path(), u"C:\\d\\a.txt");
}

}  // namespace
}  // namespace quillmarsh
