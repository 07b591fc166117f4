#include "extension/korvo_widgets.hpp"

#include <gtest/gtest.h>

#include "extension/sample_data.hpp"
#include "extension/widget_content.hpp"
#include "sampling/system_sampler.hpp"
#include "shared/app_identity.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "support/base/fixed_clock.hpp"
#include "support/files.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"
#include "support/ui/fake_text_measurer.hpp"
#include "ui/widget_layout.hpp"
#include "views/awake/awake_shortcut_view.hpp"
#include "views/memory/memory_widget_view.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo {
namespace {

using ui::WidgetFamily;

const Date now = Date::fromUnixSeconds(1'794'707'100);  // 2026-11-15T01:45:00Z
const std::string sampleFile = std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json";

struct Expected {
  const char* kind;
  const char* displayName;
  const char* description;
  std::vector<WidgetFamily> families;
};

const std::vector<Expected> bundle = {
    {"com.tessmoor.Korvo.memory",
     "Memory",
     "A recent memory snapshot. Open Korvo for live readings and Keep Awake controls.",
     {WidgetFamily::systemSmall, WidgetFamily::systemMedium}},
    {"com.tessmoor.Korvo.awake",
     "Keep Awake",
     "Open Korvo to start, extend, or stop a session. This shortcut does not show session status.",
     {WidgetFamily::systemSmall}},
    {"com.tessmoor.Korvo.usage",
     "AI Usage",
     "Recent Codex and Claude subscription limits. Enable providers and keep Korvo running to "
     "update snapshots.",
     {WidgetFamily::systemSmall, WidgetFamily::systemMedium}},
    {"com.tessmoor.Korvo.temperature",
     "CPU Temperature",
     "A recent CPU temperature snapshot from Korvo. Enable temperature monitoring in the app.",
     {WidgetFamily::systemSmall}},
};

TEST(KorvoWidgets, BundleHoldsTheFourConfigurationsInGalleryOrder) {
  const auto widgets = KorvoWidgets{}.body();
  ASSERT_EQ(widgets.size(), bundle.size());
  for (std::size_t i = 0; i < bundle.size(); ++i) {
    SCOPED_TRACE(bundle[i].kind);
    EXPECT_EQ(widgets[i].kind, bundle[i].kind);
    EXPECT_EQ(widgets[i].displayName, bundle[i].displayName);
    EXPECT_EQ(widgets[i].description, bundle[i].description);
    EXPECT_EQ(widgets[i].supportedFamilies, bundle[i].families);
  }
}

TEST(KorvoWidgets, MemoryAndAwakeKindsAreTheApplicationIdentifierWithOneDotAndASuffix) {
  EXPECT_EQ(KorvoMemoryWidget{}.body().kind,
            std::string(AppIdentity::applicationIdentifier) + ".memory");
  EXPECT_EQ(KorvoAwakeWidget{}.body().kind,
            std::string(AppIdentity::applicationIdentifier) + ".awake");
  EXPECT_EQ(KorvoMemoryWidget{}.body().kind.find(".."), std::string::npos);
}

TEST(KorvoWidgets, TemperatureAndAwakeOfferOnlySmall) {
  for (const WidgetConfiguration& widget :
       {KorvoTemperatureWidget{}.body(), KorvoAwakeWidget{}.body()}) {
    EXPECT_TRUE(widget.supports(WidgetFamily::systemSmall)) << widget.kind;
    EXPECT_FALSE(widget.supports(WidgetFamily::systemMedium)) << widget.kind;
  }
}

TEST(KorvoWidgets, EveryBodyCallYieldsAnEqualConfiguration) {
  const auto first = KorvoWidgets{}.body();
  const auto second = KorvoWidgets{}.body();
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(first[i].kind, second[i].kind);
    EXPECT_EQ(first[i].displayName, second[i].displayName);
    EXPECT_EQ(first[i].description, second[i].description);
    EXPECT_EQ(first[i].supportedFamilies, second[i].supportedFamilies);
  }
}

TEST(KorvoWidgets, FindsAWidgetByItsFullKindOrItsLastWord) {
  const auto widgets = KorvoWidgets{}.body();
  const struct {
    const char* name;
    const char* kind;  // nullptr: no widget
  } cases[] = {
      {"com.tessmoor.Korvo.memory", "com.tessmoor.Korvo.memory"},
      {"memory", "com.tessmoor.Korvo.memory"},
      {"awake", "com.tessmoor.Korvo.awake"},
      {"usage", "com.tessmoor.Korvo.usage"},
      {"com.tessmoor.Korvo.temperature", "com.tessmoor.Korvo.temperature"},
      {"temperature", "com.tessmoor.Korvo.temperature"},
      {"Memory", nullptr},
      {"Korvo.memory", nullptr},
      {"com.tessmoor.Korvo", nullptr},
      {"", nullptr},
      {"battery", nullptr},
  };
  for (const auto& c : cases) {
    const WidgetConfiguration* widget = findWidget(widgets, c.name);
    if (c.kind == nullptr) {
      EXPECT_EQ(widget, nullptr) << c.name;
    } else {
      ASSERT_NE(widget, nullptr) << c.name;
      EXPECT_EQ(widget->kind, c.kind);
    }
  }
}

class WidgetViews : public ::testing::Test {
 protected:
  void SetUp() override {
    testing_support::useMachine(environment, std::string(KORVO_FIXTURES_DIR) + "/proc/desktop-zram",
                                dataHome.path());
  }

  static AnyEntry timelineEntry(const WidgetConfiguration& widget, const TimelineContext& context) {
    std::optional<AnyTimeline> timeline;
    widget.getTimeline(context, [&](AnyTimeline answer) { timeline = std::move(answer); });
    return timeline->entries.front();
  }

  testing_support::TemporaryDirectory dataHome;
  testing_support::ScopedEnvironment environment;
  const testing_support::FixedClock fixedClock_{now};
  ui::Environment small{.family = WidgetFamily::systemSmall, .now = now};
};

TEST_F(WidgetViews, MemoryConfigurationRendersTheMemoryWidgetViewOfItsEntry) {
  const AnyEntry entry = timelineEntry(KorvoMemoryWidget{}.body(), {});
  MemoryEntry typed{
      .date = now,
      .memory = SystemSampler(std::string(KORVO_FIXTURES_DIR) + "/proc/desktop-zram").readMemory()};
  EXPECT_EQ(entry.view(small), MemoryWidgetView{typed}.body(small));
}

TEST_F(WidgetViews, AwakeConfigurationRendersTheShortcutWhateverTheEntry) {
  const AnyEntry entry = timelineEntry(KorvoAwakeWidget{}.body(), {});
  EXPECT_EQ(entry.view(small), AwakeShortcutView{}.body(small));
}

TEST_F(WidgetViews, AwakeContentIsTheSameCardForAnyDate) {
  const ui::View card = AwakeShortcutView{}.body(small);
  for (const Date date : {now, now.addingSeconds(86400 * 40), Date{-1e9}, Date{4e9}}) {
    EXPECT_EQ(WidgetContent::awakeShortcut(AwakeEntry{date}).view(small), card);
  }
}

// The usage and temperature widgets share the provider and the view; the flag is all that differs.
TEST_F(WidgetViews, SameMonitorEntryThroughUsageAndTemperatureDiffersOnlyByTheFlag) {
  dataHome.write(testing_support::sharedFileRelative(), testing_support::readFile(sampleFile));
  const AnyEntry usage = timelineEntry(KorvoUsageWidget{}.body(), {});
  const AnyEntry temperature = timelineEntry(KorvoTemperatureWidget{}.body(), {});
  EXPECT_EQ(usage.date, temperature.date);
  EXPECT_EQ(usage.toJson(), temperature.toJson());

  const MonitorEntry typed{.date = now,
                           .snapshot = WidgetSnapshotStore::load(WidgetSnapshotStore::fileURL())};
  ASSERT_TRUE(typed.snapshot.has_value());
  EXPECT_EQ(usage.view(small), (MonitorWidgetView{typed, false}.body(small)));
  EXPECT_EQ(temperature.view(small), (MonitorWidgetView{typed, true}.body(small)));
  EXPECT_FALSE(usage.view(small) == temperature.view(small));
}

TEST_F(WidgetViews, UsageOpensUsageAndTemperatureOpensResources) {
  dataHome.write(testing_support::sharedFileRelative(), testing_support::readFile(sampleFile));
  const struct {
    WidgetConfiguration widget;
    const char* url;
  } cases[] = {{KorvoUsageWidget{}.body(), "korvo://usage"},
               {KorvoTemperatureWidget{}.body(), "korvo://resources"},
               {KorvoMemoryWidget{}.body(), "korvo://resources"},
               {KorvoAwakeWidget{}.body(), "korvo://awake"}};
  ui::testing::FakeTextMeasurer measurer;
  for (const auto& c : cases) {
    const AnyEntry entry = timelineEntry(c.widget, {});
    const ui::WidgetLayout laidOut =
        ui::layoutWidget(c.widget.kind, entry.view(small), small, measurer);
    EXPECT_EQ(laidOut.url, c.url) << c.widget.kind;
  }
}

TEST_F(WidgetViews, RequestsThroughTheRegistryKeepTheProvidersReloadPolicies) {
  const struct {
    WidgetConfiguration widget;
    ReloadPolicy policy;
  } cases[] = {{KorvoMemoryWidget{}.body(), ReloadPolicy::after(now.addingSeconds(1'800))},
               {KorvoAwakeWidget{}.body(), ReloadPolicy::never()},
               {KorvoUsageWidget{}.body(), ReloadPolicy::after(now.addingSeconds(900))},
               {KorvoTemperatureWidget{}.body(), ReloadPolicy::after(now.addingSeconds(900))}};
  for (const auto& c : cases) {
    int calls = 0;
    c.widget.getTimeline({}, [&](AnyTimeline timeline) {
      ++calls;
      ASSERT_EQ(timeline.entries.size(), 1u);
      EXPECT_EQ(timeline.entries[0].date, now);
      EXPECT_EQ(timeline.policy, c.policy) << c.widget.kind;
    });
    c.widget.getSnapshot({.isPreview = true}, [&](AnyEntry entry) {
      ++calls;
      EXPECT_EQ(entry.date, now);
    });
    EXPECT_EQ(calls, 2) << c.widget.kind;
  }
}

}  // namespace
}  // namespace korvo
