#include "desktop/monitors.hpp"

#include <gtest/gtest.h>

namespace korvo::desktop {
namespace {

const std::vector<Monitor> twoMonitors{
    {nullptr, "HEADLESS-1", {0, 0, 1280, 1024}},
    {nullptr, "HEADLESS-2", {1280, 0, 1920, 1080}},
};

TEST(MonitorFor, TheNamedOutputWhenItIsConnected) {
  EXPECT_EQ(monitorFor(twoMonitors, "HEADLESS-2", 0), 1U);
}

TEST(MonitorFor, ThePrimaryMonitorWhenTheNamedOutputIsGoneOrNoneIsNamed) {
  EXPECT_EQ(monitorFor(twoMonitors, "DP-3", 1), 1U);
  EXPECT_EQ(monitorFor(twoMonitors, std::nullopt, 1), 1U);
}

TEST(MonitorFor, TheFirstMonitorWithoutAPrimaryOne) {
  EXPECT_EQ(monitorFor(twoMonitors, "DP-3", std::nullopt), 0U);
}

TEST(MonitorFor, NothingWithoutMonitors) {
  EXPECT_EQ(monitorFor({}, "HEADLESS-1", std::nullopt), std::nullopt);
}

}  // namespace
}  // namespace korvo::desktop
