// SPDX-License-Identifier: MIT
// The console program on a simulated machine, so that its output can be held against that of a real
// one. The environment names a file (QUILLMARSH_SIMULATED_DISK) from which the disk is read at the
// start and into which it is written back at the end: {"drives": ["C:\\"], "localData": "C:\\data",
// "entries": [{"path", "attributes", "created", "written", "bytes"}]}, times in UTC ticks, bytes in
// hexadecimal and none for a folder. What went to the Recycle Bin stands under "recycled" by the
// path that it had.
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "console/Entry.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/ChecksumModule.h"

namespace quillmarsh {

namespace {

std::string FromHexadecimal(const std::string& digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  return bytes;
}

std::string ToHexadecimal(std::string_view bytes) {
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += digits[static_cast<unsigned char>(byte) >> 4U];
    text += digits[static_cast<unsigned char>(byte) & 0xFU];
  }
  return text;
}

std::string DiskFile() {
  const char* const file = std::getenv("QUILLMARSH_SIMULATED_DISK");
  if (file == nullptr) throw std::runtime_error("QUILLMARSH_SIMULATED_DISK names no file");
  return file;
}

void ReadEntry(const nlohmann::json& entry, SimulatedMachine& machine) {
  const Text path = FromUtf8(entry.at("path").get<std::string>());
  const SimulatedFacts facts = {entry.at("attributes"), entry.at("created"), entry.at("written"),
                                entry.at("written")};
  if ((facts.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    machine.AddFolder(path, facts);
  else
    machine.AddFile(path, FromHexadecimal(entry.at("bytes")), facts);
}

nlohmann::json WrittenEntry(const SimulatedMachine& machine, const Text& path) {
  const SimulatedFacts facts = machine.FactsOf(path);
  nlohmann::json entry = {{"path", ToUtf8(path)},
                          {"attributes", facts.attributes},
                          {"created", facts.created},
                          {"written", facts.written}};
  if ((facts.attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    entry["bytes"] = ToHexadecimal(machine.ContentsOf(path));
  return entry;
}

}  // namespace

struct Entry::Streams {
  nlohmann::json drives;
  std::string localData;
  SimulatedMachine* machine = nullptr;
};

Entry::Entry(int argc, char** argv)
    : mStreams(std::make_unique<Streams>()), mArguments(argv, argv + argc) {}

Entry::~Entry() {
  if (mStreams->machine == nullptr) return;
  nlohmann::json disk = {{"drives", mStreams->drives},
                         {"localData", mStreams->localData},
                         {"entries", nlohmann::json::array()}};
  for (const std::string root : mStreams->drives)
    for (const Text& path : mStreams->machine->TreeOf(FromUtf8(root)))
      disk["entries"].push_back(WrittenEntry(*mStreams->machine, path));
  for (const RecycledEntry& entry : mStreams->machine->Recycled())
    disk["recycled"][ToUtf8(entry.originalPath)] =
        ToHexadecimal(mStreams->machine->ContentsOf(entry.binPath));
  std::ofstream(DiskFile()) << disk;
}

Machine& Entry::GetMachine() {
  if (mMachine != nullptr) return *mMachine;
  auto machine = std::make_unique<SimulatedMachine>();
  const auto disk = nlohmann::json::parse(std::ifstream(DiskFile()));
  mStreams->drives = disk.at("drives");
  mStreams->localData = disk.at("localData");
  machine->SetShellFolder(CSIDL_LOCAL_APPDATA, FromUtf8(mStreams->localData));
  for (const std::string root : mStreams->drives) {
    SimulatedDrive drive;
    drive.root = FromUtf8(root);
    machine->AddDrive(drive);
  }
  for (const auto& entry : disk.at("entries")) ReadEntry(entry, *machine);
  machine->SetProgramPath(u"C:\\Program\\quillmarsh-cli.exe");
  PutChecksumModule(*machine);
  machine->SetWaitingEvents(0xFFFF);
  mStreams->machine = machine.get();
  mMachine = std::move(machine);
  return *mMachine;
}

}  // namespace quillmarsh
