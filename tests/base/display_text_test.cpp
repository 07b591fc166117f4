#include "base/display_text.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace korvo {
namespace {

using namespace std::string_literals;

TEST(DisplayTextTest, ValidTextIsKeptAndEverythingElseIsEscaped) {
  const std::pair<std::string, std::string> cases[] = {
      {"Package id 0", "Package id 0"},
      {"°C · Überhitzung · 温度 · 🌡", "°C · Überhitzung · 温度 · 🌡"},
      {"two\nlines", "two\\nlines"},
      {"tab\there\r", "tab\\there\\r"},
      {"nul\0byte"s, "nul\\x00byte"},
      {"\x1b[31mred", "\\x1B[31mred"},
      {"del\x7f", "del\\x7F"},
      {"latin-1 caf\xe9", "latin-1 caf\\xE9"},
      {"cut \xe2\x82", "cut \\xE2\\x82"},
      {"overlong \xc0\xaf", "overlong \\xC0\\xAF"},
      {"surrogate \xed\xa0\x80", "surrogate \\xED\\xA0\\x80"},
      {"past U+10FFFF \xf4\x90\x80\x80", "past U+10FFFF \\xF4\\x90\\x80\\x80"},
      {"\xff\xfe", "\\xFF\\xFE"},
      {"", ""},
  };
  for (const auto& [text, shown] : cases) {
    EXPECT_EQ(displayText(text), shown) << shown;
  }
}

TEST(DisplayTextTest, Utf8IsToldFromOtherBytes) {
  EXPECT_TRUE(isUtf8("°C · 温度 · 🌡 \n\t"));
  EXPECT_TRUE(isUtf8(""));
  EXPECT_FALSE(isUtf8("/tmp/\xff"));
  EXPECT_FALSE(isUtf8("cut \xe2\x82"));
  EXPECT_FALSE(isUtf8("overlong \xc0\xaf"));
  EXPECT_FALSE(isUtf8("surrogate \xed\xa0\x80"));
}

}  // namespace
}  // namespace korvo
