#include <gtest/gtest.h>

#include <string>

#include "support/ui/fake_text_measurer.hpp"
#include "ui/text_fit.hpp"
#include "ui/widget_layout.hpp"

// A widget shows a few lines at most, so however long a text is, laying it out measures and
// breaks only about as much of it as a card can show: the cost does not grow with the text, and
// what is drawn is what the whole text would draw.
namespace korvo::ui {
namespace {

// Counts the bytes handed to the measurer, the work a real one does per byte.
class CountingMeasurer final : public TextMeasurer {
 public:
  TextMetrics measure(std::string_view text, const Font& font, double tracking,
                      double maxWidth) override {
    measuredBytes += text.size();
    return fake.measure(text, font, tracking, maxWidth);
  }
  TextMetrics measureSymbol(std::string_view name, const Font& font) override {
    return fake.measureSymbol(name, font);
  }

  testing::FakeTextMeasurer fake;
  std::size_t measuredBytes = 0;
};

std::string words(std::size_t length) {
  std::string text;
  while (text.size() < length) text += "lorem ipsum dolor sit amet ";
  text.resize(length);
  return text;
}

// A status text as the monitor card shows one: caption size, two lines, shrinking to 0.7.
View statusCard(const std::string& message) {
  return vstack(HorizontalAlignment::leading, 4,
                {text("Codex").font(Font::system(11)),
                 text(message).font(Font::system(10)).lineLimit(2).minimumScaleFactor(0.7),
                 text(message).font(Font::system(9)), spacer()});
}

struct Measured {
  WidgetLayout layout;
  std::size_t bytes = 0;
};

Measured layOut(const std::string& message) {
  CountingMeasurer measurer;
  WidgetLayout layout = layoutWidget("com.tessmoor.Korvo.test", statusCard(message),
                                     {.family = WidgetFamily::systemMedium}, measurer);
  return {std::move(layout), measurer.measuredBytes};
}

// The layout tree without the texts' full strings, which differ by design.
LayoutNode drawn(LayoutNode node) {
  node.text.reset();
  for (LayoutNode& child : node.children) child = drawn(std::move(child));
  return node;
}

class LongText : public ::testing::TestWithParam<std::string (*)(std::size_t)> {};

TEST_P(LongText, MeasuresNoMoreForTwoHundredThousandCharactersThanForTwenty) {
  const Measured shorter = layOut(GetParam()(20'000));
  const Measured longer = layOut(GetParam()(200'000));
  EXPECT_EQ(longer.bytes, shorter.bytes);
  EXPECT_LT(longer.bytes, 200'000U);
}

TEST_P(LongText, DrawsWhatTheWholeTextDrawsAndKeepsTheFullString) {
  const std::string message = GetParam()(200'000);
  const Measured longer = layOut(message);
  const Measured shorter = layOut(GetParam()(20'000));
  EXPECT_EQ(drawn(longer.layout.root), drawn(shorter.layout.root));
  const LayoutNode& status = longer.layout.root.children.at(0).children.at(1);
  ASSERT_TRUE(status.text);
  EXPECT_EQ(*status.text, message);
  ASSERT_EQ(status.lines.size(), 2U);
  EXPECT_TRUE(status.lines.back().content.ends_with("\u2026"));
}

INSTANTIATE_TEST_SUITE_P(Texts, LongText,
                         ::testing::Values(
                             &words, +[](std::size_t length) { return std::string(length, 'x'); },
                             +[](std::size_t length) { return std::string(length, '\n'); }));

TEST(LongTextFit, OfUnlimitedRoomStillMeasuresABoundedPrefix) {
  CountingMeasurer measurer;
  const std::string message = words(200'000);
  const TextFit fit =
      fitText(message, Font::system(10), 0, std::nullopt, 1, std::nullopt, std::nullopt, measurer);
  EXPECT_LT(measurer.measuredBytes, 200'000U);
  EXPECT_GT(fit.size.width, 364);
}

TEST(ShortText, IsMeasuredWhole) {
  CountingMeasurer measurer;
  const TextFit fit = fitText(words(300), Font::system(10), 0, 2, 0.7, 150, std::nullopt, measurer);
  ASSERT_EQ(fit.lines.size(), 2U);
  EXPECT_TRUE(fit.lines.back().content.ends_with("\u2026"));
}

}  // namespace
}  // namespace korvo::ui
