#include "sampling/memory_json.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

TEST(MemoryJsonTest, EightFieldsThenDerivedFiguresInOrder) {
  const MemorySnapshot snapshot{
      1000, 100, 200, 300, 150, 42, MemoryPressure::warning, Date{800'000'000.5}};
  EXPECT_EQ(toJson(snapshot).dump(),
            R"({"total":1000,"app":100,"wired":200,"compressed":300,"cached":150,"swap":42,)"
            R"("pressure":"Elevated","timestamp":800000000.5,"used":600,"available":400,)"
            R"("usedFraction":0.6})");
}

TEST(MemoryJsonTest, AbsentSwapIsNull) {
  const MemorySnapshot snapshot{0, 0, 0, 0, 0, std::nullopt, MemoryPressure::unknown, Date{}};
  const auto json = toJson(snapshot);
  ASSERT_TRUE(json.contains("swap"));
  EXPECT_TRUE(json["swap"].is_null());
  EXPECT_EQ(json["pressure"], "Unavailable");
}

TEST(MemoryJsonTest, IntegralDatesHaveNoFraction) {
  const MemorySnapshot snapshot{4, 1, 1, 0, 0, 0, MemoryPressure::normal, Date{800'000'000}};
  const std::string text = toJson(snapshot).dump();
  EXPECT_NE(text.find(R"("timestamp":800000000,)"), std::string::npos) << text;
  EXPECT_NE(text.find(R"("usedFraction":0.5})"), std::string::npos) << text;
}

TEST(MemoryJsonTest, TimestampReadsBackToTheSameDouble) {
  const Date moment{784'876'543.123456789};
  const MemorySnapshot snapshot{4, 1, 1, 0, 0, 0, MemoryPressure::normal, moment};
  const auto parsed = nlohmann::json::parse(toJson(snapshot).dump());
  EXPECT_EQ(parsed["timestamp"].get<double>(), moment.secondsSinceReferenceDate);
}

}  // namespace
}  // namespace korvo
