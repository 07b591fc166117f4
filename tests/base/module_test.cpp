#include "base/module.hpp"

#include <gtest/gtest.h>

#include <string>

namespace korvo {
namespace {

TEST(Module, OneThatCannotBeLoadedIsNamedOnOneLineAndGivesNoEntry) {
  ::testing::internal::CaptureStderr();
  void* entry = loadModuleEntry("lib/korvo-widgets/korvo-missing.so",
                                "/nonexistent/korvo-missing.so", "korvo_missing_functions");
  const std::string said = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(entry, nullptr);
  EXPECT_NE(said.find("/nonexistent/korvo-missing.so"), std::string::npos) << said;
  EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
}

}  // namespace
}  // namespace korvo
