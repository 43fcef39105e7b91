// SPDX-License-Identifier: MIT
// Opening in other programs, with a desktop of the test's own: one application, for plain text,
// which writes down what it was given. An executable of its own, since the desktop's library looks
// for its folders once.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "platform/posix/TempTree.h"

namespace quillmarsh::test {
namespace {

class DesktopPrograms : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    const std::string viewer = scratch.File(
        "viewer.sh", "#!/bin/sh\nprintf '%s' \"$1\" > '" + scratch.At("part") + "' && mv '" +
                         scratch.At("part") + "' '" + scratch.At("seen") + "'\n");
    std::filesystem::permissions(viewer, std::filesystem::perms{0755});
    scratch.File("data/applications/viewer.desktop",
                 "[Desktop Entry]\nType=Application\nName=Viewer\nExec=" + viewer +
                     " %f\nMimeType=text/plain;\n");
    scratch.File("data/applications/mimeapps.list",
                 "[Default Applications]\ntext/plain=viewer.desktop\n");
    scratch.Folder("nothing");
    ::setenv("XDG_DATA_HOME", scratch.At("data").c_str(), 1);
    ::setenv("XDG_DATA_DIRS", scratch.At("nothing").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", scratch.At("nothing").c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", scratch.At("nothing").c_str(), 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    ::unsetenv("WAYLAND_DISPLAY");
  }
  void SetUp() override { ::setenv("DISPLAY", ":no-such-display", 1); }

  std::intptr_t Open(TextView file, TextView parameters = {}) {
    return machine.Desktop().ShellExecuteW(u"Open", file, parameters, SW_SHOWNORMAL);
  }
  // What the application was given, once it has run.
  static std::string Seen() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(scratch.At("seen"))) {
      if (std::chrono::steady_clock::now() > deadline) return "nothing was started";
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    std::ostringstream text;
    text << std::ifstream(scratch.At("seen")).rdbuf();
    std::filesystem::remove(scratch.At("seen"));
    return text.str();
  }
  static bool HasChild() { return ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD; }

  inline static TempTree scratch;
  const std::string folder = scratch.Folder("drive");
  PosixMachine machine{DriveAt(scratch, folder)};
};

TEST_F(DesktopPrograms, NotepadIsTheViewerOfPlainTextAndIsNobodysChild) {
  const std::string native = scratch.File("drive/my h\xC3\xB6story.log", "\xFF\xFE\x01\x02");
  EXPECT_GT(Open(u"notepad.exe", u"\"D:\\my h\u00F6story.log\""), kLastShellFailure);
  EXPECT_EQ(Seen(), native);
  EXPECT_FALSE(HasChild());
  EXPECT_GT(Open(u"NOTEPAD.EXE", u"D:\\my h\u00F6story.log"), kLastShellFailure);
  EXPECT_EQ(Seen(), native) << "without quotation marks";
}

TEST_F(DesktopPrograms, AnyOtherFileIsOpenedByItsType) {
  const std::string native = scratch.File("drive/words", "plain words\n");
  EXPECT_GT(Open(u"D:\\words"), kLastShellFailure);
  EXPECT_EQ(Seen(), native);
  EXPECT_FALSE(HasChild());
}

TEST_F(DesktopPrograms, WhatCannotBeOpenedSaysWhy) {
  scratch.File("drive/here.txt", "text");
  scratch.File("drive/bytes", std::string("\x7F\x01\x02\x00\xFE\xFF", 6));
  EXPECT_EQ(Open(u"notepad.exe", u"\"D:\\missing.txt\""), SE_ERR_FNF);
  EXPECT_EQ(Open(u"notepad.exe", u"\"D:\\missing\\here.txt\""), SE_ERR_PNF);
  EXPECT_EQ(Open(u"notepad.exe"), SE_ERR_PNF);
  EXPECT_EQ(Open(u"notepad.exe", u"\""), SE_ERR_FNF);
  EXPECT_EQ(Open(u"D:\\bytes"), SE_ERR_NOASSOC) << "no application for its type";
  ::unsetenv("DISPLAY");
  EXPECT_EQ(Open(u"notepad.exe", u"\"D:\\here.txt\""), SE_ERR_NOASSOC) << "no display";
  ::setenv("WAYLAND_DISPLAY", "", 1);
  EXPECT_EQ(Open(u"D:\\here.txt"), SE_ERR_NOASSOC) << "a display without a name";
  EXPECT_FALSE(std::filesystem::exists(scratch.At("seen")));
}

}  // namespace
}  // namespace quillmarsh::test
