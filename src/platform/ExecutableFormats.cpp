// SPDX-License-Identifier: MIT
// MZ, NE, PE and ELF headers. Every number of a file goes through a bounded reader or a checked
// field access; counts are capped far above what real files have.
#include "platform/ExecutableFormats.h"

#include <algorithm>
#include <array>

#include "base/Text.h"
#include "platform/SystemConstants.h"

namespace quillmarsh {
namespace {

constexpr std::uint32_t SCS_OS216_BINARY = 5;

// Bytes at an offset of the file, as numbers of either byte order. A field beyond them is 0.
class Bytes {
 public:
  explicit Bytes(std::span<const std::byte> bytes, bool bigEndian = false)
      : mBytes(bytes), mBigEndian(bigEndian) {}

  [[nodiscard]] std::uint16_t U16(std::size_t at) const {
    return static_cast<std::uint16_t>(Number(at, 2));
  }
  [[nodiscard]] std::uint32_t U32(std::size_t at) const {
    return static_cast<std::uint32_t>(Number(at, 4));
  }
  [[nodiscard]] std::uint64_t U64(std::size_t at) const { return Number(at, 8); }

 private:
  [[nodiscard]] std::uint64_t Number(std::size_t at, std::size_t width) const {
    if (at > mBytes.size() || mBytes.size() - at < width) return 0;
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < width; ++i) {
      const std::size_t place = at + (mBigEndian ? i : width - 1 - i);
      number = (number << 8U) | std::to_integer<std::uint64_t>(mBytes[place]);
    }
    return number;
  }

  std::span<const std::byte> mBytes;
  bool mBigEndian;
};

template <std::size_t Count>
std::optional<std::array<std::byte, Count>> Take(const ReadBytesAt& read, std::uint64_t offset) {
  std::array<std::byte, Count> bytes{};
  if (!read(offset, bytes)) return std::nullopt;
  return bytes;
}

// ---- MZ, NE, PE

constexpr std::size_t MzHeaderBytes = 64;
constexpr std::size_t MzShortHeaderBytes = 28;  // what the oldest programs have
constexpr std::size_t MzNewHeaderAt = 60;
constexpr std::uint16_t MzSignature = 0x5A4D;
constexpr std::uint16_t NeSignature = 0x454E;
constexpr std::uint32_t PeSignature = 0x00004550;
constexpr std::uint16_t PeExecutable = 0x0002;
constexpr std::uint16_t PeLibrary = 0x2000;
constexpr std::uint16_t Magic32 = 0x10B;
constexpr std::uint16_t Magic64 = 0x20B;

// Signature (4), file header (20), magic of the optional header (2).
constexpr std::size_t PeStartBytes = 26;
constexpr std::uint64_t OptionalHeaderAt = 24;

std::optional<std::uint32_t> KindOfPe(const ReadBytesAt& read, std::uint64_t at) {
  const auto header = Take<PeStartBytes>(read, at);
  if (!header) return std::nullopt;
  const Bytes bytes(*header);
  const std::uint16_t characteristics = bytes.U16(22);
  if ((characteristics & PeExecutable) == 0 || (characteristics & PeLibrary) != 0)
    return std::nullopt;
  if (bytes.U16(OptionalHeaderAt) == Magic32) return SCS_32BIT_BINARY;
  if (bytes.U16(OptionalHeaderAt) == Magic64) return SCS_64BIT_BINARY;
  return std::nullopt;
}

std::optional<std::uint32_t> KindOfNe(const ReadBytesAt& read, std::uint64_t at) {
  const auto header = Take<64>(read, at);
  if (!header) return std::nullopt;
  constexpr std::uint16_t Library = 0x8000;
  constexpr unsigned ForOs2 = 1;
  const Bytes bytes(*header);
  if ((bytes.U16(12) & Library) != 0) return std::nullopt;
  return (bytes.U16(54) & 0xFFU) == ForOs2 ? SCS_OS216_BINARY : SCS_WOW_BINARY;
}

std::optional<std::uint32_t> KindOfMz(const ReadBytesAt& read) {
  const auto header = Take<MzHeaderBytes>(read, 0);
  if (!header) {
    if (Take<MzShortHeaderBytes>(read, 0)) return SCS_DOS_BINARY;
    return std::nullopt;
  }
  const std::uint64_t at = Bytes(*header).U32(MzNewHeaderAt);
  const auto signature = Take<4>(read, at);
  if (!signature) return SCS_DOS_BINARY;
  if (Bytes(*signature).U32(0) == PeSignature) return KindOfPe(read, at);
  if (Bytes(*signature).U16(0) == NeSignature) return KindOfNe(read, at);
  return SCS_DOS_BINARY;
}

// ---- ELF

// Where the fields lie in files of either word size.
struct ElfLayout {
  std::uint32_t kind;
  std::size_t headerBytes;
  std::size_t tableAt;
  std::size_t entrySizeAt;
  std::size_t entryCountAt;
  std::size_t entryBytes;
};
constexpr ElfLayout Elf32 = {SCS_32BIT_BINARY, 52, 28, 42, 44, 32};
constexpr ElfLayout Elf64 = {SCS_64BIT_BINARY, 64, 32, 54, 56, 56};

bool HasInterpreter(const ReadBytesAt& read, const Bytes& header, const ElfLayout& layout,
                    bool bigEndian) {
  constexpr std::uint32_t InterpreterEntry = 3;
  constexpr std::uint16_t MostEntries = 512;
  if (header.U16(layout.entrySizeAt) != layout.entryBytes) return false;
  const std::uint64_t table =
      &layout == &Elf64 ? header.U64(layout.tableAt) : header.U32(layout.tableAt);
  const std::uint16_t count = std::min(header.U16(layout.entryCountAt), MostEntries);
  if (table > std::uint64_t{1} << 62U) return false;  // so that no place beyond it overflows
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto type = Take<4>(read, table + i * layout.entryBytes);
    if (!type) return false;
    if (Bytes(*type, bigEndian).U32(0) == InterpreterEntry) return true;
  }
  return false;
}

std::optional<std::uint32_t> KindOfElf(const ReadBytesAt& read) {
  constexpr std::uint16_t Program = 2;
  constexpr std::uint16_t SharedOrProgram = 3;
  std::array<std::byte, 64> start{};
  if (!read(0, std::span(start).first(Elf32.headerBytes))) return std::nullopt;
  const auto wordSize = std::to_integer<unsigned>(start[4]);
  const auto byteOrder = std::to_integer<unsigned>(start[5]);
  if (wordSize < 1 || wordSize > 2 || byteOrder < 1 || byteOrder > 2) return std::nullopt;
  const ElfLayout& layout = wordSize == 1 ? Elf32 : Elf64;
  const std::span<std::byte> whole = std::span(start).first(layout.headerBytes);
  if (!read(0, whole)) return std::nullopt;
  const bool bigEndian = byteOrder == 2;
  const Bytes header(whole, bigEndian);
  const std::uint16_t type = header.U16(16);
  if (type == Program) return layout.kind;
  if (type == SharedOrProgram && HasInterpreter(read, header, layout, bigEndian))
    return layout.kind;
  return std::nullopt;
}

// ---- version resources

struct Section {
  std::uint32_t address = 0;
  std::uint32_t fileOffset = 0;
  std::uint32_t fileBytes = 0;
};

struct PeImage {
  std::vector<Section> sections;
  std::uint32_t resources = 0;  // address of the resource directory
};

std::optional<PeImage> ReadPeImage(const ReadBytesAt& read) {
  constexpr std::uint16_t MostSections = 1024;
  constexpr std::size_t SectionBytes = 40;
  constexpr std::uint32_t ResourceDirectory = 2;
  const auto mz = Take<MzHeaderBytes>(read, 0);
  if (!mz || Bytes(*mz).U16(0) != MzSignature) return std::nullopt;
  const std::uint64_t at = Bytes(*mz).U32(MzNewHeaderAt);
  const auto start = Take<PeStartBytes>(read, at);
  if (!start || Bytes(*start).U32(0) != PeSignature) return std::nullopt;
  const std::uint16_t magic = Bytes(*start).U16(OptionalHeaderAt);
  if (magic != Magic32 && magic != Magic64) return std::nullopt;

  // The count of directories, followed by an address and a size for each.
  const std::uint64_t directoriesAt = at + OptionalHeaderAt + (magic == Magic32 ? 92 : 108);
  const auto directories = Take<4 + 8 * (ResourceDirectory + 1)>(read, directoriesAt);
  if (!directories || Bytes(*directories).U32(0) <= ResourceDirectory) return std::nullopt;
  PeImage image;
  image.resources = Bytes(*directories).U32(4 + 8 * ResourceDirectory);
  if (image.resources == 0) return std::nullopt;

  const std::uint16_t count = std::min(Bytes(*start).U16(6), MostSections);
  std::vector<std::byte> table(count * SectionBytes);
  if (!read(at + OptionalHeaderAt + Bytes(*start).U16(20), table)) return std::nullopt;
  for (std::size_t row = 0; row < table.size(); row += SectionBytes)
    image.sections.push_back(
        {Bytes(table).U32(row + 12), Bytes(table).U32(row + 20), Bytes(table).U32(row + 16)});
  return image;
}

// The place in the file of something of `size` bytes; it must lie in one section.
std::optional<std::uint64_t> FileOffsetOf(const PeImage& image, std::uint64_t address,
                                          std::uint64_t size) {
  for (const Section& section : image.sections) {
    if (address < section.address) continue;
    const std::uint64_t inside = address - section.address;
    if (inside <= section.fileBytes && section.fileBytes - inside >= size)
      return section.fileOffset + inside;
  }
  return std::nullopt;
}

constexpr std::uint32_t SubdirectoryBit = 0x80000000;

// What the entry for a number points at, or the first entry where no number is wanted; the answer
// is counted from the resource directory and keeps its subdirectory bit.
std::optional<std::uint32_t> EntryOfDirectory(const ReadBytesAt& read, const PeImage& image,
                                              std::uint32_t directory,
                                              std::optional<std::uint32_t> wanted) {
  constexpr std::size_t HeaderBytes = 16;
  constexpr std::size_t EntryBytes = 8;
  constexpr std::size_t MostEntries = 4096;
  const std::uint64_t address = std::uint64_t{image.resources} + directory;
  const auto headerAt = FileOffsetOf(image, address, HeaderBytes);
  if (!headerAt) return std::nullopt;
  const auto header = Take<HeaderBytes>(read, *headerAt);
  if (!header) return std::nullopt;
  const std::size_t all = std::size_t{Bytes(*header).U16(12)} + Bytes(*header).U16(14);
  std::vector<std::byte> entries(std::min(all, wanted ? MostEntries : 1) * EntryBytes);
  const auto entriesAt = FileOffsetOf(image, address + HeaderBytes, entries.size());
  if (!entriesAt || !read(*entriesAt, entries)) return std::nullopt;
  for (std::size_t row = 0; row < entries.size(); row += EntryBytes)
    if (!wanted || Bytes(entries).U32(row) == *wanted) return Bytes(entries).U32(row + 4);
  return std::nullopt;
}

// Three directories lie one in the other: by type, by name, by language.
std::optional<std::uint32_t> VersionDataEntry(const ReadBytesAt& read, const PeImage& image) {
  constexpr std::uint32_t VersionType = 16;
  const auto names = EntryOfDirectory(read, image, 0, VersionType);
  if (!names || (*names & SubdirectoryBit) == 0) return std::nullopt;
  const auto languages = EntryOfDirectory(read, image, *names & ~SubdirectoryBit, std::nullopt);
  if (!languages || (*languages & SubdirectoryBit) == 0) return std::nullopt;
  const auto data = EntryOfDirectory(read, image, *languages & ~SubdirectoryBit, std::nullopt);
  if (!data || (*data & SubdirectoryBit) != 0) return std::nullopt;
  return data;
}

}  // namespace

std::optional<std::uint32_t> KindOfExecutable(const ReadBytesAt& read) {
  constexpr std::uint32_t ElfSignature = 0x464C457F;
  const auto signature = Take<4>(read, 0);
  if (!signature) return std::nullopt;
  if (Bytes(*signature).U16(0) == MzSignature) return KindOfMz(read);
  if (Bytes(*signature).U32(0) == ElfSignature) return KindOfElf(read);
  return std::nullopt;
}

VersionBlock ReadVersionBlock(const ReadBytesAt& read) {
  // A block tells its own length in 16 bits.
  constexpr std::uint32_t MostBytes = 0x10000;
  const auto image = ReadPeImage(read);
  if (!image) return {{}, ERROR_RESOURCE_DATA_NOT_FOUND};
  const auto entry = VersionDataEntry(read, *image);
  if (!entry) return {{}, ERROR_RESOURCE_TYPE_NOT_FOUND};
  const auto entryAt = FileOffsetOf(*image, std::uint64_t{image->resources} + *entry, 16);
  if (!entryAt) return {{}, ERROR_RESOURCE_DATA_NOT_FOUND};
  const auto place = Take<16>(read, *entryAt);
  if (!place) return {{}, ERROR_RESOURCE_DATA_NOT_FOUND};
  const std::uint32_t size = Bytes(*place).U32(4);
  const auto dataAt = FileOffsetOf(*image, Bytes(*place).U32(0), size);
  if (!dataAt || size == 0 || size > MostBytes) return {{}, ERROR_RESOURCE_DATA_NOT_FOUND};
  VersionBlock block;
  block.bytes.resize(size);
  if (!read(*dataAt, block.bytes)) return {{}, ERROR_RESOURCE_DATA_NOT_FOUND};
  return block;
}

std::optional<VS_FIXEDFILEINFO> FixedFileInfoOf(std::span<const std::byte> block) {
  // Three lengths, the key with its NUL, and the filling up to a multiple of four.
  constexpr TextView Key(u"VS_VERSION_INFO\0", 16);
  constexpr std::size_t KeyAt = 6;
  constexpr std::size_t ValueAt = 40;
  constexpr std::size_t WholeValueBytes = 52;
  constexpr std::uint32_t Signature = 0xFEEF04BD;
  const Bytes bytes(block);
  if (block.size() < ValueAt + sizeof(VS_FIXEDFILEINFO) || bytes.U16(2) < WholeValueBytes)
    return std::nullopt;
  for (std::size_t i = 0; i < Key.size(); ++i)
    if (bytes.U16(KeyAt + 2 * i) != Key[i]) return std::nullopt;
  const auto field = [&bytes](std::size_t number) { return bytes.U32(ValueAt + 4 * number); };
  if (field(0) != Signature) return std::nullopt;
  return VS_FIXEDFILEINFO{field(0), field(1), field(2), field(3),
                          field(4), field(5), field(6), field(7)};
}

}  // namespace quillmarsh
