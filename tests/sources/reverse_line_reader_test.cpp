#include "sources/reverse_line_reader.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <vector>

#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

std::vector<std::string> allLines(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  auto reader = ReverseLineReader::open(file);
  if (!reader) return {"(not opened)"};
  while (const auto line = reader->previous()) lines.emplace_back(*line);
  return lines;
}

TEST(ReverseLineReaderTest, LinesComeLastFirstAndAnUnfinishedLastLineIsLeftOut) {
  testing_support::TemporaryDirectory directory;
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"a\nb\nc\n", {"c", "b", "a"}},
      {"a\nb\nhalf-writ", {"b", "a"}},
      {"no newline at all", {}},
      {"", {}},
      {"\n", {""}},
      {"a\n\nb\n", {"b", "", "a"}},
  };
  for (const auto& [bytes, expected] : cases) {
    EXPECT_EQ(allLines(directory.write("f.jsonl", bytes)), expected) << bytes;
  }
}

TEST(ReverseLineReaderTest, BytesReadCountOnlyTheChunksReached) {
  testing_support::TemporaryDirectory directory;
  std::string bytes;
  while (bytes.size() < 1024 * 1024) bytes += "a line of conversation\n";
  bytes += "last\n";
  auto reader = ReverseLineReader::open(directory.write("f.jsonl", bytes));
  ASSERT_TRUE(reader);
  EXPECT_EQ(reader->bytesRead(), 0u);
  EXPECT_EQ(reader->previous(), "last");
  EXPECT_EQ(reader->bytesRead(), ReverseLineReader::chunkBytes);
  while (reader->previous()) {
  }
  EXPECT_EQ(reader->bytesRead(), bytes.size());
}

TEST(ReverseLineReaderTest, LinesSpanningChunksAreJoined) {
  testing_support::TemporaryDirectory directory;
  const std::string longLine(ReverseLineReader::chunkBytes * 2 + 17, 'x');
  const auto file = directory.write("f.jsonl", "first\n" + longLine + "\nlast\n");
  EXPECT_EQ(allLines(file), (std::vector<std::string>{"last", longLine, "first"}));
}

TEST(ReverseLineReaderTest, LinesOverTheLimitArePassedOver) {
  testing_support::TemporaryDirectory directory;
  const std::string hugeLine(ReverseLineReader::maxLineBytes + 1, 'x');
  const auto file = directory.write("f.jsonl", "first\n" + hugeLine + "\nlast\n");
  EXPECT_EQ(allLines(file), (std::vector<std::string>{"last", "first"}));
}

// A writer caught in the middle of a line longer than the limit: the complete line before it is
// still the newest one read.
TEST(ReverseLineReaderTest, AnUnfinishedTailOverTheLimitLeavesTheLineBeforeIt) {
  testing_support::TemporaryDirectory directory;
  for (const std::size_t tail :
       {ReverseLineReader::maxLineBytes - 1, ReverseLineReader::maxLineBytes,
        ReverseLineReader::maxLineBytes + 1,
        ReverseLineReader::maxLineBytes + ReverseLineReader::chunkBytes * 2}) {
    const auto file = directory.write("f.jsonl", "older\nnewest\n" + std::string(tail, 'x'));
    EXPECT_EQ(allLines(file), (std::vector<std::string>{"newest", "older"})) << tail;
  }
}

TEST(ReverseLineReaderTest, OnlyRegularFilesAreOpened) {
  testing_support::TemporaryDirectory directory;
  const auto fifo = directory.path() / "fifo.jsonl";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_FALSE(ReverseLineReader::open(fifo));
  EXPECT_FALSE(ReverseLineReader::open(directory.path()));
  EXPECT_FALSE(ReverseLineReader::open("/dev/zero"));
  EXPECT_FALSE(ReverseLineReader::open(directory.path() / "missing.jsonl"));
}

}  // namespace
}  // namespace korvo
