// SPDX-License-Identifier: MIT
// The library as the module that a program loads from the disk.
#include "LendingProgram.h"
#include "platform/posix/PosixMachine.h"

namespace pbcrc32::test {
namespace {

TEST(Module, ServesFromItsLoadUntilItIsFreed) {
  quillmarsh::PosixOptions withoutHome;
  withoutHome.dataHome = "";
  quillmarsh::PosixMachine machine(withoutHome);
  quillmarsh::Modules& process = machine.Process();
  const auto folder = machine.Drives().LocationFromNative(QUILLMARSH_MODULE_FOLDER);
  ASSERT_EQ(folder.error, 0U);
  const quillmarsh::Text name = process.ModuleFileName(u"pbcrc32");
  EXPECT_EQ(process.GetModuleHandleW(name), quillmarsh::NULL_HANDLE);
  EXPECT_EQ(process.LoadLibraryW(folder.path + u"\\no such module.so"), quillmarsh::NULL_HANDLE);
  EXPECT_EQ(machine.GetLastError(), quillmarsh::ERROR_MOD_NOT_FOUND);
  const quillmarsh::HANDLE module = process.LoadLibraryW(folder.path + u"\\" + name);
  ASSERT_NE(module, quillmarsh::NULL_HANDLE);
  EXPECT_EQ(process.GetModuleHandleW(name), module);
  EXPECT_EQ(process.GetProcAddress(module, "no such function"), nullptr);
  {
    LendingProgram program(reinterpret_cast<PB_SetCallbacks_Function>(
                               process.GetProcAddress(module, "PB_SetCallbacks")),
                           reinterpret_cast<PB_GetFileCrc32_Function>(
                               process.GetProcAddress(module, "PB_GetFileCrc32")));
    program.bytes = "123456789";
    EXPECT_EQ(program.Ask(), (Outcome{0xCBF43926, 0, ""}));
  }
  EXPECT_EQ(process.LoadLibraryW(folder.path + u"\\" + name), module);
  EXPECT_TRUE(process.FreeLibrary(module));
  EXPECT_EQ(process.GetModuleHandleW(name), module) << "loaded twice, freed once";
  EXPECT_TRUE(process.FreeLibrary(module));
  EXPECT_EQ(process.GetModuleHandleW(name), quillmarsh::NULL_HANDLE);
  EXPECT_FALSE(process.FreeLibrary(module));
}

}  // namespace
}  // namespace pbcrc32::test
