// SPDX-License-Identifier: MIT
// The two commands of the History menu: their boxes, and what they leave on the disk.
#include "removal/HistoryFixture.h"
#include "removal/history/HistoryCommands.h"
#include "removal/history/RemovalJournal.h"

namespace quillmarsh {
namespace {

class HistoryCommands : public HistoryFixture {
 protected:
  void ExpectBox(TextView text, TextView title, MessageBoxIcon icon) {
    const MessageBoxRequest box = TakeBox();
    EXPECT_EQ(box.text, text) << ToUtf8(box.text);
    EXPECT_EQ(box.title, title) << ToUtf8(box.title);
    EXPECT_EQ(box.icon, icon);
  }
};

TEST_F(HistoryCommands, ViewOpensTheFileInNotepad) {
  ViewHistory();
  ExpectBox(u"There is no History to view yet.", u"View History", MessageBoxIcon::Information);
  EXPECT_TRUE(machine.Started().empty());

  AddCharacters(5);
  Flush();
  ViewHistory();
  ASSERT_EQ(machine.Started().size(), 1U);
  const StartedProgram& started = machine.Started().front();
  EXPECT_EQ(started.verb, u"Open");
  EXPECT_EQ(started.file, u"notepad.exe");
  EXPECT_EQ(started.parameters, u"\"" + Text(kLogPath) + u"\"");
  EXPECT_EQ(started.show, 1);
}

TEST_F(HistoryCommands, ViewTellsWhereTheFileLiesWhenNothingOpensIt) {
  AddCharacters(5);
  Flush();
  const Text problem =
      u"Unable to open the History file in Notepad\r\n\r\nHistory file location: " + Text(kLogPath);
  machine.SetShellAnswer(32);
  ViewHistory();
  ExpectBox(problem, u"View History Problem", MessageBoxIcon::Exclamation);
  machine.SetShellAnswer(33);
  ViewHistory();
  EXPECT_EQ(machine.Started().size(), 1U);
  hook.Fail({Operation::ShellExecuteW}, ERROR_FILE_NOT_FOUND);
  ViewHistory();
  ExpectBox(problem, u"View History Problem", MessageBoxIcon::Exclamation);
}

TEST_F(HistoryCommands, ClearDeletesTheFileAndLeavesTheMemory) {
  ClearHistory();
  ExpectBox(u"History successfully cleared.", u"Clear History", MessageBoxIcon::Information);

  AddCharacters(9);
  Flush();
  AddCharacters(5);
  ASSERT_TRUE(cRemovalJournal(RemoveMethod::Delete).Begin());
  ClearHistory();
  ExpectBox(u"History successfully cleared.", u"Clear History", MessageBoxIcon::Information);
  EXPECT_FALSE(machine.Exists(kLogPath));
  EXPECT_FALSE(machine.Exists(JournalFileSpec()));
  Flush();
  EXPECT_EQ(OnDisk(), "\xFF\xFE" + WideBytes(u"\txx\r\n"));
}

TEST_F(HistoryCommands, ClearTellsWhereTheFileLiesWhenItStays) {
  AddCharacters(5);
  Flush();
  const HANDLE held = machine.HoldOpen(kLogPath, 0);
  ClearHistory();
  machine.LetGo(held);
  ExpectBox(u"Unable to delete the History file\r\n\r\nHistory file location: " + Text(kLogPath),
            u"Clear History Problem", MessageBoxIcon::Exclamation);
  EXPECT_TRUE(machine.Exists(kLogPath));
}

}  // namespace
}  // namespace quillmarsh
