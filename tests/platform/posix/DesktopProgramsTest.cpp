// SPDX-License-Identifier: MIT
// Opening in other programs, with a desktop of the test's own: one application, for plain text,
// which writes down what it was given. An executable of its own, since the desktop's library looks
// for its folders once.
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
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
                     " %f\nMimeType=text/plain;inode/directory;\n");
    scratch.File(
        "data/applications/mimeapps.list",
        "[Default Applications]\ntext/plain=viewer.desktop\ninode/directory=viewer.desktop\n");
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

TEST_F(DesktopPrograms, ExplorerIsTheViewerOfFolders) {
  const std::string native = scratch.Folder("drive/my folder");
  EXPECT_GT(Open(u"explorer.exe", u"\"D:\\my folder\\\""), kLastShellFailure);
  EXPECT_EQ(Seen(), native);
  EXPECT_EQ(Open(u"explorer.exe", u"\"D:\\missing\\\""), SE_ERR_FNF);
  EXPECT_EQ(Open(u"rundll32.exe", u"shell32.dll,OpenAs_RunDLL D:\\my folder"), SE_ERR_NOASSOC)
      << "there is no box to choose a program";
}

// A bus with a file manager on it, both in one: it takes any call and keeps what it was asked.
class BusWithFileManager {
 public:
  explicit BusWithFileManager(const std::string& socket) {
    char* const guid = ::g_dbus_generate_guid();
    mServer =
        ::g_dbus_server_new_sync(("unix:path=" + socket).c_str(), G_DBUS_SERVER_FLAGS_RUN_IN_THREAD,
                                 guid, nullptr, nullptr, nullptr);
    ::g_free(guid);
    ::g_signal_connect(mServer, "new-connection", G_CALLBACK(&Connected), this);
    ::g_dbus_server_start(mServer);
    mThread = std::thread([this] { ::g_main_loop_run(mLoop); });
    ::setenv("DBUS_SESSION_BUS_ADDRESS", ::g_dbus_server_get_client_address(mServer), 1);
  }
  ~BusWithFileManager() {
    ::g_main_loop_quit(mLoop);
    mThread.join();
    ::g_main_loop_unref(mLoop);
    ::g_dbus_server_stop(mServer);
    ::g_object_unref(mServer);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  }
  BusWithFileManager(const BusWithFileManager&) = delete;
  BusWithFileManager& operator=(const BusWithFileManager&) = delete;

  [[nodiscard]] std::string Asked() {
    const std::lock_guard lock(mMutex);
    return mAsked;
  }

 private:
  static gboolean Connected(GDBusServer*, GDBusConnection* connection, BusWithFileManager* self) {
    ::g_dbus_connection_add_filter(connection, &Called, self, nullptr);
    g_object_ref(connection);
    return TRUE;
  }
  static GDBusMessage* Called(GDBusConnection* connection, GDBusMessage* message,
                              gboolean isIncoming, gpointer data) {
    if (isIncoming == FALSE) return message;
    auto& self = *static_cast<BusWithFileManager*>(data);
    GDBusMessage* const reply = ::g_dbus_message_new_method_reply(message);
    if (std::string(::g_dbus_message_get_member(message)) == "Hello") {
      ::g_dbus_message_set_body(reply, ::g_variant_new("(s)", ":1.1"));
    } else {
      char* const body = ::g_variant_print(::g_dbus_message_get_body(message), FALSE);
      const std::lock_guard lock(self.mMutex);
      self.mAsked = std::string(::g_dbus_message_get_destination(message)) + " " +
                    ::g_dbus_message_get_member(message) + " " + body;
      ::g_free(body);
    }
    ::g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                     nullptr);
    ::g_object_unref(reply);
    ::g_object_unref(message);
    return nullptr;
  }

  GDBusServer* mServer = nullptr;
  GMainLoop* const mLoop = ::g_main_loop_new(nullptr, FALSE);
  std::thread mThread;
  std::mutex mMutex;
  std::string mAsked;
};

TEST_F(DesktopPrograms, PropertiesAreTheFileManagersBusiness) {
  const std::string native = scratch.File("drive/a b\xC3\xA9.txt", "text");
  BusWithFileManager bus(scratch.At("bus"));
  EXPECT_TRUE(machine.Desktop().ShellExecuteExW({0, u"properties", u"D:\\a b\u00E9.txt"}));
  EXPECT_EQ(bus.Asked(), "org.freedesktop.FileManager1 ShowItemProperties (['file://" +
                             scratch.At("drive/a%20b%C3%A9.txt") + "'], '')");
  EXPECT_FALSE(machine.Desktop().ShellExecuteExW({0, u"properties", u"D:\\missing"}));
  EXPECT_EQ(machine.GetLastError(), ERROR_FILE_NOT_FOUND);
}

// The program's person gives up.
class NoPatience final : public Patience {
 public:
  bool KeepWaiting() override { return false; }
};

TEST_F(DesktopPrograms, WithoutABusThatAnswersNothingHangs) {
  scratch.File("drive/here.txt", "text");
  const auto fails = [this] {
    return !machine.Desktop().ShellExecuteExW({0, u"properties", u"D:\\here.txt"});
  };
  EXPECT_TRUE(fails()) << "a bus that is switched off";
  ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
  ::unsetenv("XDG_RUNTIME_DIR");
  EXPECT_TRUE(fails()) << "no bus";
  EXPECT_EQ(machine.GetLastError(), ERROR_NO_ASSOCIATION);
  ::setenv("XDG_RUNTIME_DIR", scratch.Root().c_str(), 1);
  EXPECT_TRUE(fails()) << "a session without one";

  const int deaf = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = scratch.At("bus");
  ASSERT_LT(path.size(), sizeof(address.sun_path));
  std::copy(path.begin(), path.end(), address.sun_path);
  ASSERT_EQ(::bind(deaf, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  ASSERT_EQ(::listen(deaf, 5), 0);
  NoPatience patience;
  machine.SetPatience(&patience);
  EXPECT_TRUE(fails()) << "somebody listens and never answers";
  machine.SetPatience(nullptr);
  ::close(deaf);
  ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

}  // namespace
}  // namespace quillmarsh::test
