// SPDX-License-Identifier: MIT
// Without the library that knows the desktop's applications there is none for any type.
#include "platform/posix/DesktopPrograms.h"

#include <cstdlib>

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

#else

std::string ContentTypeOf(const std::string& /*native*/) {
  return {};
}
bool OpenInApplicationFor(const std::string& /*contentType*/, const std::string& /*native*/) {
  return false;
}

#endif

}  // namespace quillmarsh
