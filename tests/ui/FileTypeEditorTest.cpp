// SPDX-License-Identifier: MIT
// The file type editor: masks that are added, edited and removed, and which way out keeps them.
#include <QPushButton>

#include "OptionDialogsFixture.h"

namespace quillmarsh {
namespace {

class FileTypeEditor : public OptionDialogsFixture {
 protected:
  FileTypeEditor() { Masks(u"Audio Files").SetFileMasksList(u"*.aac<:>*.mp3<:>*.mp3"); }

  static cCommonFileType& Masks(TextView name) {
    const std::int32_t index = gCommonFileTypes->GetCommonFileTypeIndexBasedOnKey(name);
    return *gCommonFileTypes->CommonFileTypes().Item(index);
  }
  static std::string AudioMasks() { return ToUtf8(Masks(u"Audio Files").FileMasksList()); }
  static void ShowDialog(std::function<void(QDialog&)> inside) {
    InNextBox<QDialog>(std::move(inside));
    ShowEditCFTListDialog(nullptr);
  }
  static void SelectRow(QDialog& box, int row) {
    auto& list = Find<QAbstractItemView>(box, "lstCFTDetails");
    list.setCurrentIndex(list.model()->index(row, 0));
  }
  static std::string Rows(QDialog& box) { return RowsOf(box, "lstCFTDetails"); }
  static void Add(QDialog& box) { Press(box, "mb_cmdAddCFTDetail"); }
};

TEST_F(FileTypeEditor, ShowsTheMasksOfATypeAndWhatTheyStandFor) {
  Masks(u"Image Files").SetFileMasksList(u"*.gif<:><:>*.png");
  Masks(u"Video Files").SetFileMasksList(u"");
  ShowDialog([](QDialog& box) {
    EXPECT_EQ(box.windowTitle(), "Edit File Types");
    ExpectAllAreNamed(box);
    auto& types = Find<QComboBox>(box, "cboSFTs");
    EXPECT_EQ(types.count(), 4);
    EXPECT_EQ(types.currentText(), "Audio Files");
    EXPECT_EQ(Rows(box), "*.aac *.mp3 *.mp3");
    auto& list = Find<QAbstractItemView>(box, "lstCFTDetails");
    EXPECT_EQ(list.model()->index(1, 1).data().toString(), "MP3 File");
    EXPECT_EQ(list.model()->index(1, 0).data(Qt::AccessibleTextRole).toString(), "*.mp3\tMP3 File");
    types.setCurrentText(QStringLiteral("Image Files"));
    EXPECT_EQ(Rows(box), "*.gif *.png") << "an empty mask is none";
    EXPECT_EQ(FocusOf(box), "lstCFTDetails");
    EXPECT_EQ(list.currentIndex().row(), 0);
    types.setCurrentText(QStringLiteral("Video Files"));
    EXPECT_EQ(Rows(box), "");
    types.setCurrentText(QStringLiteral("Document Files"));
    EXPECT_EQ(list.model()->rowCount(), 282);
    Press(box, "mb_cmdCancel");
  });
}

TEST_F(FileTypeEditor, AMaskIsAddedNormalisedOrRefused) {
  struct Row {
    TextView answer;
    const char* told;  // a part of it, or nothing
    const char* rows;
  };
  constexpr Row kRows[] = {
      {u"", "", "*.aac *.mp3 *.mp3"},
      {u"   ", "", "*.aac *.mp3 *.mp3"},
      {u".mp9", "", "*.aac *.mp3 *.mp3 *.mp9"},
      {u"*.MP9", "This File Extension already exists.", "*.aac *.mp3 *.mp3 *.mp9"},
      {u"mp9", "should contain a 'dot' character", "*.aac *.mp3 *.mp3 *.mp9"},
      {u"*.", "should contain text after the 'dot'", "*.aac *.mp3 *.mp3 *.mp9"},
      {u"*.*", "is not allowed", "*.aac *.mp3 *.mp3 *.mp9"},
      {u"*.x*", "", "*.aac *.mp3 *.mp3 *.mp9 *.x*"},
  };
  ShowDialog([&](QDialog& box) {
    for (const Row& row : kRows) {
      inputs.answers = {Text(row.answer)};
      Add(box);
      if (*row.told != '\0') {
        const MessageBoxRequest told = TakeBox();
        EXPECT_NE(ToUtf8(told.text).find(row.told), std::string::npos) << ToUtf8(told.text);
        EXPECT_EQ(told.title, u"Add File Extension");
      }
      EXPECT_EQ(Rows(box), row.rows) << ToUtf8(row.answer);
    }
    EXPECT_EQ(inputs.questions.front(),
              "Add File Extension | Enter the new File Extension.\n\nUse the format "
              "[ASTERISK][DOT][EXTENSION] | *.ext");
    Find<QComboBox>(box, "cboSFTs").setCurrentIndex(-1);
    Add(box);
    ExpectTold(1040, 1102);
    Press(box, "mb_cmdOK");
  });
  EXPECT_EQ(AudioMasks(), "*.aac<:>*.mp3<:>*.mp3<:>*.mp9<:>*.x*");
}

TEST_F(FileTypeEditor, AMaskIsEditedInItsPlaceAndRemovedWithoutAQuestion) {
  ShowDialog([&](QDialog& box) {
    Press(box, "mb_cmdEditCFTDetail");
    ExpectTold(1105, 1101);
    Press(box, "mb_cmdRemoveCFTDetail");
    ExpectTold(1105, 1103);

    SelectRow(box, 0);
    inputs.answers = {u"*.aac", u"*.mp3", u"aac", u".flac"};
    Press(box, "mb_cmdEditCFTDetail");  // unchanged
    Press(box, "mb_cmdEditCFTDetail");
    ExpectTold(1108, 1101);
    Press(box, "mb_cmdEditCFTDetail");
    EXPECT_EQ(TakeBox().title, u"Edit File Extension");
    EXPECT_EQ(Rows(box), "*.aac *.mp3 *.mp3");
    auto& list = Find<QAbstractItemView>(box, "lstCFTDetails");
    emit list.doubleClicked(list.currentIndex());
    EXPECT_EQ(Rows(box), "*.flac *.mp3 *.mp3");
    EXPECT_EQ(inputs.questions.back(),
              "Edit File Extension | Make your desired changes to this File Extension | *.aac");

    SelectRow(box, 2);
    QTest::keyClick(&list, Qt::Key_Delete);
    EXPECT_EQ(Rows(box), "*.flac *.mp3");
    EXPECT_EQ(list.currentIndex().row(), 1);
    Press(box, "mb_cmdRemoveCFTDetail");
    Press(box, "mb_cmdRemoveCFTDetail");
    EXPECT_EQ(Rows(box), "");
    QTest::keyClick(&list, Qt::Key_Delete);
    ExpectTold(1105, 1103);
    inputs.answers = {u"*.ogg"};
    Add(box);
    Press(box, "mb_cmdOK");
  });
  EXPECT_EQ(AudioMasks(), "*.ogg");
}

TEST_F(FileTypeEditor, OkAndTheFrameKeepChangesCancelAndEscDropThem) {
  struct Row {
    const char* name;
    std::function<void(QDialog&)> leave;
    bool keeps;
  };
  const Row rows[] = {
      {"Cancel", [](QDialog& box) { Press(box, "mb_cmdCancel"); }, false},
      {"Esc", [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }, false},
      {"OK", [](QDialog& box) { Press(box, "mb_cmdOK"); }, true},
      {"the frame", [](QDialog& box) { box.close(); }, true},
  };
  for (const Row& row : rows) {
    Masks(u"Audio Files").SetFileMasksList(u"*.aac<:>*.mp3");
    Masks(u"Video Files").SetFileMasksList(u"*.avi<:>*.mov");
    ShowDialog([&](QDialog& box) {
      inputs.answers = {u"*.new", u"*.neu"};
      Add(box);
      Find<QComboBox>(box, "cboSFTs").setCurrentIndex(3);
      Add(box);
      Find<QComboBox>(box, "cboSFTs").setCurrentIndex(0);
      EXPECT_EQ(Rows(box), "*.aac *.mp3 *.new") << "a switch of types keeps it";
      EXPECT_EQ(AudioMasks(), "*.aac<:>*.mp3") << "a copy is worked on";
      row.leave(box);
    });
    EXPECT_EQ(AudioMasks(), row.keeps ? "*.aac<:>*.mp3<:>*.new" : "*.aac<:>*.mp3") << row.name;
    EXPECT_EQ(Masks(u"Video Files").FileMasks().Count(), row.keeps ? 3 : 2) << row.name;
  }
}

TEST_F(FileTypeEditor, MasksComeBackFromTheOptionsFileAndAnEmptyTypeWithItsDefaults) {
  ShowDialog([&](QDialog& box) {
    inputs.answers = {u".mp9"};
    Add(box);
    Find<QComboBox>(box, "cboSFTs").setCurrentIndex(2);
    auto& list = Find<QAbstractItemView>(box, "lstCFTDetails");
    while (list.model()->rowCount() > 0) QTest::keyClick(&list, Qt::Key_Delete);
    Press(box, "mb_cmdOK");
  });
  EXPECT_EQ(Masks(u"Image Files").FileMasks().Count(), 0);
  SaveProgramOptionsToIniFile();
  Restart();
  ShowDialog([](QDialog& box) {
    EXPECT_EQ(Rows(box), "*.aac *.mp3 *.mp3 *.mp9");
    Find<QComboBox>(box, "cboSFTs").setCurrentIndex(2);
    EXPECT_EQ(Find<QAbstractItemView>(box, "lstCFTDetails").model()->rowCount(), 816);
    Press(box, "mb_cmdCancel");
  });
}

}  // namespace
}  // namespace quillmarsh
