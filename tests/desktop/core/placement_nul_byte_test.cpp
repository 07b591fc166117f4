#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "desktop/core/placement.hpp"
#include "desktop/core/widget_lookup.hpp"
#include "extension/korvo_widgets.hpp"

// A placements file is read whole: a NUL byte does not end it early.
namespace korvo::desktop {
namespace {

using testing::HasSubstr;

std::string errorOf(std::string_view json) {
  static const auto widgets = KorvoWidgets{}.body();
  const auto result = parsePlacements(json, kindLookup(widgets));
  const auto* failure = std::get_if<PlacementError>(&result);
  return failure != nullptr ? failure->message : "(no error)";
}

TEST(PlacementsNulByte, AfterAValidDocumentAndBeforeGarbageIsAnError) {
  using namespace std::string_literals;
  EXPECT_THAT(errorOf("[{\"kind\": \"memory\"}]\0garbage"s), HasSubstr("NUL byte at byte 21"));
}

TEST(PlacementsNulByte, InsideAKindIsAnError) {
  using namespace std::string_literals;
  EXPECT_THAT(errorOf("[{\"kind\": \"mem\0ory\"}]"s), HasSubstr("NUL byte"));
}

}  // namespace
}  // namespace korvo::desktop
