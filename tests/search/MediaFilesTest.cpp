// SPDX-License-Identifier: MIT
// Small real files through the installed library MediaInfo. The tests run in the C locale, in which
// the library by itself could not even name most files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <functional>
#include <thread>

#include "frame/ProgramFlags.h"
#include "frame/Pump.h"
#include "frame/Views.h"
#include "platform/PatientWorker.h"
#include "platform/posix/TempTree.h"
#include "search/MediaInfoLibrary.h"
#include "search/MediaProperties.h"

namespace quillmarsh {
namespace {

// Numbers with their lowest byte first.
std::string Low(std::uint32_t number, int bytes) {
  std::string text;
  for (int index = 0; index < bytes; ++index) text += static_cast<char>(number >> (8 * index));
  return text;
}

std::string Chunk(const std::string& name, const std::string& body) {
  return name + Low(static_cast<std::uint32_t>(body.size()), 4) + body +
         (body.size() % 2 ? "0" : "");
}

// A tenth of a second, one channel, 16 bits.
std::string Wave() {
  const std::string format =
      Low(1, 2) + Low(1, 2) + Low(8000, 4) + Low(16000, 4) + Low(2, 2) + Low(16, 2);
  return Chunk("RIFF", "WAVE" + Chunk("fmt ", format) + Chunk("data", std::string(1600, '\0')));
}

std::string Bitmap(std::uint32_t width, std::uint32_t height) {
  const std::string header = Low(40, 4) + Low(width, 4) + Low(height, 4) + Low(1, 2) + Low(24, 2) +
                             Low(0, 4) + std::string(20, '\0');
  const std::string pixels(std::size_t{(width * 3 + 3) / 4 * 4} * height, '\x80');
  const auto size = static_cast<std::uint32_t>(14 + header.size() + pixels.size());
  return "BM" + Low(size, 4) + Low(0, 4) + Low(54, 4) + header + pixels;
}

// Uncompressed, 25 pictures a second.
std::string Video(std::uint32_t pictures) {
  const std::string picture(16 * 16 * 3, '\x40');
  const std::string mainHeader = Low(40000, 4) + Low(0, 4) + Low(0, 4) + Low(0x10, 4) +
                                 Low(pictures, 4) + Low(0, 4) + Low(1, 4) + Low(0, 4) + Low(16, 4) +
                                 Low(16, 4) + std::string(16, '\0');
  const std::string streamHeader = "vidsDIB " + std::string(12, '\0') + Low(1, 4) + Low(25, 4) +
                                   Low(0, 4) + Low(pictures, 4) + std::string(20, '\0');
  const std::string format = Low(40, 4) + Low(16, 4) + Low(16, 4) + Low(1, 2) + Low(24, 2) +
                             Low(0, 4) + Low(16 * 16 * 3, 4) + std::string(16, '\0');
  std::string movie = "movi";
  for (std::uint32_t index = 0; index < pictures; ++index) movie += Chunk("00db", picture);
  const std::string stream = "strl" + Chunk("strh", streamHeader) + Chunk("strf", format);
  return Chunk("RIFF",
               "AVI " + Chunk("LIST", "hdrl" + Chunk("avih", mainHeader) + Chunk("LIST", stream)) +
                   Chunk("LIST", movie));
}

class MediaFilesTest : public testing::Test, private PumpView {
 protected:
  MediaFilesTest() : machine(AlwaysBusy(test::DriveAt(mScratch, files.Root()))) {
    UseMachine(&machine);
    machine.SetPatience(&mPatience);
    gViews.pump = this;
    gUserAbort = false;
  }
  ~MediaFilesTest() override {
    gViews = {};
    gUserAbort = false;
    UseMachine(nullptr);
  }
  // Of what lies at the native path.
  MediaProperties Read(const std::string& native) {
    const CanonicalLocation location = machine.Drives().NewLocationFromNative(native);
    EXPECT_EQ(location.error, 0U);
    return ReadMediaProperties(location.path, MediaInfoLibraryName());
  }
  // Without blanks, which the library sets as it likes.
  std::string Report(const std::string& native) {
    const MediaProperties read = Read(native);
    EXPECT_EQ(read.outcome, MediaOutcome::Read);
    std::string text = ToUtf8(read.summary);
    std::erase(text, ' ');
    return text;
  }

  test::TempTree files;
  std::function<void()> onPump;

 private:
  void PumpEvents() override {
    if (onPump) onPump();
  }
  test::TempTree mScratch;
  PumpingPatience mPatience;
  static PosixOptions AlwaysBusy(PosixOptions options) {
    options.queueStatus = [](std::uint32_t kinds) { return kinds; };
    return options;
  }

 protected:
  PosixMachine machine;
};

TEST_F(MediaFilesTest, AudioImageAndVideoAreDescribed) {
  const std::string audio = Report(files.File("a.wav", Wave()));
  EXPECT_NE(audio.find("Completename:" + files.At("a.wav") + "\n"), std::string::npos) << audio;
  EXPECT_NE(audio.find("Format:Wave"), std::string::npos);
  EXPECT_NE(audio.find("Duration:100ms"), std::string::npos);
  EXPECT_NE(audio.find("Audio\nFormat:PCM"), std::string::npos);
  const std::string image = Report(files.File("a.bmp", Bitmap(31, 7)));
  EXPECT_NE(image.find("Image\n"), std::string::npos) << image;
  EXPECT_NE(image.find("Width:31pixels\nHeight:7pixels"), std::string::npos);
  const std::string video = Report(files.File("a.avi", Video(50)));
  EXPECT_NE(video.find("Format:AVI"), std::string::npos) << video;
  EXPECT_NE(video.find("Video\n"), std::string::npos);
  EXPECT_NE(video.find("Duration:2s"), std::string::npos);
}

TEST_F(MediaFilesTest, EveryNameIsOpenedInTheCLocale) {
  ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  const std::string umlaut = files.File("T\xC3\xB6ne \xF0\x9F\x93\xBC.wav", Wave());
  EXPECT_NE(Report(umlaut).find("T\xC3\xB6ne\xF0\x9F\x93\xBC.wav\nFormat:Wave"), std::string::npos);
  EXPECT_NE(Report(files.File("T\xF6ne.wav", Wave())).find("Duration:100ms"), std::string::npos);
  std::string deep = "deep";
  for (int level = 0; level < 15; ++level) deep += "/" + std::string(200, 'd');
  EXPECT_NE(Report(files.File(deep + "/a.wav", Wave())).find("Format:Wave"), std::string::npos);
}

TEST_F(MediaFilesTest, WhatIsNoMediaFileIsToldApartFromWhatCannotBeOpened) {
  EXPECT_EQ(Read(files.File("a.txt", "This is a text.\n")).outcome, MediaOutcome::NotMedia);
  EXPECT_EQ(Read(files.File("a.mp3", "")).outcome, MediaOutcome::NotMedia);
  EXPECT_EQ(Read(files.At("gone.wav")).outcome, MediaOutcome::NotOpened);
  EXPECT_EQ(Read(files.Folder("folder.wav")).outcome, MediaOutcome::NotOpened);
  ASSERT_EQ(::mkfifo(files.At("fifo.wav").c_str(), 0600), 0);
  EXPECT_EQ(Read(files.At("fifo.wav")).outcome, MediaOutcome::NotOpened);
}

TEST_F(MediaFilesTest, DamagedFilesComeToAnEnd) {
  for (const std::string& whole : {Wave(), Bitmap(31, 7), Video(5)}) {
    for (std::size_t cut = 1; cut < 200; cut += 7) {
      const MediaOutcome cutOff = Read(files.File("cut.avi", whole.substr(0, cut))).outcome;
      EXPECT_TRUE(cutOff == MediaOutcome::Read || cutOff == MediaOutcome::NotMedia);
      std::string changed = whole;
      changed.replace(cut, 4, "\xFF\xFF\xFF\xFF");
      const MediaOutcome bent = Read(files.File("bent.avi", changed)).outcome;
      EXPECT_TRUE(bent == MediaOutcome::Read || bent == MediaOutcome::NotMedia);
    }
  }
}

// The library itself follows the list, to whatever it names.
TEST_F(MediaFilesTest, AListThatLeadsToAFifoIsLeftByAStop) {
  ASSERT_EQ(::mkfifo(files.At("piece.ts").c_str(), 0600), 0);
  const std::string list =
      files.File("list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:10,\n" +
                                  files.At("piece.ts") + "\n#EXT-X-ENDLIST\n");
  onPump = [pumps = 0]() mutable { gUserAbort = ++pumps == 5; };
  EXPECT_EQ(Read(list).outcome, MediaOutcome::Stopped);
  EXPECT_TRUE(PatientWorker::IsAnyLeftBehind());
  // The library gets its piece, so that nothing runs in it when the test ends.
  for (int attempt = 0; PatientWorker::IsAnyLeftBehind() && attempt < 2000; ++attempt) {
    const int writer = ::open(files.At("piece.ts").c_str(), O_WRONLY | O_NONBLOCK);
    if (writer >= 0) ::close(writer);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_FALSE(PatientWorker::IsAnyLeftBehind());
}

}  // namespace
}  // namespace quillmarsh
