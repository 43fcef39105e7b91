// SPDX-License-Identifier: MIT
// Kinds of executables and version resources, on files that the test builds field by field, and on
// the same files with bytes turned at random.
#include "platform/ExecutableFormats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

// A file in memory that grows as fields are put into it.
class Image {
 public:
  explicit Image(bool bigEndian = false) : mBigEndian(bigEndian) {}

  Image& Put(std::size_t at, std::size_t width, std::uint64_t number) {
    if (bytes.size() < at + width) bytes.resize(at + width);
    for (std::size_t i = 0; i < width; ++i)
      bytes[at + (mBigEndian ? width - 1 - i : i)] = static_cast<std::byte>(number >> (8 * i));
    return *this;
  }
  Image& U16(std::size_t at, std::uint64_t number) { return Put(at, 2, number); }
  Image& U32(std::size_t at, std::uint64_t number) { return Put(at, 4, number); }
  Image& Size(std::size_t size) {
    bytes.resize(size);
    return *this;
  }

  [[nodiscard]] ReadBytesAt Reader(int* reads = nullptr) const {
    return [this, reads](std::uint64_t offset, std::span<std::byte> out) {
      if (reads != nullptr) ++*reads;
      if (offset > bytes.size() || bytes.size() - offset < out.size()) return false;
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), out.size(), out.begin());
      return true;
    };
  }

  std::vector<std::byte> bytes;

 private:
  bool mBigEndian;
};

Image Mz(std::size_t newHeader) {
  return Image().U16(0, 0x5A4D).U32(60, newHeader);
}

// The file header and the start of the optional header of a PE file at 0x80.
Image Pe(std::uint16_t magic, std::uint16_t characteristics) {
  return Mz(0x80).U32(0x80, 0x4550).U16(0x80 + 22, characteristics).U16(0x98, magic);
}

Image Ne(std::uint16_t flags, std::uint8_t system) {
  return Mz(0x40).U16(0x40, 0x454E).U16(0x40 + 12, flags).Put(0x40 + 54, 1, system).Size(0x200);
}

enum class Interpreter { No, Yes };

Image Elf(int wordSize, bool bigEndian, std::uint16_t type, Interpreter interpreter) {
  const bool wide = wordSize == 64;
  const std::size_t header = wide ? 64 : 52;
  const std::size_t entry = wide ? 56 : 32;
  Image image(bigEndian);
  image.Size(header + 3 * entry);
  const unsigned char start[] = {0x7F,
                                 'E',
                                 'L',
                                 'F',
                                 static_cast<unsigned char>(wide ? 2 : 1),
                                 static_cast<unsigned char>(bigEndian ? 2 : 1)};
  for (std::size_t i = 0; i < sizeof(start); ++i) image.Put(i, 1, start[i]);
  image.U16(16, type).Put(wide ? 32 : 28, wide ? 8 : 4, header);
  image.U16(wide ? 54 : 42, entry).U16(wide ? 56 : 44, 3);
  image.U32(header, 6).U32(header + entry, 1);
  image.U32(header + 2 * entry, interpreter == Interpreter::Yes ? 3 : 2);
  return image;
}

TEST(KindOfExecutableTest, OnlyProgramsHaveAKind) {
  constexpr std::uint16_t Program = 0x0002;
  constexpr std::uint16_t Library = 0x2002;
  const std::optional<std::uint32_t> none;
  struct Case {
    const char* name;
    Image image;
    std::optional<std::uint32_t> kind;
  };
  const Case cases[] = {
      {"empty file", Image(), none},
      {"text", Image().U32(0, 0x20736968).Size(100), none},
      {"two letters", Image().U16(0, 0x5A4D), none},
      {"MZ alone", Mz(0).Size(64), SCS_DOS_BINARY},
      {"short MZ", Image().U16(0, 0x5A4D).Size(28), SCS_DOS_BINARY},
      {"MZ that points beyond the file", Mz(0xFFFFFFF0), SCS_DOS_BINARY},
      {"16-bit program", Ne(0, 2), SCS_WOW_BINARY},
      {"16-bit library", Ne(0x8000, 2), none},
      {"32-bit program", Pe(0x10B, Program), SCS_32BIT_BINARY},
      {"64-bit program", Pe(0x20B, Program), SCS_64BIT_BINARY},
      {"library", Pe(0x20B, Library), none},
      {"not linked", Pe(0x20B, 0), none},
      {"other magic", Pe(0x107, Program), none},
      {"cut PE", Pe(0x20B, Program).Size(0x90), none},
      {"64-bit ELF program", Elf(64, false, 2, Interpreter::No), SCS_64BIT_BINARY},
      {"32-bit ELF program", Elf(32, false, 2, Interpreter::Yes), SCS_32BIT_BINARY},
      {"position-independent", Elf(64, false, 3, Interpreter::Yes), SCS_64BIT_BINARY},
      {"position-independent, 32-bit", Elf(32, false, 3, Interpreter::Yes), SCS_32BIT_BINARY},
      {"big-endian", Elf(64, true, 3, Interpreter::Yes), SCS_64BIT_BINARY},
      {"shared object", Elf(64, false, 3, Interpreter::No), none},
      {"object file", Elf(64, false, 1, Interpreter::No), none},
      {"core dump", Elf(64, false, 4, Interpreter::Yes), none},
      {"cut before the entries", Elf(64, false, 3, Interpreter::Yes).Size(100), none},
      {"cut in the header", Elf(64, false, 2, Interpreter::No).Size(60), none},
  };
  for (const Case& row : cases)
    EXPECT_EQ(KindOfExecutable(row.image.Reader()), row.kind) << row.name;
}

constexpr std::uint32_t ResourceAddress = 0x3000;
constexpr std::size_t ResourceOffset = 0x400;
constexpr std::size_t BlockOffset = ResourceOffset + 0x90;
constexpr std::uint32_t BlockBytes = 92;

// A PE file of two sections whose second holds the directories, an icon before the version.
Image WithVersion(std::uint16_t magic) {
  Image image = Pe(magic, 0x0002);
  const std::size_t optional = 0x98;
  const std::size_t directories = optional + (magic == 0x10B ? 92 : 108);
  const std::size_t sections = directories + 4 + 128;  // sixteen of 8 bytes behind their count
  image.U16(0x80 + 6, 2).U16(0x80 + 20, sections - optional).U32(directories, 16);
  image.U32(directories + 20, ResourceAddress).U32(directories + 24, 0x200);
  image.U32(sections + 8, 0x1000).U32(sections + 12, 0x1000);  // nothing of it in the file
  image.U32(sections + 40 + 8, 0x200).U32(sections + 40 + 12, ResourceAddress);
  image.U32(sections + 40 + 16, 0x200).U32(sections + 40 + 20, ResourceOffset);

  const std::size_t base = ResourceOffset;
  image.U16(base + 12, 1).U16(base + 14, 2);  // one type with a name, two with numbers
  image.U32(base + 16, 0x80000100).U32(base + 20, 0x80000030);
  image.U32(base + 24, 3).U32(base + 28, 0x80000030);
  image.U32(base + 32, 16).U32(base + 36, 0x80000030);
  image.U16(base + 0x30 + 14, 1).U32(base + 0x40, 1).U32(base + 0x44, 0x80000050);
  image.U16(base + 0x50 + 14, 1).U32(base + 0x60, 1033).U32(base + 0x64, 0x70);
  image.U32(base + 0x70, ResourceAddress + 0x90).U32(base + 0x74, BlockBytes);

  image.U16(BlockOffset, BlockBytes).U16(BlockOffset + 2, 52);
  constexpr char16_t Key[] = u"VS_VERSION_INFO";
  for (std::size_t i = 0; i < std::size(Key); ++i) image.U16(BlockOffset + 6 + 2 * i, Key[i]);
  image.U32(BlockOffset + 40, 0xFEEF04BD).U32(BlockOffset + 44, 0x10000);
  image.U32(BlockOffset + 48, 0x00010002).U32(BlockOffset + 52, 0x00030004);
  image.U32(BlockOffset + 68, VS_FF_PATCHED);
  return image.Size(ResourceOffset + 0x200);
}

TEST(VersionBlockTest, TheFixedPartIsFoundInFilesOfBothWordSizes) {
  for (const std::uint16_t magic : {std::uint16_t{0x10B}, std::uint16_t{0x20B}}) {
    const Image image = WithVersion(magic);
    VersionBlock block = ReadVersionBlock(image.Reader());
    EXPECT_EQ(block.error, 0U);
    ASSERT_EQ(block.bytes.size(), BlockBytes);
    block.bytes.resize(72);  // a caller may read no more than it needs
    const auto fixed = FixedFileInfoOf(block.bytes);
    ASSERT_TRUE(fixed.has_value());
    EXPECT_EQ(fixed->dwFileVersionMS, 0x00010002U);
    EXPECT_EQ(fixed->dwFileVersionLS, 0x00030004U);
    EXPECT_EQ(fixed->dwFileFlags, VS_FF_PATCHED);
  }
}

TEST(VersionBlockTest, WhatIsMissingOrLeadsAstrayIsAFailure) {
  constexpr std::uint32_t NoData = ERROR_RESOURCE_DATA_NOT_FOUND;
  constexpr std::uint32_t NoType = ERROR_RESOURCE_TYPE_NOT_FOUND;
  const std::size_t directories = 0x98 + 108;
  const Image whole = WithVersion(0x20B);
  struct Case {
    const char* name;
    Image image;
    std::uint32_t error;
  };
  const Case cases[] = {
      {"no PE file", Mz(0x40).Size(0x100), NoData},
      {"no resources", Image(whole).U32(directories + 20, 0), NoData},
      {"too few directories", Image(whole).U32(directories, 2), NoData},
      {"no version among them", Image(whole).U32(ResourceOffset + 32, 24), NoType},
      {"directory outside the sections", Image(whole).U32(directories + 20, 0x9000), NoType},
      {"type that is no directory", Image(whole).U32(ResourceOffset + 36, 0x30), NoType},
      {"directory that holds itself", Image(whole).U32(ResourceOffset + 0x64, 0x80000050), NoType},
      {"name directory that is empty", Image(whole).U16(ResourceOffset + 0x3E, 0), NoType},
      {"block outside the section", Image(whole).U32(ResourceOffset + 0x70, 0x31F0).Size(0x2000),
       NoData},
      {"block longer than the section", Image(whole).U32(ResourceOffset + 0x74, 0x1000), NoData},
      {"empty block", Image(whole).U32(ResourceOffset + 0x74, 0), NoData},
      {"block cut by the end of the file", Image(whole).Size(BlockOffset + 20), NoData},
  };
  for (const Case& row : cases) {
    const VersionBlock block = ReadVersionBlock(row.image.Reader());
    EXPECT_EQ(block.error, row.error) << row.name;
    EXPECT_TRUE(block.bytes.empty()) << row.name;
  }
}

TEST(VersionBlockTest, ABlockWithoutItsFixedPartHasNone) {
  const std::vector<std::byte> block = ReadVersionBlock(WithVersion(0x10B).Reader()).bytes;
  ASSERT_TRUE(FixedFileInfoOf(block).has_value());
  for (const std::size_t at : {std::size_t{2}, std::size_t{6}, std::size_t{36}, std::size_t{40}}) {
    std::vector<std::byte> broken = block;
    broken[at] ^= std::byte{1} << (at == 2 ? 4 : 0);
    EXPECT_FALSE(FixedFileInfoOf(broken).has_value()) << at;
  }
  for (std::size_t size = 0; size < 72; ++size)
    EXPECT_FALSE(FixedFileInfoOf(std::span(block).first(size)).has_value()) << size;
}

TEST(ExecutableFormatsTest, TurnedBytesNeverLeadToManyReads) {
  std::mt19937 random(4);
  const Image wholes[] = {WithVersion(0x10B), WithVersion(0x20B),
                          Elf(64, false, 3, Interpreter::No), Elf(32, true, 3, Interpreter::No)};
  int mostReads = 0;
  for (int round = 0; round < 20000; ++round) {
    Image image = wholes[static_cast<std::size_t>(round) % std::size(wholes)];
    // Long enough that astray places lie in the file and are read.
    image.Size(100000);
    for (int turns = 0; turns < 4; ++turns)
      image.bytes[random() % 0x520] = static_cast<std::byte>(random() % 3 == 0 ? 0xFF : random());
    int reads = 0;
    const ReadBytesAt read = image.Reader(&reads);
    (void)KindOfExecutable(read);
    (void)FixedFileInfoOf(ReadVersionBlock(read).bytes);
    mostReads = std::max(mostReads, reads);
  }
  EXPECT_LT(mostReads, 600);
}

}  // namespace
}  // namespace quillmarsh
