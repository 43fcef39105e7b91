// SPDX-License-Identifier: MIT
// The descriptions of the classic run-time errors, as one table.
#include "base/RuntimeError.h"

#include <algorithm>
#include <iterator>

namespace quillmarsh {
namespace {

struct ErrorDescription {
  std::int32_t number;
  TextView description;
};

constexpr ErrorDescription Descriptions[] = {
    {3, u"Return without GoSub"},
    {5, u"Invalid procedure call or argument"},
    {6, u"Overflow"},
    {7, u"Out of memory"},
    {9, u"Subscript out of range"},
    {10, u"This array is fixed or temporarily locked"},
    {11, u"Division by zero"},
    {13, u"Type mismatch"},
    {14, u"Out of string space"},
    {16, u"Expression too complex"},
    {17, u"Can't perform requested operation"},
    {28, u"Out of stack space"},
    {35, u"Sub or Function not defined"},
    {48, u"Error in loading DLL"},
    {49, u"Bad DLL calling convention"},
    {51, u"Internal error"},
    {52, u"Bad file name or number"},
    {53, u"File not found"},
    {54, u"Bad file mode"},
    {55, u"File already open"},
    {57, u"Device I/O error"},
    {58, u"File already exists"},
    {59, u"Bad record length"},
    {61, u"Disk full"},
    {62, u"Input past end of file"},
    {63, u"Bad record number"},
    {67, u"Too many files"},
    {68, u"Device unavailable"},
    {70, u"Permission denied"},
    {71, u"Disk not ready"},
    {74, u"Can't rename with different drive"},
    {75, u"Path/File access error"},
    {76, u"Path not found"},
    {91, u"Object variable or With block variable not set"},
    {94, u"Invalid use of Null"},
    {321, u"Invalid file format"},
    {380, u"Invalid property value"},
    {424, u"Object required"},
    {429, u"ActiveX component can't create object"},
    {457, u"This key is already associated with an element of this collection"},
};

}  // namespace

RuntimeError::RuntimeError(std::int32_t number)
    : RuntimeError(number, TextView(), DescriptionOfRuntimeError(number)) {}

RuntimeError::RuntimeError(std::int32_t number, TextView source, TextView description)
    : mNumber(number), mSource(source), mDescription(description) {
  mWhat = "error " + std::to_string(number) + ": " + ToUtf8(mDescription);
  if (!mSource.empty()) mWhat += " (" + ToUtf8(mSource) + ")";
}

TextView DescriptionOfRuntimeError(std::int32_t number) {
  const auto* const found =
      std::find_if(std::begin(Descriptions), std::end(Descriptions),
                   [number](const ErrorDescription& row) { return row.number == number; });
  if (found == std::end(Descriptions)) return u"Application-defined or object-defined error";
  return found->description;
}

}  // namespace quillmarsh
