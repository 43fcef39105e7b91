// SPDX-License-Identifier: MIT
// Free names for files whose names are taken, and sending a file to the Recycle Bin.
#include <random>
#include <set>

#include "fsobjects/FsObjectsFixture.h"
#include "search/results/modDupe.h"

namespace quillmarsh {
namespace {

class NameCollision : public FsObjectsFixture {};

TEST_F(NameCollision, TakesTheNextNumberOrAddsOne) {
  struct Row {
    TextView name;
    std::vector<TextView> alsoTaken;
    TextView expected;
  };
  const Row rows[] = {
      {u"report.txt", {}, u"report(1).txt"},
      {u"report.txt", {u"report(1).txt", u"REPORT(2).TXT"}, u"report(3).txt"},
      {u"report(7).txt", {}, u"report(8).txt"},
      {u"notes(old).txt", {}, u"notes(old)(1).txt"},
      {u"README", {}, u"(1)"},
      {u"README", {u"(1)"}, u"(2)"},
      {u".profile", {}, u"(1).profile"},
      {u"x(1).tar.gz", {}, u"x(1).tar(1).gz"},
      {u"a(b).txt", {}, u"a(b)(1).txt"},
      {u"a().txt", {}, u"a()(1).txt"},
      {u"x(1)(1).txt", {}, u"x(2)(2).txt"},
      {u"x(3)(1).txt", {u"x(3)(2).txt", u"x(3)(3).txt"}, u"x(4)(4).txt"},
      {u"x(-2).txt", {u"x(-1).txt"}, u"x(0).txt"},
      // Numbers that do not stand there in plain digits, or have no next one.
      {u"x(007).txt", {}, u"x(8).txt"},
      {u"x(007).txt", {u"x(8).txt"}, u"x(9).txt"},
      {u"x(2147483646).txt", {u"x(2147483647).txt"}, u"x(2147483647)(1).txt"},
      {u"x(20261121103720).txt", {}, u"x(20261121103720)(1).txt"},
      {u"x(1e5).txt", {}, u"x(1e5)(1).txt"},
      {u"x(1e999).txt", {}, u"x(1e999)(1).txt"},
      {u"x(&H1F).txt", {}, u"x(&H1F)(1).txt"},
      {u"x(1.5).txt", {}, u"x(1.5)(1).txt"},
      {u"x((1)).txt", {}, u"x((1))(1).txt"},
      {u"x( 7 ).txt", {}, u"x( 7 )(1).txt"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(ToUtf8(row.name));
    machine.AddFile(u"C:\\to\\" + Text(row.name));
    for (const TextView name : row.alsoTaken) machine.AddFile(u"C:\\to\\" + Text(name));
    EXPECT_EQ(ToUtf8(ResolveFileNameCollision(row.name, u"C:\\to")),
              "C:\\to\\" + ToUtf8(row.expected));
    // A folder takes the name as well.
    machine.AddFolder(u"C:\\to\\" + Text(row.expected));
    EXPECT_NE(ResolveFileNameCollision(row.name, u"C:\\to\\"), u"C:\\to\\" + Text(row.expected));
    machine.Remove(u"C:\\to");
  }
}

TEST_F(NameCollision, EndsForEveryNameWithAFreeOneInTheFolder) {
  std::mt19937 random(20261121);
  const TextView pieces[] = {u"x",     u"(", u")",   u"(1)", u"0",           u"7",
                             u"(007)", u"-", u".",   u"e",   u"&H",          u"5",
                             u",",     u" ", u"(9)", u"$",   u"(2147483647)"};
  for (int round = 0; round < 4000; ++round) {
    Text name;
    for (auto count = 1 + random() % 7; count > 0; --count)
      name += pieces[random() % std::size(pieces)];
    if (round % 40 != 0) name += u".t";
    if (name.ends_with(u'.') || TrimBlanks(name) != TextView(name)) continue;
    if (!machine.Exists(u"C:\\to\\" + name)) machine.AddFile(u"C:\\to\\" + name);
    hook.ClearJournal();
    const Text path = ResolveFileNameCollision(name, u"C:\\to\\");
    std::set<Text> asked;
    for (const FaultHook::Call& call : hook.Journal()) {
      if (call.operation != Operation::GetFileAttributesW || call.subject == path) continue;
      ASSERT_TRUE(asked.insert(call.subject).second) << ToUtf8(call.subject) << " asked twice";
    }
    ASSERT_FALSE(machine.Exists(path)) << ToUtf8(path);
    ASSERT_EQ(path.rfind(u'\\'), 5U) << ToUtf8(path);
    machine.AddFile(path);
  }
  hook.Fail({Operation::GetFileInformationByName, 0}, ERROR_ACCESS_DENIED);
  EXPECT_EQ(ResolveFileNameCollision(u"a.txt", u"C:\\shut"), u"C:\\shut\\a(100000).txt");
}

}  // namespace
}  // namespace quillmarsh
