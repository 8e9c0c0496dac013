#include <atomic>
#include <iostream>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <testkit/StreamCapture.h>

#include <VelScrollingCapture/core/Messages.h>
#include <VelScrollingCapture/core/Utilities.h>
#include <VelScrollingCapture/stitching/BasicStitcher.h>
#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Pair;
using Testing::StreamCapture;

constexpr auto OutsideText = "Points given are out of the bounds for the given matrix";
constexpr auto NoImagesText = "Error: No images in provider passed to Stitch().";

/// Makes the library tell that a point lies outside.
void CutOutside() {
  cv::Mat image(2, 2, CV_8UC4, cv::Scalar::all(9));
  Utilities::ClipCorner(image, {5, 5}, {1, 1}, true);
}

/// Makes the library tell that there is nothing to stitch.
void StitchNothing() {
  BasicStitcher stitcher(nullptr);
  BasicImageProvider none;
  cv::Mat result;
  stitcher.Stitch(none, result, nullptr, 0, 100, false);
}

/// Hands the messages to a handler while it lives.
class HandledMessages {
 public:
  explicit HandledMessages(MessageHandler handler)
      : previous(SetMessageHandler(std::move(handler))) {}
  HandledMessages(const HandledMessages&) = delete;
  HandledMessages& operator=(const HandledMessages&) = delete;
  ~HandledMessages() { SetMessageHandler(previous); }

 private:
  MessageHandler previous;
};

TEST(Messages, GoToTheHandlerInsteadOfTheStreams) {
  std::vector<std::pair<MessageKind, std::string>> told;
  const StreamCapture output(std::cout);
  const StreamCapture errors(std::cerr);
  {
    const HandledMessages handled(
        [&told](MessageKind kind, const std::string& text) { told.emplace_back(kind, text); });
    CutOutside();
    StitchNothing();
  }
  EXPECT_THAT(told, ElementsAre(Pair(MessageKind::Error, OutsideText),
                                Pair(MessageKind::Error, NoImagesText)));
  EXPECT_EQ(errors.Text(), "");
  EXPECT_EQ(output.Text(), "");
}

TEST(Messages, GoToTheStreamAgainWithoutAHandler) {
  const StreamCapture errors(std::cerr);
  SetMessageHandler([](MessageKind, const std::string&) {});
  CutOutside();
  EXPECT_EQ(errors.Text(), "");
  SetMessageHandler(nullptr);
  CutOutside();
  EXPECT_EQ(errors.Text(), std::string(OutsideText) + "\n");
}

TEST(Messages, GiveBackTheHandlerThatWasReplaced) {
  int heard = 0;
  EXPECT_FALSE(SetMessageHandler([&heard](MessageKind, const std::string&) { ++heard; }));
  const MessageHandler replaced = SetMessageHandler(nullptr);
  ASSERT_TRUE(replaced);
  replaced(MessageKind::Error, "");
  EXPECT_EQ(heard, 1);
}

TEST(Messages, DropWhatAHandlerThrows) {
  const HandledMessages handled(
      [](MessageKind, const std::string&) { throw std::runtime_error("handler"); });
  EXPECT_NO_THROW(CutOutside());
  EXPECT_NO_THROW(StitchNothing());
}

TEST(Messages, LetAHandlerUseTheLibraryAndGiveUpItsPlace) {
  std::vector<std::string> told;
  const auto witness = std::make_shared<int>(0);
  const StreamCapture errors(std::cerr);
  SetMessageHandler([&told, witness](MessageKind, const std::string& text) {
    SetMessageHandler(nullptr);
    CutOutside();
    told.push_back(text);
  });
  StitchNothing();
  EXPECT_THAT(told, ElementsAre(NoImagesText));
  EXPECT_EQ(errors.Text(), std::string(OutsideText) + "\n");
  EXPECT_EQ(witness.use_count(), 1);
}

/// Keeps every piece of text that a stream is given, and counts the flushes.
class Pieces : public std::streambuf {
 public:
  explicit Pieces(std::ostream& stream)
      : stream(stream), original(stream.rdbuf(this)), flags(stream.flags()) {
    stream.unsetf(std::ios_base::unitbuf);
  }
  Pieces(const Pieces&) = delete;
  Pieces& operator=(const Pieces&) = delete;
  ~Pieces() override {
    stream.rdbuf(original);
    stream.flags(flags);
  }

  std::vector<std::string> pieces;
  int flushes = 0;

 protected:
  int_type overflow(int_type character) override {
    pieces.emplace_back(1, traits_type::to_char_type(character));
    return character;
  }
  std::streamsize xsputn(const char* characters, std::streamsize count) override {
    pieces.emplace_back(characters, static_cast<size_t>(count));
    return count;
  }
  int sync() override {
    ++flushes;
    return 0;
  }

 private:
  std::ostream& stream;
  std::streambuf* original;
  std::ios_base::fmtflags flags;
};

TEST(Messages, AreFlushedExceptThoseOfOperationsOnPixels) {
  Pieces errors(std::cerr);
  CutOutside();
  EXPECT_EQ(errors.flushes, 0);
  StitchNothing();
  EXPECT_EQ(errors.flushes, 1);
  EXPECT_THAT(errors.pieces,
              ElementsAre(std::string(OutsideText) + "\n", std::string(NoImagesText) + "\n"));
}

TEST(Messages, OfSeveralThreadsAreWrittenLineByLine) {
  constexpr int ThreadCount = 4;
  constexpr int LinesEach = 200;
  Pieces errors(std::cerr);
  std::vector<std::thread> threads;
  threads.reserve(ThreadCount);
  for (int i = 0; i < ThreadCount; ++i) {
    threads.emplace_back([] {
      for (int line = 0; line < LinesEach; ++line) {
        StitchNothing();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(errors.pieces.size(), ThreadCount * LinesEach);
  EXPECT_THAT(errors.pieces, Each(std::string(NoImagesText) + "\n"));
}

TEST(Messages, GoToEitherHandlerWhileOneReplacesTheOther) {
  constexpr int Lines = 1000;
  std::atomic<int> heard = 0;
  const MessageHandler count = [&heard](MessageKind, const std::string&) { ++heard; };
  const HandledMessages handled(count);
  std::thread teller([] {
    for (int line = 0; line < Lines; ++line) {
      StitchNothing();
    }
  });
  for (int i = 0; i < Lines; ++i) {
    SetMessageHandler(count);
  }
  teller.join();
  EXPECT_EQ(heard, Lines);
}

}  // namespace
}  // namespace ScrollingCapture
