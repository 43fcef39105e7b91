// SPDX-License-Identifier: MIT
// Paths below the DUPES folder, moving that folder, and the choice of the removal method.
#include "fsobjects/FsObjectsFixture.h"
#include "removal/DupesFolder.h"
#include "removal/ScriptedPickers.h"
#include "settings/OptionsFolder.h"
#include "settings/clsDupeSettings.h"

namespace quillmarsh {
namespace {

TEST(PathInDupesFolder, BearsTheRootAndKeepsTheRest) {
  gFileSpecParser = std::make_unique<cFileSpecParser>();
  struct Row {
    TextView source;
    TextView expected;
  };
  const Row rows[] = {
      {u"D:\\Music\\a.mp3", u"C:\\DUPES\\[D DRIVE]\\Music\\a.mp3"},
      {u"d:\\Music\\A.mp3", u"C:\\DUPES\\[D DRIVE]\\Music\\A.mp3"},
      {u"D:\\a", u"C:\\DUPES\\[D DRIVE]\\a"},
      {u"\\\\nas\\public\\docs\\b.txt", u"C:\\DUPES\\[nas_public SHARE]\\docs\\b.txt"},
      {u"\\\\nas\\public\\b.txt", u"C:\\DUPES\\[nas_public SHARE]\\b.txt"},
      {u"", u""},
      {u"a.txt", u""},
      {u"\\a.txt", u""},
      {u"\\\\nas", u""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ToUtf8(PathInDupesFolder(row.source, u"C:\\DUPES\\")), ToUtf8(row.expected));
    EXPECT_EQ(PathInDupesFolder(row.source, u"C:\\DUPES"), row.expected);
  }
  gFileSpecParser.reset();
}

class DupesFolder : public FsObjectsFixture, private RemovalOptionsView {
 protected:
  DupesFolder() {
    gDupeSettings = std::make_unique<clsDupeSettings>();
    machine.SetCurrentFolder(u"C:\\here");
    machine.AddFolder(u"C:\\new\\DUPES");
    machine.AddFolder(u"C:\\old\\DUPES");
    mDupesFolderPath = u"C:\\old\\DUPES\\";
  }
  ~DupesFolder() override {
    gDupeSettings.reset();
    mDupesFolderPath.clear();
  }
  void CheckRemovalOption(std::int32_t index, bool isChecked) override {
    checked.at(static_cast<std::size_t>(index)) = isChecked;
  }
  void Choose(std::int32_t index) { mnuRemovalOptions_Click(index, *this); }

  std::vector<bool> checked{false, false, true, false};
  ScriptedPickers person;
};

TEST_F(DupesFolder, MovesToAConfirmedPlaceAndStaysOtherwise) {
  using enum MessageBoxResult;
  struct Row {
    const char* name;
    std::deque<Text> places;
    std::deque<MessageBoxResult> answers;
    std::uint32_t fails;  // of making a folder
    std::size_t dialogs;
    TextView end;  // title of the last box, empty for none
    TextView path;
  };
  const Row rows[] = {
      {"cancelled", {}, {}, 0, 1, u"", u"C:\\old\\DUPES\\"},
      {"the same place in other letters", {u"C:\\OLD"}, {}, 0, 1, u"", u"C:\\old\\DUPES\\"},
      {"not confirmed", {u"C:\\new"}, {Cancel}, 0, 1, u"", u"C:\\old\\DUPES\\"},
      {"another one after all",
       {u"C:\\x", u"C:\\new"},
       {No, Yes},
       0,
       2,
       u"Folder Location",
       u"C:\\new\\DUPES\\"},
      {"made", {u"C:\\new\\a\\"}, {Yes}, 0, 1, u"Folder Location", u"C:\\new\\a\\DUPES\\"},
      {"not made",
       {u"C:\\new\\b"},
       {Yes},
       ERROR_ACCESS_DENIED,
       1,
       u"Error Creating DUPES Folder",
       u"C:\\old\\DUPES\\"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    mDupesFolderPath = u"C:\\old\\DUPES\\";
    person.paths = row.places;
    person.asked.clear();
    answers = row.answers;
    if (row.fails != 0) hook.Fail({Operation::CreateDirectoryW}, row.fails);
    mnuOptionsDupesFolderLocation_Click();
    EXPECT_EQ(person.asked, std::vector<std::string>(
                                row.dialogs,
                                "The DUPES folder will be created inside of the folder you select. "
                                "| C:\\old\\"));
    for (std::size_t i = 0; i < row.answers.size(); ++i) {
      const MessageBoxRequest box = TakeBox();
      EXPECT_EQ(box.title, u"Please Confirm");
      EXPECT_EQ(box.buttons, MessageBoxButtons::YesNoCancel);
      EXPECT_EQ(box.text.substr(0, 26), u"New DUPES folder path:\r\nC:");
    }
    const Text end = row.end.empty() ? Text() : TakeBox().title;
    EXPECT_EQ(ToUtf8(end), ToUtf8(row.end));
    EXPECT_EQ(mDupesFolderPath, row.path);
    EXPECT_TRUE(machine.Exists(mDupesFolderPath));
  }
  for (const TextView marked : {u"C:\\old\\DUPES", u"C:\\new\\DUPES", u"C:\\new\\a\\DUPES"})
    EXPECT_TRUE(machine.Exists(Text(marked) + u"\\.quillmarsh-dupes")) << ToUtf8(marked);
  ChangeDupesFolderPath(u"");
  EXPECT_EQ(TakeBox().text, u"Unable to create new folder path for duplicates.");
  EXPECT_EQ(mDupesFolderPath, u"C:\\old\\DUPES\\");
}

TEST_F(DupesFolder, TheMethodIsChosenAndTheOtherFolderAskedForEachTime) {
  Choose(0);
  EXPECT_EQ(checked, (std::vector<bool>{true, false, false, false}));
  EXPECT_EQ(gDupeSettings->RemoveMethod(), RemoveMethod::Delete);
  Choose(3);
  EXPECT_EQ(TakeBox().text, u"No folder was selected. Remove method not changed.");
  EXPECT_EQ(checked, (std::vector<bool>{true, false, false, false}));
  EXPECT_EQ(gDupeSettings->RemoveMethod(), RemoveMethod::Delete);
  person.paths = {u"C:\\new"};
  Choose(3);
  EXPECT_EQ(checked, (std::vector<bool>{false, false, false, true}));
  EXPECT_EQ(gDupeSettings->RemoveMethod(), RemoveMethod::MoveToOtherFolder);
  EXPECT_EQ(gDupeSettings->UserDefinedMoveFolderPath(), u"C:\\new\\");
  Choose(3);
  TakeBox();
  const std::string prompt = "Specify the folder where the files will be moved to | ";
  EXPECT_EQ(person.asked, (std::vector<std::string>{prompt + "C:\\here", prompt + "C:\\here",
                                                    prompt + "C:\\new\\"}));
  Choose(4);
  Choose(-1);
  EXPECT_EQ(gDupeSettings->RemoveMethod(), RemoveMethod::MoveToOtherFolder);
}

}  // namespace
}  // namespace quillmarsh
