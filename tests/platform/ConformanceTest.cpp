// SPDX-License-Identifier: MIT
// Runs every row on every machine.
#include <gtest/gtest-spi.h>

#include <cctype>

#include "platform/ConformanceRows.h"
#include "platform/KnownWineDifferences.h"

namespace quillmarsh {

namespace {

using Case = std::tuple<MachineKind, ConformanceRow>;

std::vector<ConformanceRow> AllRows() {
  std::vector<ConformanceRow> rows;
  for (const auto table : {FindingRows(), FileRows(), ChangeRows(), VolumeRows()})
    rows.insert(rows.end(), table.begin(), table.end());
  return rows;
}

// A sentence as a name of a test: letters and digits, one '_' for all between.
std::string NameOfCase(const testing::TestParamInfo<Case>& info) {
  std::string name = std::get<MachineKind>(info.param).name;
  name += '_';
  for (const char* c = std::get<ConformanceRow>(info.param).sentence; *c != 0; ++c) {
    if (std::isalnum(static_cast<unsigned char>(*c)) != 0)
      name += *c;
    else if (name.back() != '_')
      name += '_';
  }
  return name;
}

class Conformance : public testing::TestWithParam<Case> {};

TEST_P(Conformance, Row) {
  const auto& [kind, row] = GetParam();
  SCOPED_TRACE(std::string(row.reliesOnIt) + " relies on this: " + row.sentence);
  const auto ground = kind.make();
  ASSERT_NE(ground, nullptr);
  const WineDifference* const difference = KnownWineDifference(*ground, row.sentence);
  if (difference == nullptr) return row.check(*ground);
  testing::TestPartResultArray results;
  {
    const testing::ScopedFakeTestPartResultReporter keepsQuiet(
        testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
    row.check(*ground);
  }
  bool differs = false;
  for (int i = 0; i < results.size(); ++i)
    differs = differs || results.GetTestPartResult(i).failed();
  ASSERT_TRUE(differs) << "Wine no longer differs here: " << difference->reason;
  GTEST_SKIP() << difference->reason;
}

INSTANTIATE_TEST_SUITE_P(Machines, Conformance,
                         testing::Combine(testing::ValuesIn(MachineKinds()),
                                          testing::ValuesIn(AllRows())),
                         NameOfCase);

}  // namespace

// How a case is printed when it fails.
void PrintTo(const MachineKind& kind, std::ostream* out) {
  *out << kind.name;
}
void PrintTo(const ConformanceRow& row, std::ostream* out) {
  *out << row.reliesOnIt << ": " << row.sentence;
}

}  // namespace quillmarsh
