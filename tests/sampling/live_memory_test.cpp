#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "sampling/system_sampler.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

std::string fileText(const char* path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

// meminfo in bytes, read with iostreams so it shares no code with the sampler's parser.
std::map<std::string, std::uint64_t> figures(const std::string& text) {
  std::map<std::string, std::uint64_t> result;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::string name;
    std::uint64_t value = 0;
    std::string unit;
    fields >> name >> value >> unit;
    if (unit == "kB") result[name.substr(0, name.size() - 1)] = value * 1024;
  }
  return result;
}

TEST(LiveMemoryTest, UsedIsWhatHtopShowsAndTheFiguresAddUpToTotal) {
  const std::string meminfo = fileText("/proc/meminfo");
  ASSERT_FALSE(meminfo.empty());
  testing_support::TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  root.write("proc/pressure/memory", fileText("/proc/pressure/memory"));
  std::uint64_t zram = 0;
  for (int device = 0; device < 16; ++device) {
    const std::string name = "zram" + std::to_string(device);
    const std::string stat = fileText(("/sys/block/" + name + "/mm_stat").c_str());
    if (stat.empty()) continue;
    root.write("sys/block/" + name + "/mm_stat", stat);
    std::istringstream fields(stat);
    std::uint64_t skip = 0;
    std::uint64_t used = 0;
    fields >> skip >> skip >> used;
    zram += used;
  }

  const auto m = figures(meminfo);
  const std::uint64_t reclaimable =
      m.count("KReclaimable") ? m.at("KReclaimable") : m.at("SReclaimable");
  const std::uint64_t pool = (m.count("Zswap") ? m.at("Zswap") : 0) + zram;
  const std::uint64_t total = m.at("MemTotal");
  const std::uint64_t accounted = m.at("MemFree") + m.at("Active") + m.at("Inactive") +
                                  m.at("Unevictable") + reclaimable + pool;
  if (accounted >= total) GTEST_SKIP() << "this meminfo leaves no unaccounted remainder";

  const SystemSampler sampler(root.path());
  const auto snapshot = sampler.readMemory();
  ASSERT_TRUE(snapshot);
  ASSERT_EQ(snapshot->total, total);

  // Six page counts are each rounded down to a page.
  const std::uint64_t slack = 6 * SystemSampler::systemPageSize();
  const std::uint64_t sum = snapshot->used() + snapshot->cached + m.at("MemFree");
  EXPECT_LE(sum, total);
  EXPECT_GE(sum + slack, total);

  const std::uint64_t htopUsed =
      total - m.at("MemFree") - m.at("Active(file)") - m.at("Inactive(file)") - reclaimable;
  EXPECT_LE(snapshot->used(), htopUsed + slack);
  EXPECT_GE(snapshot->used() + slack, htopUsed);
}

}  // namespace
}  // namespace korvo
