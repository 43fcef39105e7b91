// SPDX-License-Identifier: MIT
// A person who answers file and folder dialogs as a test says, for as long as it lives.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "frame/Pickers.h"

namespace quillmarsh {

class ScriptedPickers final : private FilePicker, private FolderPicker, private PointerView {
 public:
  ScriptedPickers() { gPickers = {.files = this, .folders = this, .pointer = this}; }
  ~ScriptedPickers() override { gPickers = {}; }

  std::deque<Text> paths;          // answered in this order, then the person cancels
  std::vector<std::string> asked;  // "title | filter" or "prompt | start"
  std::string pointer;             // "+" for each hourglass, "-" where it ends

 private:
  Text SaveFileName(const Text& title, const Text& filter) override {
    return Answer(title, filter);
  }
  Text OpenFileName(const Text& title, const Text& start) override { return Answer(title, start); }
  Text BrowseForFolder(const Text& prompt, const Text& start) override {
    return Answer(prompt, start);
  }
  void ShowBusyPointer(bool isBusy) override { pointer += isBusy ? '+' : '-'; }

  Text Answer(const Text& first, const Text& second) {
    asked.push_back(ToUtf8(first) + " | " + ToUtf8(second));
    if (paths.empty()) return {};
    Text path = paths.front();
    paths.pop_front();
    return path;
  }
};

}  // namespace quillmarsh
