// SPDX-License-Identifier: MIT
// The user's locale as pictures.
#include "platform/posix/LocalePictures.h"

#include <gtest/gtest.h>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

TEST(LocalePictures, AreMadeOfTheLibrarysFormats) {
  struct Row {
    const char* format;
    const char16_t* picture;
  };
  const Row rows[] = {
      {"%m/%d/%y", u"MM/dd/yyyy"},
      {"%d.%m.%Y", u"dd.MM.yyyy"},
      {"%-d. %-m. %Y", u"d. M. yyyy"},
      {"%e de %B de %Y", u"d' de 'MMMM' de 'yyyy"},
      {"%Y\xE5\xB9\xB4%m\xE6\x9C\x88", u"yyyy\u5E74MM\u6708"},
      {"%H:%M:%S %Z", u"HH:mm:ss"},
      {"%r", u"hh:mm:ss tt"},
      {"%T", u"HH:mm:ss"},
      {"%l o'clock", u"h' o''clock'"},
      {"100%% %", u"100%"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(PictureOf(row.format, "%I:%M:%S %p"), row.picture) << row.format;
}

TEST(LocalePictures, HaveEveryTextThatTheProgramAsksForEvenWithoutALocale) {
  ::setenv("LC_ALL", "no_SUCH.locale", 1);
  const auto texts = ReadLocaleTexts();
  ::unsetenv("LC_ALL");
  EXPECT_EQ(texts.at(LOCALE_SSHORTDATE), u"MM/dd/yyyy");
  EXPECT_EQ(texts.at(LOCALE_STIMEFORMAT), u"HH:mm:ss");
  EXPECT_EQ(texts.at(LOCALE_SDATE), u"/");
  EXPECT_EQ(texts.at(LOCALE_STIME), u":");
  EXPECT_EQ(texts.at(LOCALE_SDAYNAME1), u"Monday");
  EXPECT_EQ(texts.at(LOCALE_SDAYNAME1 + 6), u"Sunday");
  EXPECT_EQ(texts.at(LOCALE_SABBREVMONTHNAME1 + 11), u"Dec");
}

}  // namespace
}  // namespace quillmarsh
