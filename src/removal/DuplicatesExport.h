// SPDX-License-Identifier: MIT
// The export of a search's result into a text file that a person chooses: where was searched, by
// which criteria, the totals, and every group with a line of quoted fields for each file. UTF-16
// little-endian with its mark, CR LF. Reads the results and changes nothing of them; writes the
// file whole or not at all.
#pragma once

#include <cstdint>
#include <span>

#include "base/Text.h"

namespace quillmarsh {

class clsDupeSettings;
class cSearchResults;

// Nothing here is owned.
struct ExportSource {
  const cSearchResults& results;
  const clsDupeSettings& settings;
  std::span<const Text> searchedFolders;  // drive form, in the order of the list of locations
};

// The command of the File menu. Does nothing while another command runs.
void mnuFileExport_Click(const ExportSource& source);

// Asks where to; empty when the person cancels.
[[nodiscard]] Text GetExportFileName();

// Writes the file and tells in a box that it is done, or reports why it is not.
void SaveDuplicatesListToFile(TextView path, const ExportSource& source);

// The writing alone. 0, or the system's number of the first failure; then what was at the path
// before is there as it was. Raises what is unexpected.
[[nodiscard]] std::uint32_t WriteDuplicatesList(TextView path, const ExportSource& source);

}  // namespace quillmarsh
