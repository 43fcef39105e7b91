// SPDX-License-Identifier: MIT
// A failure is reported under the name of the routine and gives an empty text.
#include "search/results/modDupe.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "base/TextEquality.h"
#include "base/ValueText.h"
#include "frame/ErrorReporting.h"
#include "frame/Pump.h"
#include "fsobjects/EntryLook.h"
#include "fsobjects/LocaleFormats.h"
#include "fsobjects/cFileSpecParser.h"
#include "fsobjects/modPaths.h"
#include "fsobjects/modShlWAPI.h"

namespace quillmarsh {
namespace {

constexpr int kMostCandidates = 100'000;

// A folder takes a name just as a file does, and what cannot be looked at may be one.
bool IsTaken(TextView path) {
  return !LookAtEntry(path).IsAbsent();
}

struct Numbers {
  Text number;
  Text next;
};
// The number that a text stands for, in plain digits, and the one behind it; none for a text that
// is no number, and where the one behind would not be.
std::optional<Numbers> NumbersOf(TextView text) {
  constexpr double kLast = std::numeric_limits<std::int32_t>::max() - 1;
  constexpr double kFirst = std::numeric_limits<std::int32_t>::min();
  const std::optional<double> value = NumberFromText(text, GetLocaleFacts());
  // By the value that is rounded, so that nothing is raised and nothing wraps.
  if (!value || !(*value >= kFirst && *value <= kLast)) return std::nullopt;
  const std::int32_t number = LongFromText(text, GetLocaleFacts());
  return Numbers{DecimalText(number), DecimalText(std::int64_t{number} + 1)};
}

bool IsDigitsOnly(TextView text) {
  return !text.empty() &&
         std::ranges::all_of(text, [](char16_t unit) { return unit >= u'0' && unit <= u'9'; });
}

// The name to try behind a taken one that ends in brackets. Each answer is a name that was not
// tried before: a number grows, or brackets are added.
Text NextBracketedName(const Text& name) {
  const std::size_t open = name.rfind(u'(');
  const std::size_t close = name.rfind(u')');
  const TextView inside = TextView(name).substr(open + 1, close - open - 1);
  const std::optional<Numbers> numbers = NumbersOf(inside);
  if (!numbers) return name + u"(1)";
  // Every such bracket grows, not the last alone.
  Text next = ReplaceAll(name, u"(" + numbers->number + u")", u"(" + numbers->next + u")");
  if (next != name) return next;
  // The number does not stand there in plain digits: "(007)", "(1e5)", "( 7 )".
  if (!IsDigitsOnly(inside)) return name + u"(1)";
  return name.substr(0, open + 1) + numbers->next + name.substr(close);
}

Text FreePath(TextView fileName, TextView folder, Text& lastName, const IsPathTaken& isTaken) {
  const Text base = gFileSpecParser->GetFileNameWithoutExtension(fileName);
  const Text extension = gFileSpecParser->GetExtension(fileName);
  const Text before = AddBackslash(folder);
  const Text behind = extension.empty() ? Text() : u"." + extension;
  Text name = lastName.empty() ? base : lastName;
  Text candidate;
  for (int tried = 0; tried < kMostCandidates; ++tried) {
    DoEvents_Fast();
    name = MatchesSpec(name, u"*(*)") ? NextBracketedName(name) : base + u"(1)";
    candidate = before + name + behind;
    if (!isTaken(candidate)) break;
  }
  lastName = name;
  return candidate;
}

}  // namespace

Text EncloseInQuotes(TextView text) {
  Text quoted;
  Guarded(u"modDupe.EncloseInQuotes", [&] { quoted = u"\"" + Text(text) + u"\""; });
  return quoted;
}

bool SendFileToRecycleBin(HANDLE pin, std::int32_t& errorNumber, Text& errorText) {
  errorNumber = 0;
  errorText.clear();
  if (TheMachine().Pins().Recycle(pin)) return true;
  const std::uint32_t code = TheMachine().GetLastError();
  errorNumber = static_cast<std::int32_t>(code);
  errorText = FormatSystemErrorMessage(code);
  return false;
}

Text ResolveFileNameCollision(TextView fileName, TextView folder) {
  Text lastName;
  return ResolveNextFileNameCollision(fileName, folder, lastName);
}

Text ResolveNextFileNameCollision(TextView fileName, TextView folder, Text& lastName) {
  return ResolveNextFileNameCollision(fileName, folder, lastName, IsTaken);
}

Text ResolveNextFileNameCollision(TextView fileName, TextView folder, Text& lastName,
                                  const IsPathTaken& isTaken) {
  Text path;
  Guarded(u"modDupe.ResolveFileNameCollision",
          [&] { path = FreePath(fileName, folder, lastName, isTaken); });
  return path;
}

}  // namespace quillmarsh
