// SPDX-License-Identifier: MIT
// Without the library that knows the desktop's applications there is none for any type.
#include "platform/posix/DesktopPrograms.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#ifdef QUILLMARSH_WITH_GIO
#include <gio/gio.h>

#include <memory>
#endif

namespace quillmarsh {
namespace {

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && value[0] != '\0';
}

#ifdef QUILLMARSH_WITH_GIO
struct Release {
  void operator()(void* object) const { ::g_object_unref(object); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

constexpr int kAnswerMilliseconds = 25000;  // a file manager may be started first

// Empty where there is none: the library would start one of its own.
std::string SessionBusAddress() {
  if (IsSet("DBUS_SESSION_BUS_ADDRESS")) return std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (!IsSet("XDG_RUNTIME_DIR")) return {};
  const std::string socket = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/bus";
  return ::access(socket.c_str(), R_OK | W_OK) == 0 ? "unix:path=" + socket : std::string();
}
#endif

}  // namespace

bool HasDesktopSession() {
  return IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY");
}

#ifdef QUILLMARSH_WITH_GIO

std::string ContentTypeOf(const std::string& native) {
  const Owned<GFile> file(::g_file_new_for_path(native.c_str()));
  const Owned<GFileInfo> facts(::g_file_query_info(file.get(),
                                                   G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                   G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
  const char* const type =
      facts == nullptr
          ? nullptr
          : ::g_file_info_get_attribute_string(facts.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE);
  return type != nullptr ? type : std::string();
}

bool OpenInApplicationFor(const std::string& contentType, const std::string& native) {
  const Owned<GAppInfo> application(::g_app_info_get_default_for_type(contentType.c_str(), FALSE));
  if (application == nullptr) return false;
  const Owned<GFile> file(::g_file_new_for_path(native.c_str()));
  GList files{file.get(), nullptr, nullptr};
  // Started through a child in between that ends at once, so the system's first process reaps it.
  return ::g_app_info_launch(application.get(), &files, nullptr, nullptr) != FALSE;
}

// A connection of its own: the library's shared one ends the program when the bus goes.
bool ShowItemProperties(const std::string& native) {
  const std::string address = SessionBusAddress();
  if (address.empty()) return false;
  const Owned<GDBusConnection> bus(::g_dbus_connection_new_for_address_sync(
      address.c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr));
  if (bus == nullptr) return false;
  const std::unique_ptr<char, void (*)(void*)> uri(
      ::g_filename_to_uri(native.c_str(), nullptr, nullptr), &::g_free);
  if (uri == nullptr) return false;
  const char* const uris[] = {uri.get(), nullptr};
  GVariant* const answer = ::g_dbus_connection_call_sync(
      bus.get(), "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
      "org.freedesktop.FileManager1", "ShowItemProperties", ::g_variant_new("(^ass)", uris, ""),
      nullptr, G_DBUS_CALL_FLAGS_NONE, kAnswerMilliseconds, nullptr, nullptr);
  if (answer != nullptr) ::g_variant_unref(answer);
  ::g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
  return answer != nullptr;
}

#else

bool ShowItemProperties(const std::string& /*native*/) {
  return false;
}
std::string ContentTypeOf(const std::string& /*native*/) {
  return {};
}
bool OpenInApplicationFor(const std::string& /*contentType*/, const std::string& /*native*/) {
  return false;
}

#endif

}  // namespace quillmarsh
