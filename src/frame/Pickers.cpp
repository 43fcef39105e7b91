// SPDX-License-Identifier: MIT
// The pickers in use, and what happens where there is none.
#include "frame/Pickers.h"

#include "frame/Pump.h"

namespace quillmarsh {

Pickers gPickers;

Text SaveFileName(const Text& title, const Text& filter) {
  return gPickers.files != nullptr ? gPickers.files->SaveFileName(title, filter) : Text();
}

Text OpenFileName(const Text& title, const Text& start) {
  return gPickers.files != nullptr ? gPickers.files->OpenFileName(title, start) : Text();
}

Text BrowseForFolder(const Text& prompt, const Text& start) {
  return gPickers.folders != nullptr ? gPickers.folders->BrowseForFolder(prompt, start) : Text();
}

BusyPointer::BusyPointer() {
  if (gPickers.pointer == nullptr) return;
  gPickers.pointer->ShowBusyPointer(true);
  DoEvents_Fast();
}

BusyPointer::~BusyPointer() {
  if (gPickers.pointer == nullptr) return;
  gPickers.pointer->ShowBusyPointer(false);
  DoEvents_Fast();
}

}  // namespace quillmarsh
