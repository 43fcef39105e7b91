// SPDX-License-Identifier: MIT
// User directories, trash and type names.
#include "platform/posix/PosixShell.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "base/TextEquality.h"
#include "platform/posix/DesktopPrograms.h"
#include "platform/posix/DesktopTrash.h"
#include "platform/posix/ErrnoCodes.h"
#include "platform/posix/NameMapping.h"
#include "platform/posix/NativeWalk.h"

#ifdef QUILLMARSH_WITH_GIO
#include <gio/gio.h>
#endif

namespace quillmarsh {
namespace {

// The rules for user directories say that a relative path is to be ignored.
std::string AbsoluteFromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && value[0] == '/' ? value : std::string();
}

std::string HomeOfUser() {
  passwd entry{};
  passwd* found = nullptr;
  std::array<char, 16384> buffer{};
  if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
      found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] != '/')
    return {};
  return found->pw_dir;
}

constexpr TextView kTextViewer = u"notepad.exe";
constexpr TextView kFolderViewer = u"explorer.exe";
constexpr TextView kApplicationChooser = u"rundll32.exe";
constexpr TextView kPropertiesVerb = u"properties";
constexpr std::intptr_t kStarted = 42;

TextView WithoutQuotes(TextView parameter) {
  if (parameter.size() < 2 || !parameter.starts_with(u'"') || !parameter.ends_with(u'"'))
    return parameter;
  return parameter.substr(1, parameter.size() - 2);
}

std::intptr_t ShellAnswerOf(std::uint32_t error) {
  switch (error) {
    case ERROR_PATH_NOT_FOUND:
      return SE_ERR_PNF;
    case ERROR_ACCESS_DENIED:
      return SE_ERR_ACCESSDENIED;
    default:
      return SE_ERR_FNF;
  }
}

std::int32_t ShellCodeOf(std::uint32_t error) {
  switch (error) {
    case ERROR_ACCESS_DENIED:
      return DE_ACCESSDENIEDSRC;
    case ERROR_BAD_PATHNAME:
      return DE_INVALIDFILES;
    default:
      return static_cast<std::int32_t>(error);
  }
}

std::string OrBelow(const std::string& folder, const std::string& home, const char* below) {
  return folder.empty() && !home.empty() ? home + below : folder;
}

}  // namespace

UserFolders UserFolders::OfProcess() {
  UserFolders folders;
  folders.home = AbsoluteFromEnvironment("HOME");
  if (folders.home.empty()) folders.home = HomeOfUser();
  folders.data = OrBelow(AbsoluteFromEnvironment("XDG_DATA_HOME"), folders.home, "/.local/share");
  folders.config = OrBelow(AbsoluteFromEnvironment("XDG_CONFIG_HOME"), folders.home, "/.config");
  return folders;
}

PosixShell::PosixShell(CallState& state, PosixContext& context, UserFolders folders)
    : Shell(state), mContext(context), mFolders(std::move(folders)) {}

Text PosixShell::DriveForm(const std::string& native) {
  std::uint32_t error = ERROR_SUCCESS;
  Text form = DriveForm(native, error);
  return error == ERROR_SUCCESS ? std::move(form) : Fail(error, Text());
}

Text PosixShell::DriveForm(const std::string& native, std::uint32_t& error) {
  error = ERROR_PATH_NOT_FOUND;
  if (native.empty()) return {};
  CanonicalPath canonical;
  error = mContext.Run(false, canonical, [native](CanonicalPath& found) {
    found = Canonical(native, MissingTail::Kept);
    return SystemErrorFromErrno(found.error);
  });
  if (error != 0) return {};
  auto form = mContext.letters->Current()->DriveForm(canonical.path);
  if (!form) error = ERROR_INVALID_DRIVE;
  return form ? std::move(*form) : Text();
}

// A line of user-dirs.dirs: KEY="$HOME/folder" or KEY="/folder".
std::string PosixShell::UserDirectory(std::string_view key, std::string_view otherwise) const {
  if (mFolders.home.empty()) return {};
  int error = 0;
  const std::string text = ReadWholeFile(mFolders.config + "/user-dirs.dirs", error).value_or("");
  const std::string wanted = "\n" + std::string(key) + "=\"";
  const std::size_t found = ("\n" + text).find(wanted);
  if (found == std::string::npos) return mFolders.home + std::string(otherwise);
  std::string value = text.substr(found + wanted.size() - 1);
  value.resize(std::min(value.find('"'), value.size()));
  if (value.starts_with("$HOME")) value.replace(0, 5, mFolders.home);
  return value.starts_with('/') ? value : mFolders.home + std::string(otherwise);
}

Text PosixShell::DoGetFolder(std::int32_t csidl) {
  switch (csidl) {
    case CSIDL_PERSONAL:
      return DriveForm(UserDirectory("XDG_DOCUMENTS_DIR", "/Documents"));
    case CSIDL_DESKTOPDIRECTORY:
      return DriveForm(UserDirectory("XDG_DESKTOP_DIR", "/Desktop"));
    case CSIDL_LOCAL_APPDATA:
      return DriveForm(mFolders.data);
    case CSIDL_PROFILE:
      return DriveForm(mFolders.home);
    case CSIDL_WINDOWS: {
      // With its final backslash: paths are held against it as text, and /usr2 is another folder.
      Text folder = DriveForm("/usr");
      if (!folder.empty() && folder.back() != u'\\') folder += u'\\';
      return folder;
    }
    case CSIDL_SYSTEM:
      return DriveForm("/usr/lib");
    default:
      return Fail(ERROR_INVALID_PARAMETER, Text());
  }
}

// The trash is several places, so it is a virtual item without a path.
Text PosixShell::DoGetItemPath(std::int32_t csidl) {
  return csidl == CSIDL_BITBUCKET ? Fail(ERROR_PATH_NOT_FOUND, Text()) : DoGetFolder(csidl);
}

Text PosixShell::DoGetTempPath() {
  const std::string named = AbsoluteFromEnvironment("TMPDIR");
  Text folder = DriveForm(named.empty() ? "/tmp" : named);
  if (!folder.empty() && !folder.ends_with(u'\\')) folder += u'\\';
  return folder;
}

Text PosixShell::DoGetTypeName(TextView name) {
#ifdef QUILLMARSH_WITH_GIO
  std::string bytes;
  if (!AppendNameBytes(name.substr(name.rfind(u'\\') + 1), bytes))
    return Fail(ERROR_INVALID_NAME, Text());
  using Owned = std::unique_ptr<char, void (*)(void*)>;
  const Owned type(::g_content_type_guess(bytes.c_str(), nullptr, 0, nullptr), &::g_free);
  const Owned description(type ? ::g_content_type_get_description(type.get()) : nullptr, &::g_free);
  if (description != nullptr && description.get()[0] != '\0') return FromUtf8(description.get());
#else
  (void)name;
#endif
  return Fail(ERROR_FILE_NOT_FOUND, Text());
}

std::uint32_t PosixShell::NativeOf(TextView path, Located& located, std::string& native) {
  EntryFacts entry;
  if (const std::uint32_t error = mContext.Locate(path, located)) return error;
  if (const std::uint32_t error = mContext.LookAt(located, entry)) return error;
  native = JoinNative(located.drive->mount->point, located.path.relative);
  return ERROR_SUCCESS;
}

std::intptr_t PosixShell::DoExecute(TextView /*verb*/, TextView file, TextView parameters,
                                    std::int32_t /*show*/) {
  const auto is = [file](TextView program) { return CompareIgnoringCase(file, program) == 0; };
  if (is(kApplicationChooser)) return SE_ERR_NOASSOC;
  const bool isViewer = is(kTextViewer) || is(kFolderViewer);
  Located located;
  std::string native;
  std::uint32_t error = NativeOf(isViewer ? WithoutQuotes(parameters) : file, located, native);
  if (error != 0) return ShellAnswerOf(error);
  if (!HasDesktopSession()) return SE_ERR_NOASSOC;

  std::string type = is(kTextViewer) ? "text/plain" : "inode/directory";
  if (!isViewer)
    error = mContext.Run(located.drive->kind.answers, type, [native](std::string& found) {
      found = ContentTypeOf(native);
      return ERROR_SUCCESS;
    });
  const bool isStarted = error == 0 && OpenInApplicationFor(type, native);
  return isStarted ? kStarted : SE_ERR_NOASSOC;
}

// On the helper, since the file manager may have to be started first, and since nobody knows what
// listens at the session's bus.
bool PosixShell::DoExecuteEx(const SHELLEXECUTEINFOW& execution) {
  if (CompareIgnoringCase(execution.lpVerb, kPropertiesVerb) != 0)
    return Fail(ERROR_INVALID_PARAMETER, false);
  Located located;
  std::string native;
  std::uint32_t error = NativeOf(execution.lpFile, located, native);
  if (error != 0) return Fail(error, false);
  if (!HasDesktopSession()) return Fail(ERROR_NO_ASSOCIATION, false);
  char nothing = 0;
  error = mContext.Run(false, nothing, [native](char&) {
    return ShowItemProperties(native) ? ERROR_SUCCESS : ERROR_NO_ASSOCIATION;
  });
  return error == ERROR_SUCCESS || Fail(error, false);
}

std::uint32_t PosixShell::SendToBin(TextView path, const Located& homeTrash) {
  TrashRequest request;
  request.home = homeTrash;
  if (const auto error = mContext.Locate(path, request.source)) return error;
  const bool answers = request.source.drive->kind.answers &&
                       (homeTrash.drive == nullptr || homeTrash.drive->kind.answers);
  char nothing = 0;
  return WithPermit([&](const std::shared_ptr<ChangePermit>& permit) {
    return mContext.RunLong(
        answers, nothing, permit, [folders = mContext.folders, request, permit](char&) {
          return SparingDescriptors(*folders,
                                    [&] { return SendToTrash(*folders, request, *permit); });
        });
  });
}

Located PosixShell::HomeTrash(std::uint32_t& error) {
  Located trash;
  error = ERROR_PATH_NOT_FOUND;
  if (!mFolders.data.empty()) {
    const Text form = DriveForm(mFolders.data + "/Trash", error);
    if (error == ERROR_SUCCESS) error = mContext.Locate(form, trash);
  }
  return error == ERROR_SUCCESS ? trash : Located{};
}

// What was sent before a refusal stays sent.
std::int32_t PosixShell::DoFileOperation(SHFILEOPSTRUCTW& operation) {
  if (operation.wFunc != FO_DELETE || (operation.fFlags & FOF_ALLOWUNDO) == 0)
    return static_cast<std::int32_t>(ERROR_INVALID_PARAMETER);
  std::uint32_t error = ERROR_SUCCESS;
  for (TextView rest = operation.pFrom; error == ERROR_SUCCESS && !rest.empty();) {
    const TextView path = rest.substr(0, rest.find(u'\0'));
    if (path.empty()) break;
    if (path.starts_with(u"\\\\?\\") || path.find_first_of(u"*?") != TextView::npos)
      return DE_INVALIDFILES;
    mContext.letters->RefreshIfChanged();
    const Located home = HomeTrash(error);
    error = error == ERROR_OPERATION_ABORTED ? error : SendToBin(path, home);
    rest.remove_prefix(std::min(path.size() + 1, rest.size()));
  }
  operation.fAnyOperationsAborted = error == ERROR_OPERATION_ABORTED;
  return ShellCodeOf(error);
}

std::vector<Text> PosixShell::DoRecycleBinMarks() {
  const Text user = DecimalText(static_cast<std::int64_t>(::getuid()));
  std::vector<Text> marks;
  if (!mFolders.data.empty())
    if (Text home = DriveForm(mFolders.data + "/Trash"); !home.empty())
      marks.push_back(std::move(home) + u"\\");
  marks.push_back(u"\\.Trash-" + user + u"\\");
  marks.push_back(u"\\.Trash\\" + user + u"\\");
  return marks;
}

}  // namespace quillmarsh
