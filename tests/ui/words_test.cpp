#include "ui/words.hpp"

#include <gtest/gtest.h>

namespace korvo::ui {
namespace {

TEST(WordsTest, FamiliesReadTheirWordsAndPlatformNames) {
  EXPECT_EQ(familyNamed("small"), WidgetFamily::systemSmall);
  EXPECT_EQ(familyNamed("systemMedium"), WidgetFamily::systemMedium);
  EXPECT_EQ(familyNamed("Medium"), std::nullopt);
  EXPECT_EQ(familyNamed(""), std::nullopt);
  EXPECT_EQ(familyWord(WidgetFamily::systemMedium), "medium");
  EXPECT_EQ(familyName(WidgetFamily::systemSmall), "systemSmall");
}

TEST(WordsTest, ListsAreInTableOrder) {
  const WidgetFamily both[] = {WidgetFamily::systemSmall, WidgetFamily::systemMedium};
  EXPECT_EQ(familyList(both), "small, medium");
  EXPECT_EQ(wordList<RenderingMode>(renderingModeWords), "full-color, accented");
}

TEST(WordsTest, EveryWordReadsBackToItsValue) {
  for (const auto& entry : colorSchemeWords) {
    EXPECT_EQ(valueNamed<ColorScheme>(colorSchemeWords, entry.word), entry.value);
    EXPECT_EQ(colorSchemeWord(entry.value), entry.word);
  }
  for (const auto& entry : renderingModeWords) {
    EXPECT_EQ(wordFor<RenderingMode>(renderingModeWords, entry.value), entry.word);
  }
  EXPECT_EQ(valueNamed<RenderingMode>(renderingModeWords, "fullColor"), std::nullopt);
}

}  // namespace
}  // namespace korvo::ui
