#include "sources/zstd_line_reader.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "support/temporary_directory.hpp"

namespace korvo::zstd_lines {
namespace {

class ZstdLineReaderTest : public testing::Test {
 protected:
  // `bytes` compressed by the zstd tool with `options` into `name`.
  std::filesystem::path compressed(const std::string& name, const std::string& bytes,
                                   const std::string& options = "-3") {
    const auto plain = directory.write(name + ".plain", bytes);
    const auto file = directory.path() / name;
    // Through a pipe, as a writer that streams does: the frame does not state its size.
    EXPECT_EQ(std::system(("zstd " + options + " -q -c < '" + plain.string() + "' > '" +
                           file.string() + "'")
                              .c_str()),
              0);
    return file;
  }
  static std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  struct Read {
    std::vector<std::string> lines;
    Outcome outcome;
  };
  static Read read(const std::filesystem::path& file) {
    Read result;
    result.outcome =
        forEachLine(file, [&](std::string_view line) { result.lines.emplace_back(line); });
    return result;
  }

  testing_support::TemporaryDirectory directory;
};

TEST_F(ZstdLineReaderTest, CompleteLinesAreHandedInOrderButNotAnUnfinishedLast) {
  const auto file = compressed("a.zst", "one\n\ntwo\nthree, still being written");
  const auto result = read(file);
  EXPECT_TRUE(result.outcome.complete);
  EXPECT_EQ(result.outcome.bytesRead, std::filesystem::file_size(file));
  EXPECT_EQ(result.lines, (std::vector<std::string>{"one", "", "two"}));
}

TEST_F(ZstdLineReaderTest, ConcatenatedFramesReadAsOneStream) {
  const auto first = bytesOf(compressed("1.zst", "one\ntw"));
  const auto second = bytesOf(compressed("2.zst", "o\nthree\n"));
  const auto file = directory.write("both.zst", first + second);
  const auto result = read(file);
  EXPECT_TRUE(result.outcome.complete);
  EXPECT_EQ(result.lines, (std::vector<std::string>{"one", "two", "three"}));
}

TEST_F(ZstdLineReaderTest, LinesOverTheLimitArePassedOver) {
  const auto file =
      compressed("long.zst", "before\n" + std::string(maxLineBytes + 1, 'x') + "\nafter\n");
  EXPECT_EQ(read(file).lines, (std::vector<std::string>{"before", "after"}));
}

TEST_F(ZstdLineReaderTest, TruncatedCorruptOrForeignFilesAreNotComplete) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "line " + std::to_string(i) + "\n";
  const auto whole = bytesOf(compressed("whole.zst", text));
  EXPECT_FALSE(
      read(directory.write("truncated.zst", whole.substr(0, whole.size() / 2))).outcome.complete);
  EXPECT_FALSE(
      read(directory.write("cut.zst", whole.substr(0, whole.size() - 1))).outcome.complete);
  std::string corrupt = whole;
  for (std::size_t i = corrupt.size() / 2; i < corrupt.size() / 2 + 16; ++i) corrupt[i] ^= 0x5a;
  EXPECT_FALSE(read(directory.write("corrupt.zst", corrupt)).outcome.complete);
  EXPECT_FALSE(read(directory.write("plain.zst", "plain text\n")).outcome.complete);
  EXPECT_FALSE(read(directory.write("empty.zst", "")).outcome.complete);
  EXPECT_FALSE(read(directory.path() / "missing.zst").outcome.complete);
}

TEST_F(ZstdLineReaderTest, AFifoIsRefusedWithoutBlocking) {
  const auto fifo = directory.path() / "fifo.zst";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_FALSE(read(fifo).outcome.complete);
}

TEST_F(ZstdLineReaderTest, AFrameAskingForAHugeWindowIsRefused) {
  // --long=27 writes a 128 MiB window into the frame header.
  const auto file = compressed("long-window.zst", std::string(1024, 'a') + "\n", "-3 --long=27");
  EXPECT_FALSE(read(file).outcome.complete);
}

TEST_F(ZstdLineReaderTest, AFileExpandingPastTheLimitIsAbandoned) {
  // Frames of 64 MiB of zeros, a few kilobytes each: five expand past the limit.
  const auto frame = directory.path() / "frame.zst";
  ASSERT_EQ(
      std::system(("head -c 64M /dev/zero | zstd -3 -q -c > '" + frame.string() + "'").c_str()), 0);
  const auto zeros = bytesOf(frame);
  const auto tail = bytesOf(compressed("tail.zst", "\nok\n"));
  std::string bomb;
  for (int i = 0; i < 5; ++i) bomb += zeros;
  const auto abandoned = read(directory.write("bomb.zst", bomb + tail));
  EXPECT_FALSE(abandoned.outcome.complete);
  EXPECT_TRUE(abandoned.lines.empty());
  // Three such frames stay within it and are read to the end.
  const auto whole = read(directory.write("three.zst", zeros + zeros + zeros + tail));
  EXPECT_TRUE(whole.outcome.complete);
  EXPECT_EQ(whole.lines, (std::vector<std::string>{"ok"}));
}

}  // namespace
}  // namespace korvo::zstd_lines
