// SPDX-License-Identifier: MIT
// Asking a person for a file or a folder, and showing that a command keeps the program busy. As
// with the other views the entry sets what is in use and owns it; a program without a window sets
// none.
#pragma once

#include "base/Text.h"

namespace quillmarsh {

class FilePicker {
 public:
  virtual ~FilePicker() = default;
  // Modal. The drive-form path of a file to write to, empty when the person cancels. Asks before an
  // existing file is chosen; adds no extension. `filter` is pairs of a description and its masks,
  // parted by '|'.
  virtual Text SaveFileName(const Text& title, const Text& filter) = 0;
  // Modal. The drive-form path of an existing file, empty when the person cancels. `start` is the
  // folder shown first, where it exists.
  virtual Text OpenFileName(const Text& title, const Text& start) = 0;
};

class FolderPicker {
 public:
  virtual ~FolderPicker() = default;
  // Modal. The drive-form path of an existing folder, empty when the person cancels. `start` is the
  // folder shown first, where it exists.
  virtual Text BrowseForFolder(const Text& prompt, const Text& start) = 0;
};

class PointerView {
 public:
  virtual ~PointerView() = default;
  // The hourglass or the usual mouse pointer.
  virtual void ShowBusyPointer(bool isBusy) = 0;
};

struct Pickers {
  FilePicker* files = nullptr;
  FolderPicker* folders = nullptr;
  PointerView* pointer = nullptr;
};
extern Pickers gPickers;

// Empty, as if the person had cancelled, where nobody can be asked.
[[nodiscard]] Text SaveFileName(const Text& title, const Text& filter);
[[nodiscard]] Text OpenFileName(const Text& title, const Text& start);
[[nodiscard]] Text BrowseForFolder(const Text& prompt, const Text& start);

// Shows the hourglass for as long as it lives, and lets the window paint that.
class BusyPointer {
 public:
  BusyPointer();
  ~BusyPointer();
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;
};

}  // namespace quillmarsh
