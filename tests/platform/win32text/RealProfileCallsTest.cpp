// SPDX-License-Identifier: MIT
// The profile calls against those of the system: reads of the same file, and the bytes of two files
// that both change in the same way.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "RealCalls.h"
#include "base/CaseMapping.h"
#include "platform/ProfileFiles.h"
#include "platform/win32/Win32Machine.h"

namespace quillmarsh {
namespace {

using win32::Narrow;
using win32::Wide;

// The last ones of each table are not asked of Wine. It folds the case of the letters of ASCII
// alone, keeps blanks behind the name of a section that is asked for, takes a section without a
// name for the lines before the first heading, and a comment for a key.
constexpr TextView kSections[] = {u"S",      u"s",  u"T",  u"a b", u"a]b",
                                  u"\u00E9", u" S", u"S ", u"",    u"\u00C9"};
constexpr std::size_t kSectionsOfWine = 7;
constexpr TextView kKeys[] = {u"k",   u"K",  u"key", u"n n", u"\u00FC", u" k",
                              u"k\t", u"#k", u"",    u"[x",  u";k",     u"\u00DC"};
constexpr std::size_t kKeysOfWine = 10;
constexpr TextView kValues[] = {
    u"",      u"v",       u"1",           u"-12",        u"+7",         u"0x1F",
    u"-0x10", u"0X1F",    u"12abc",       u"4294967297", u"2147483648", u"99999999999999999999",
    u"- 1",   u"--1",     u"010",         u"0b101",      u"-0o17",      u"0x",
    u"\"v\"", u"'v'",     u"\"12\"",      u"\"open",     u"\"a'",       u"\"",
    u"\"\"",  u"'\"v\"'", u"\" q \"",     u" in ",       u"\tt\t",      u"a=b",
    u"v ;c",  u"[v]",     u"\u00E9\u20AC"};

Text WithoutBlanks(TextView text) {
  const std::size_t begin = std::min(text.find_first_not_of(u" \t"), text.size());
  const std::size_t end = text.find_last_not_of(u" \t") + 1;
  return Text(text.substr(begin, std::max(begin, end) - begin));
}

auto Sections() {
  return std::span(kSections).first(IsWine() ? kSectionsOfWine : std::size(kSections));
}
auto Keys() {
  return std::span(kKeys).first(IsWine() ? kKeysOfWine : std::size(kKeys));
}

Text AnyLine(Dice& dice) {
  constexpr TextView blanks[] = {u"", u"", u"", u" ", u"  ", u"\t", u"\v"};
  const auto blank = [&] { return Text(dice.Of(blanks)); };
  const auto part = [&](auto choices) { return blank().append(dice.Of(choices)).append(blank()); };
  switch (dice.Below(12)) {
    case 0:
      return blank();
    case 1:
      return blank() + u"no sign" + blank();
    case 2:
      return blank() + u"[open";
    case 3:
      return blank() + u";comment" + part(std::span(kValues));
    case 4:
      return blank() + u";k=v";
    case 5:
    case 6:
      return blank() + u"[" + part(Sections()) + u"]" + blank();
    default:
      return part(Keys()) + u"=" + part(std::span(kValues));
  }
}

std::string InUtf16(TextView text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFFU);
    bytes += static_cast<char>(unit >> 8U);
  }
  return bytes;
}

// Holds what Wine leaves as it is when it writes, which it does with the whole file, without blank
// lines and blanks around the parts of a line and with one kind of line break. It also takes a line
// without a sign for a key, puts a new key behind comments, removes them with their section, and
// does otherwise with names that stand twice: a tidy file has none of that.
std::string TidyFile(Dice& dice) {
  Text text;
  for (std::size_t lines = dice.Below(3); lines > 0; --lines) text += u";comment\r\n";
  std::set<Text> taken;
  for (std::size_t lines = dice.Below(16); lines > 0; --lines) {
    const bool isHeading = text.find(u'[') == Text::npos || dice.OneIn(4);
    const Text name = WithoutBlanks(isHeading ? dice.Of(Sections()) : dice.Of(Keys()));
    const bool isNew = taken.insert(UpperCaseText(name) + (isHeading ? u"]" : u"=")).second;
    if (!isNew || name.empty()) continue;
    if (isHeading) {
      text.append(u"[").append(name).append(u"]\r\n");
      std::erase_if(taken, [](const Text& known) { return known.ends_with(u'='); });
    } else {
      text.append(name).append(u"=").append(WithoutBlanks(dice.Of(kValues))).append(u"\r\n");
    }
  }
  return dice.OneIn(4) ? InUtf16(text) : ToCodePage1252(text);
}

std::string RandomNoise(Dice& dice) {
  std::string noise(dice.Below(300), '\0');
  for (char& byte : noise)
    byte = dice.OneIn(2) ? dice.Of(std::string_view("[]=\r\n;Sk"))
                         : static_cast<char>(1 + dice.Below(255));
  return noise;
}

std::string AnyFile(Dice& dice) {
  if (dice.OneIn(40)) return {};
  if (dice.OneIn(30)) return RandomNoise(dice);
  constexpr TextView breaks[] = {u"\r\n", u"\n", u"\r"};
  const bool isMixed = dice.OneIn(3);
  const TextView usual = dice.OneIn(2) ? breaks[0] : dice.Of(breaks);
  Text text;
  for (std::size_t lines = dice.Below(16); lines > 0; --lines) {
    text += text.empty() && dice.OneIn(2) ? u"[S]" : AnyLine(dice);
    const bool isLeftOpen = lines == 1 && dice.OneIn(4);
    if (!isLeftOpen) text += isMixed ? dice.Of(breaks) : usual;
  }
  if (dice.OneIn(6)) return InUtf16(text);
  // Wine knows these marks, which Windows does not.
  const bool isMarked = !IsWine() && dice.OneIn(8);
  return (!isMarked ? "" : dice.OneIn(2) ? "\xEF\xBB\xBF" : "\xFE\xFF") + ToCodePage1252(text);
}

std::string ShownBytes(std::string_view bytes) {
  Text text;
  for (const char byte : bytes) text += static_cast<unsigned char>(byte);
  return Shown(text);
}

class RealProfileTest : public testing::Test {
 protected:
  RealProfileTest()
      : mFolder(std::filesystem::temp_directory_path() /
                ("profiles" + std::to_string(::GetCurrentProcessId()))) {
    std::filesystem::create_directories(mFolder);
  }
  void SetUp() override {
    if (::GetACP() != 1252) GTEST_SKIP() << "8-bit files are of another code page here";
  }
  ~RealProfileTest() override { std::filesystem::remove_all(mFolder); }

  // The files of each case have names of their own, since the system keeps what it has read.
  void SetFiles(std::uint32_t seed, const std::string& bytes) {
    mReal = (mFolder / ("real" + std::to_string(seed) + ".ini")).wstring();
    mOurs = (mFolder / ("ours" + std::to_string(seed) + ".ini")).wstring();
    for (const std::wstring& path : {mReal, mOurs})
      std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
  }
  void RemoveFiles() {
    for (const std::wstring& path : {mReal, mOurs}) ::DeleteFileW(path.c_str());
  }
  static std::string Bytes(const std::wstring& path) {
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    if (!file) return "(none)";
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static Text RealValue(TextView section, TextView key, const std::wstring& path) {
    std::wstring buffer(1000, L'?');
    buffer.resize(::GetPrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(), L"(none)",
                                             buffer.data(), 1000, path.c_str()));
    return Narrow(buffer);
  }

  Win32Machine machine;
  std::wstring mReal;
  std::wstring mOurs;

 private:
  std::filesystem::path mFolder;
};

struct Answer {
  std::uint32_t count = 0;
  Text buffer;
  std::int32_t number = 0;

  friend bool operator==(const Answer&, const Answer&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    return out << answer.count << " " << Shown(answer.buffer) << " " << answer.number;
  }
};

TEST_F(RealProfileTest, ReadsAnswerWhatTheSystemAnswers) {
  // Wine takes quotes off a default and leaves one that is all blanks as it is.
  constexpr TextView defaults[] = {u"", u"d", u"d  ", u" d\t ", u"\"q\"", u" "};
  const auto usedDefaults = std::span(defaults).first(IsWine() ? 4 : std::size(defaults));
  constexpr std::size_t sizes[] = {0, 1, 2, 3, 5, 100, 16384};
  FewFailures failures;
  for (std::uint32_t seed = 1; seed <= 800 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    const std::string bytes = AnyFile(dice);
    SetFiles(seed, bytes);
    for (int read = 0; read < 12; ++read) {
      const Text section(dice.Of(Sections()));
      const Text key(dice.Of(Keys()));
      const Text otherwise(dice.Of(usedDefaults));
      const std::size_t size = dice.Of(sizes);
      std::wstring buffer(size + 1, L'?');
      Answer real;
      real.count = ::GetPrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(),
                                              Wide(otherwise).c_str(), buffer.data(),
                                              static_cast<DWORD>(size), mReal.c_str());
      real.buffer = Narrow(buffer).substr(0, real.count + 1);
      real.number = static_cast<std::int32_t>(
          ::GetPrivateProfileIntW(Wide(section).c_str(), Wide(key).c_str(), 99, mReal.c_str()));
      Answer ours;
      ours.buffer.assign(size + 1, u'?');
      ours.count = GetPrivateProfileStringW(machine, section, key, otherwise,
                                            std::span(ours.buffer).first(size), Narrow(mOurs));
      ours.buffer.resize(std::min<std::size_t>(ours.count, size) + 1);
      ours.number = GetPrivateProfileIntW(machine, section, key, 99, Narrow(mOurs));
      // Wine cuts a value before it takes its quotes off.
      const bool isCutByWine =
          IsWine() && ours.count + 2 >= size && bytes.find_first_of("\"'") != bytes.npos;
      if (isCutByWine ? ours.number == real.number : ours == real) continue;
      failures.Count();
      ADD_FAILURE() << "seed " << seed << " read " << read << ": [" << Shown(section) << "] "
                    << Shown(key) << " default " << Shown(otherwise) << " size " << size
                    << "\n  of " << ShownBytes(bytes) << "\n  is " << real << "\n  and not "
                    << ours;
      break;
    }
    RemoveFiles();
  }
}

enum class Changes { All, Values };

// One change of both files; what it was, for the message.
class RealProfileChangeTest : public RealProfileTest {
 protected:
  std::string Change(Dice& dice, Changes changes) {
    // Wine looks for a name with its blanks, and writes a value without the leading ones.
    const auto used = [](TextView text) { return IsWine() ? WithoutBlanks(text) : Text(text); };
    const Text section = used(dice.Of(Sections()));
    const Text key = used(dice.Of(Keys()));
    const Text value = used(dice.Of(kValues));
    const Text entries = key + u"=" + value + Text(1, u'\0') + u"z=1" + Text(2, u'\0');
    const std::wstring wideSection = Wide(section);
    const std::wstring wideKey = Wide(key);
    std::string what;
    BOOL real = FALSE;
    bool ours = false;
    switch (changes == Changes::All ? dice.Below(7) : 3) {
      case 0:
        what = "without section " + Shown(section);
        real = ::WritePrivateProfileStringW(wideSection.c_str(), nullptr, nullptr, mReal.c_str());
        ours = WritePrivateProfileStringW(machine, section, {}, {}, Narrow(mOurs));
        break;
      case 1:
        what = "with section " + Shown(section) + " of " + Shown(entries);
        real = ::WritePrivateProfileSectionW(wideSection.c_str(), Wide(entries).c_str(),
                                             mReal.c_str());
        ours = WritePrivateProfileSectionW(machine, section, entries, Narrow(mOurs));
        break;
      case 2:
        what = "without [" + Shown(section) + "] " + Shown(key);
        real = ::WritePrivateProfileStringW(wideSection.c_str(), wideKey.c_str(), nullptr,
                                            mReal.c_str());
        ours = WritePrivateProfileStringW(machine, section, key, {}, Narrow(mOurs));
        break;
      default:
        what = "with [" + Shown(section) + "] " + Shown(key) + " = " + Shown(value);
        real = ::WritePrivateProfileStringW(wideSection.c_str(), wideKey.c_str(),
                                            Wide(value).c_str(), mReal.c_str());
        ours = WritePrivateProfileStringW(machine, section, key, value, Narrow(mOurs));
    }
    EXPECT_EQ(ours, real != FALSE) << what;
    ::WritePrivateProfileStringW(nullptr, nullptr, nullptr, mReal.c_str());
    return what;
  }
};

TEST_F(RealProfileChangeTest, WritesLeaveTheBytesThatTheSystemLeaves) {
  FewFailures failures;
  for (std::uint32_t seed = 1; seed <= 500 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    SetFiles(seed, IsWine() ? TidyFile(dice) : AnyFile(dice));
    if (dice.OneIn(20)) RemoveFiles();
    for (int step = 0; step < 6; ++step) {
      const std::string before = Bytes(mReal);
      const std::string what = Change(dice, Changes::All);
      const std::string real = Bytes(mReal);
      const std::string ours = Bytes(mOurs);
      if (ours == real) continue;
      failures.Count();
      ADD_FAILURE() << "seed " << seed << " step " << step << ": " << ShownBytes(before) << "\n  "
                    << what << "\n  is " << ShownBytes(real) << "\n  and not " << ShownBytes(ours);
      break;
    }
    RemoveFiles();
  }
}

TEST_F(RealProfileChangeTest, TheSystemReadsWhatWasWrittenAsItReadsItsOwn) {
  FewFailures failures;
  for (std::uint32_t seed = 1; seed <= 500 && !failures.Enough(); ++seed) {
    Dice dice(seed);
    SetFiles(seed, AnyFile(dice));
    const std::string before = Bytes(mReal);
    std::string what;
    for (int step = 0; step < 3; ++step)
      what += "\n  " + Change(dice, IsWine() ? Changes::Values : Changes::All);
    for (const TextView section : Sections())
      for (const TextView key : Keys()) {
        const Text real = RealValue(section, key, mReal);
        const Text ours = RealValue(section, key, mOurs);
        if (ours == real || failures.Enough()) continue;
        failures.Count();
        ADD_FAILURE() << "seed " << seed << ": " << ShownBytes(before) << what << "\n  ["
                      << Shown(section) << "] " << Shown(key) << " is " << Shown(real)
                      << " and not " << Shown(ours) << "\n"
                      << ShownBytes(Bytes(mReal)) << "\n"
                      << ShownBytes(Bytes(mOurs));
      }
    RemoveFiles();
  }
}

}  // namespace
}  // namespace quillmarsh
