#include "base/clock.hpp"

#include <gtest/gtest.h>

namespace korvo {
namespace {

class ClockTest : public ::testing::Test {
 protected:
  void TearDown() override { clock::reset(); }
};

TEST_F(ClockTest, FixedMomentIsReturnedUntilReset) {
  clock::setFixed(Date{816399900});
  EXPECT_EQ(clock::now().secondsSinceReferenceDate, 816399900);
  EXPECT_EQ(clock::now().secondsSinceReferenceDate, 816399900);
  clock::reset();
  EXPECT_GT(clock::now().secondsSinceReferenceDate, 816399900 - 400'000'000);
}

TEST_F(ClockTest, ReferenceDateIsTwoThousandOneUtc) {
  // 2026-11-15T01:45:00Z is 1794707100 in Unix seconds.
  EXPECT_EQ(Date::fromUnixSeconds(1794707100).secondsSinceReferenceDate, 816399900);
  EXPECT_EQ(Date{816399900}.unixSeconds(), 1794707100);
}

TEST_F(ClockTest, WarpShiftsAndSpeedsUpTime) {
  const double before = clock::now().secondsSinceReferenceDate;
  clock::setWarp(900, 1);
  const double shifted = clock::now().secondsSinceReferenceDate;
  EXPECT_GE(shifted - before, 900);
  EXPECT_LT(shifted - before, 905);
}

}  // namespace
}  // namespace korvo
