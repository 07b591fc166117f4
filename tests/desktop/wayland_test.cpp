#include <gtest/gtest.h>
#include <signal.h>

#include <cmath>
#include <ctime>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "desktop/wayland_harness.hpp"
#include "support/desktop_harness.hpp"
#include "support/host_dumps.hpp"
#include "support/host_environment.hpp"
#include "support/private_buses.hpp"

namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr int outputWidth = 1280;
constexpr int outputHeight = 1024;
// The background-layer surface below the widgets, and an ordinary window above them.
constexpr const char* belowColor = "3366CC";
constexpr const char* windowColor = "CC3333";

// A widget where the placements file puts it, in logical pixels of the layout.
struct Expected {
  std::string what;
  PixelRect rect;
};

PixelRect scaled(PixelRect rect, double scale) {
  const auto times = [scale](int value) { return static_cast<int>(value * scale); };
  return {times(rect.x), times(rect.y), times(rect.width), times(rect.height)};
}

PixelRect around(PixelRect rect, int border) {
  return {rect.x - border, rect.y - border, rect.width + 2 * border, rect.height + 2 * border};
}

std::size_t occurrences(const std::string& text, const std::string& wanted) {
  std::size_t count = 0;
  for (auto at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) {
    ++count;
  }
  return count;
}

std::string describe(const std::optional<PixelRect>& rect) {
  if (!rect) return "nothing";
  std::ostringstream text;
  text << rect->width << "x" << rect->height << " at " << rect->x << ", " << rect->y;
  return text.str();
}

class WaylandHost : public testing::Test {
 protected:
  // Sway with `outputs` outputs at `scale`; fails the test when sway cannot start at all.
  void startSway(double scale, int outputs = 1) {
    ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
    const auto base = hostEnvironment(folder_.path(), {
                                                          {"GDK_BACKEND", "wayland"},
                                                          {"GTK_THEME", "KorvoPlain"},
                                                          {"NO_AT_BRIDGE", "1"},
                                                          {"KORVO_HOST_DEBUG", "1"},
                                                          {"KORVO_TEST_URL_LOG", urlLog().string()},
                                                      });
    // The host draws with a theme whose colours are the renderer's defaults.
    fs::create_directories(folder_.path() / "data" / "themes");
    fs::create_directory_symlink(KORVO_FIXTURES_DIR "/themes/KorvoPlain",
                                 folder_.path() / "data" / "themes" / "KorvoPlain");
    handToTestUser(folder_.path());
    scale_ = scale;
    sway_ = std::make_unique<Sway>(outputWidth, outputHeight, scale, folder_.path(), outputs);
    ASSERT_EQ(sway_->failure(), "") << "sway could not start";
    ASSERT_EQ(sway_->pointerFailure(), "");
    environment_ = sway_->environment(base);
  }

  void TearDown() override {
    clients_.clear();
    host_.reset();
    sway_.reset();
  }

  void startHost(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {KORVO_BINARY, "run"});
    host_ = std::make_unique<Process>(asTestUser(arguments), environment_,
                                      folder_.path() / "host.out", hostLog());
  }

  void writePlacements(const std::string& json) {
    writeFile(folder_.path() / "config" / "korvo-widgets" / "placements.json", json);
  }

  // A surface of the test's own: "background" (below the widgets, logging its clicks) or
  // "window" (an ordinary window, which sway tiles over the whole output). Returns once it shows
  // on screen (it shows through the cards' rounded corners, so pictures wait for it), or false.
  // `probe` is a layout point no widget covers.
  bool startSurface(const std::string& layer, const std::string& color,
                    std::pair<int, int> probe = {700, 700}) {
    clients_.push_back(std::make_unique<Process>(
        asTestUser({"python3", KORVO_TEST_SURFACE, "--layer", layer, "--color", "#" + color,
                    "--clicks", clicksBelow().string()}),
        environment_, folder_.path() / (layer + ".out"), folder_.path() / (layer + ".err")));
    return waitFor([&] { return colorAt(probe.first, probe.second) == color; });
  }

  // A session bus of the test user's own, which the clients started from now on join.
  void startSessionBus() {
    const auto bus = folder_.path() / "bus";
    clients_.push_back(std::make_unique<Process>(
        asTestUser({"dbus-daemon", "--session", "--nofork", "--address=unix:path=" + bus.string()}),
        environment_, folder_.path() / "bus.out", folder_.path() / "bus.err"));
    ASSERT_TRUE(waitFor([&] { return fs::exists(bus); })) << readFile(folder_.path() / "bus.err");
    environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + bus.string();
  }

  // `gdbus call` on that bus, as the test user; its output ("(uint32 42,)").
  std::string busCall(const std::string& destination, const std::string& path,
                      const std::string& method, const std::vector<std::string>& arguments = {}) {
    return runCommand(
               asTestUser(bus_test::callCommand(false, destination, path, method, arguments)),
               environment_)
        .output;
  }

  fs::path snapshotFile() const {
    return folder_.path() / "data" / "app-groups" / "group.com.tessmoor.Korvo" /
           "usage-snapshot.json";
  }
  fs::path hostLog() const { return folder_.path() / "host.err"; }
  std::size_t timesSaid(const std::string& text) const {
    return occurrences(readFile(hostLog()), text);
  }
  fs::path urlLog() const { return folder_.path() / "urls.txt"; }
  fs::path clicksBelow() const { return folder_.path() / "below.txt"; }
  fs::path dump(const std::string& name) const { return folder_.path() / "dump" / name; }
  fs::path screen() const { return folder_.path() / "screen.png"; }

  std::vector<std::string> lines(const fs::path& file) const {
    std::vector<std::string> result;
    std::istringstream text(readFile(file));
    for (std::string line; std::getline(text, line);) result.push_back(line);
    return result;
  }

  // The colour of one layout point on a fresh screenshot.
  std::string colorAt(int x, int y) {
    sway_->screenshot(screen());
    return pixel(screen(), static_cast<int>(x * scale_), static_cast<int>(y * scale_));
  }

  // Waits until every widget shows where expected (its painted box within a few pixels around
  // it), then checks each one; the screenshot is kept in the build tree as `name` for a look.
  void expectWidgetsAt(const std::vector<Expected>& widgets, const std::string& name) {
    const auto found = [&](const Expected& widget) {
      const auto want = scaled(widget.rect, scale_);
      return paintedBounds(screen(), around(want, 6));
    };
    waitFor([&] {
      sway_->screenshot(screen());
      for (const auto& widget : widgets) {
        if (found(widget) != scaled(widget.rect, scale_)) return false;
      }
      return true;
    });
    fs::copy_file(screen(), folder_.path() / name, fs::copy_options::overwrite_existing);
    fs::copy_file(screen(), fs::path(KORVO_SCREENSHOT_DIR) / name,
                  fs::copy_options::overwrite_existing);
    for (const auto& widget : widgets) {
      EXPECT_EQ(found(widget), scaled(widget.rect, scale_))
          << widget.what << " is at " << describe(found(widget)) << ", not at "
          << describe(scaled(widget.rect, scale_)) << "; host log:\n"
          << readFile(hostLog());
    }
  }

  TemporaryDirectory folder_;
  double scale_ = 1;
  std::unique_ptr<Sway> sway_;
  Environment environment_;
  std::unique_ptr<Process> host_;
  std::vector<std::unique_ptr<Process>> clients_;
};

class WaylandPlacement : public WaylandHost, public testing::WithParamInterface<double> {};

TEST_P(WaylandPlacement, EveryAnchorAndMarginLandsWhereThePlacementsSayOnTheBottomLayer) {
  ASSERT_NO_FATAL_FAILURE(startSway(GetParam()));
  writePlacements(R"([
    {"kind": "memory", "anchor": "top-left", "margin": 24},
    {"kind": "awake", "anchor": "top-right", "margin": 40},
    {"kind": "temperature", "anchor": "top-right", "margin": 40},
    {"kind": "usage", "family": "medium", "anchor": "bottom-left", "margin": 10},
    {"kind": "awake", "anchor": "bottom-right"},
    {"kind": "memory", "family": "medium", "position": {"x": 400, "y": 300}}
  ])");
  const std::vector<Expected> widgets{
      {"memory at the top-left", {24, 24, 170, 170}},
      {"awake at the top-right", {outputWidth - 40 - 170, 40, 170, 170}},
      {"temperature stacked below it", {outputWidth - 40 - 170, 40 + 170 + 12, 170, 170}},
      {"usage at the bottom-left", {10, outputHeight - 10 - 170, 364, 170}},
      {"awake at the bottom-right", {outputWidth - 16 - 170, outputHeight - 16 - 170, 170, 170}},
      {"medium memory at 400, 300", {400, 300, 364, 170}},
  };
  startHost({});
  // The background layer comes after the widgets and still lies below them.
  ASSERT_TRUE(startSurface("background", belowColor))
      << readFile(folder_.path() / "background.err");
  const auto name = "placements-scale-" + std::to_string(static_cast<int>(GetParam())) + ".png";
  expectWidgetsAt(widgets, name);

  // An ordinary window covers them all.
  ASSERT_TRUE(startSurface("window", windowColor)) << readFile(folder_.path() / "window.err");
  for (const auto& widget : widgets) {
    EXPECT_EQ(
        colorAt(widget.rect.x + widget.rect.width / 2, widget.rect.y + widget.rect.height / 2),
        windowColor)
        << widget.what << " shows above an ordinary window";
  }
  EXPECT_TRUE(host_->running()) << readFile(hostLog());
}

INSTANTIATE_TEST_SUITE_P(Scales, WaylandPlacement, testing::Values(1.0, 2.0), [](const auto& info) {
  return "Scale" + std::to_string(int(info.param));
});

// The same card drawn by the host on a scale-2 output and by the headless renderer at 2x: a host
// that drew at 1x and let the compositor stretch it would blur every edge and glyph.
TEST_F(WaylandHost, AtScaleTwoTheCardIsAsSharpAsATwoTimesHeadlessRender) {
  ASSERT_NO_FATAL_FAILURE(startSway(2));
  writePlacements(R"([{"kind": "awake", "anchor": "top-left", "margin": 16}])");
  startHost({});
  ASSERT_TRUE(startSurface("background", belowColor))
      << readFile(folder_.path() / "background.err");
  expectWidgetsAt({{"awake", {16, 16, 170, 170}}}, "sharp.png");
  const auto shown = folder_.path() / "shown.png";
  crop(folder_.path() / "sharp.png", {32, 32, 340, 340}, shown);

  const auto render = [&](const std::string& scale, const fs::path& file) {
    const auto rendered = folder_.path() / ("render-" + scale + ".png");
    const auto result = runCommand(
        {KORVO_BINARY, "render", "awake", "--scale", scale, "-o", rendered.string()}, environment_);
    ASSERT_EQ(result.exitStatus, 0);
    runCommand({"convert", rendered.string(), "-resize", "340x340", "-background",
                std::string("#") + belowColor, "-flatten", file.string()},
               {{"PATH", "/usr/bin:/bin"}});
  };
  const auto sharp = folder_.path() / "expected-2x.png";
  const auto stretched = folder_.path() / "stretched-1x.png";
  render("2", sharp);
  render("1", stretched);
  const long pixels = 340 * 340;
  const long differing = differingPixels(shown, sharp, 10);
  const long blurred = differingPixels(stretched, sharp, 10);
  RecordProperty("differing_pixels", std::to_string(differing));
  RecordProperty("stretched_1x_differing_pixels", std::to_string(blurred));
  std::printf(
      "scale 2: %ld of %ld pixels differ from the 2x render by more than 10 %% (%ld at "
      "all); a stretched 1x render: %ld (%ld at all)\n",
      differing, pixels, differingPixels(shown, sharp, 0), blurred,
      differingPixels(stretched, sharp, 0));
  fs::copy_file(shown, fs::path(KORVO_SCREENSHOT_DIR) / "sharp-shown.png",
                fs::copy_options::overwrite_existing);
  ASSERT_GE(differing, 0) << "compare failed";
  EXPECT_LT(differing, pixels / 200) << "the card differs from the 2x render in " << differing
                                     << " pixels (a stretched 1x render: " << blurred << ")";
  EXPECT_GT(blurred, 4 * std::max(differing, 1L)) << "the comparison cannot tell blur apart";
}

// The four default cards at scale 2 do not fit one column of a 1280x1024 output: the column
// wraps into a second one inward, and no card covers another.
TEST_F(WaylandHost, AtScaleTwoTheDefaultCardsWrapIntoASecondColumnWithoutOverlapping) {
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  startHost({"--scale", "2"});
  ASSERT_TRUE(startSurface("background", belowColor, {100, 900}))
      << readFile(folder_.path() / "background.err");
  expectWidgetsAt({{"memory", {924, 16, 340, 340}},
                   {"awake below it", {924, 368, 340, 340}},
                   {"usage opening the second column", {184, 16, 728, 340}},
                   {"temperature below usage", {572, 368, 340, 340}}},
                  "default-scale-2.png");
  EXPECT_TRUE(host_->running());
}

// On layer-shell the card's margins follow the pointer while it is dragged; let go, it settles on
// the 8-pixel grid, saved as a position.
TEST_F(WaylandHost, ADraggedCardFollowsThePointerAndSettlesOnTheGrid) {
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  writePlacements(R"([{"kind": "awake", "anchor": "top-left", "margin": 16}])");
  // The host, as the test user, writes the file back.
  handToTestUser(folder_.path() / "config");
  startHost({});
  ASSERT_TRUE(startSurface("background", belowColor))
      << readFile(folder_.path() / "background.err");
  expectWidgetsAt({{"awake", {16, 16, 170, 170}}}, "drag-before.png");

  // Pressed in the card and moved (312, 196) in steps of a virtual mouse.
  sway_->drag(101, 101, 312, 196, 8);

  const auto placements = folder_.path() / "config" / "korvo-widgets" / "placements.json";
  const Json settled{{"x", 328}, {"y", 216}};
  EXPECT_TRUE(waitFor([&] {
    const auto document = Json::parse(readFile(placements), nullptr, false);
    return document.is_array() && !document.empty() &&
           document[0].value("position", Json()) == settled;
  })) << readFile(placements)
      << readFile(hostLog());
  expectWidgetsAt({{"awake", {328, 216, 170, 170}}}, "drag-after.png");
  EXPECT_TRUE(lines(urlLog()).empty()) << "the drag opened the card's link";
  EXPECT_TRUE(host_->running());
}

// A card on a wallpaper of nearly its own colour: the host's soft shadow outside the card's
// rounded shape gives it an edge, and fades out before the next card could start.
struct ShadowCase {
  const char* appearance;
  const char* wallpaper;
};

class CardShadow : public WaylandHost, public testing::WithParamInterface<ShadowCase> {};

// The sum of the three channels of "RRGGBB".
int brightness(const std::string& color) {
  if (color.size() != 6) return -1;
  int sum = 0;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    sum += std::stoi(color.substr(channel * 2, 2), nullptr, 16);
  }
  return sum;
}

TEST_P(CardShadow, GivesTheCardAnEdgeOnAWallpaperOfItsOwnColourAtScaleTwo) {
  ASSERT_NO_FATAL_FAILURE(startSway(2));
  writePlacements(R"([{"kind": "awake", "anchor": "top-left", "margin": 40}])");
  startHost({"--appearance", GetParam().appearance});
  ASSERT_TRUE(startSurface("background", GetParam().wallpaper))
      << readFile(folder_.path() / "background.err");
  ASSERT_TRUE(waitFor([&] { return colorAt(40 + 85, 40 + 85) != GetParam().wallpaper; }))
      << readFile(hostLog());
  sway_->screenshot(screen());
  fs::copy_file(screen(),
                fs::path(KORVO_SCREENSHOT_DIR) /
                    ("shadow-" + std::string(GetParam().appearance) + "-scale-2.png"),
                fs::copy_options::overwrite_existing);
  // Picture pixels at scale 2: the card's left edge is at 80, its middle row at 250.
  using Outside = std::function<std::string(int)>;
  const Outside left = [&](int distance) { return pixel(screen(), 80 - 1 - distance, 250); };
  const Outside above = [&](int distance) { return pixel(screen(), 250, 80 - 1 - distance); };
  const int wallpaper = brightness(GetParam().wallpaper);
  for (const Outside& outside : {left, above}) {
    EXPECT_LT(brightness(outside(0)), wallpaper - 12) << outside(0);
    EXPECT_LT(brightness(outside(0)), brightness(outside(4))) << "the shadow does not fade";
    // Five logical pixels out (ten picture pixels) it has gone.
    EXPECT_EQ(outside(10), GetParam().wallpaper);
  }
  EXPECT_TRUE(host_->running());
}

INSTANTIATE_TEST_SUITE_P(Appearances, CardShadow,
                         testing::Values(ShadowCase{"light", "ECECEC"},
                                         ShadowCase{"dark", "323232"}),
                         [](const auto& info) { return std::string(info.param.appearance); });

TEST_F(WaylandHost, AClickOpensTheCardsLinkAndBesideARoundedCornerReachesTheSurfaceBelow) {
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  registerUrlRecorder(folder_.path());
  writePlacements(R"([{"kind": "awake", "anchor": "top-left", "margin": 16}])");
  startHost({});
  ASSERT_TRUE(startSurface("background", belowColor))
      << readFile(folder_.path() / "background.err");
  expectWidgetsAt({{"awake", {16, 16, 170, 170}}}, "clicks.png");

  // The surface below answers clicks where no widget is.
  sway_->click(600, 600);
  ASSERT_TRUE(waitFor([&] { return lines(clicksBelow()).size() == 1; }))
      << "the background surface never saw a click";
  EXPECT_EQ(lines(clicksBelow())[0], "600 600");

  sway_->click(16 + 85, 16 + 85);
  ASSERT_TRUE(waitFor([&] { return lines(urlLog()).size() == 1; }))
      << "the handler never ran; host log:\n"
      << readFile(hostLog());
  EXPECT_EQ(lines(urlLog())[0], "korvo://awake");

  // The window's top-left pixel lies outside the card's rounded corner.
  sway_->click(16, 16);
  ASSERT_TRUE(waitFor([&] { return lines(clicksBelow()).size() == 2; }))
      << "a click beside the corner did not reach the surface below";
  EXPECT_EQ(lines(clicksBelow())[1], "16 16");
  EXPECT_EQ(lines(urlLog()).size(), 1U) << "the corner opened the widget's link";
  EXPECT_TRUE(host_->running());
}

TEST_F(WaylandHost, AMonitorWidgetReloadsAfterNineHundredSecondsAndKeepAwakeNever) {
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  expectMonitorReloadsEveryNineHundredSeconds(
      snapshotFile(), hostLog(), folder_.path() / "dump",
      [&](std::vector<std::string> arguments) { startHost(std::move(arguments)); });
  EXPECT_TRUE(host_->running());
}

// "Updated 2 min ago" moves on on screen, without a reload: the clock runs ten times as fast, so
// a minute passes every six real seconds and the next reload is over a minute away.
TEST_F(WaylandHost, ALiveRelativeTextAdvancesOnScreen) {
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  const double now = static_cast<double>(std::time(nullptr));
  writeFile(snapshotFile(), usageSnapshot(10, 41, now, 150));
  const auto rendered = runCommand({KORVO_BINARY, "render", "usage", "--family", "medium",
                                    "--snapshot-file", snapshotFile().string(), "--format", "json"},
                                   environment_);
  ASSERT_EQ(rendered.exitStatus, 0);
  const auto document = Json::parse(rendered.output);
  const auto* footer = findNode(document["tree"], "relativeDate");
  ASSERT_NE(footer, nullptr) << "the usage card has no relative date";
  const auto& frame = (*footer)["frame"];
  const PixelRect footerRect{16 + static_cast<int>(frame["x"].get<double>()),
                             16 + static_cast<int>(frame["y"].get<double>()),
                             static_cast<int>(std::ceil(frame["width"].get<double>())) + 1,
                             static_cast<int>(std::ceil(frame["height"].get<double>())) + 1};
  const PixelRect above{16, 16, 364, footerRect.y - 16};

  writePlacements(R"([{"kind": "usage", "family": "medium", "anchor": "top-left", "margin": 16}])");
  // Ten times the clock: "2 min" turns "3 min" within seconds, while the reload (and any other
  // change of the card) stays a long way off even on a busy machine.
  startHost({"--time-rate", "10"});
  ASSERT_TRUE(startSurface("background", belowColor))
      << readFile(folder_.path() / "background.err");
  expectWidgetsAt({{"usage", {16, 16, 364, 170}}}, "first.png");
  crop(folder_.path() / "first.png", footerRect, folder_.path() / "footer-first.png");
  crop(folder_.path() / "first.png", above, folder_.path() / "above-first.png");
  const bool advanced = waitFor([&] {
    sway_->screenshot(screen());
    crop(screen(), footerRect, folder_.path() / "footer-now.png");
    return differingPixels(folder_.path() / "footer-now.png", folder_.path() / "footer-first.png",
                           10) > 0;
  });
  EXPECT_TRUE(advanced) << "the relative text never changed on screen";
  crop(screen(), above, folder_.path() / "above-now.png");
  EXPECT_EQ(
      differingPixels(folder_.path() / "above-now.png", folder_.path() / "above-first.png", 10), 0)
      << "more than the relative text changed";
  fs::copy_file(screen(), fs::path(KORVO_SCREENSHOT_DIR) / "live-text-later.png",
                fs::copy_options::overwrite_existing);
}

TEST_F(WaylandHost, TwoOutputsTakeTheirWidgetsAndAnUnpluggedOneLosesNone) {
  ASSERT_NO_FATAL_FAILURE(startSway(1, 2));
  std::vector<SwayOutput> outputs;
  // The nested outputs start at the backend's default size and are laid out again as the outer
  // windows tile: wait for the final side-by-side arrangement.
  const auto sideBySide = [](const std::vector<SwayOutput>& found) {
    return found.size() == 2 && found[0].x == 0 && found[1].x == outputWidth &&
           found[0].width == outputWidth && found[1].width == outputWidth &&
           found[0].height == outputHeight && found[1].height == outputHeight;
  };
  ASSERT_TRUE(waitFor([&] {
    outputs = sway_->outputs();
    return sideBySide(outputs);
  })) << sway_->message({"-t", "get_outputs"}).output;
  const auto second = outputs[1];
  ASSERT_EQ(second.name, "WL-2");
  writePlacements(R"([
    {"kind": "memory", "anchor": "top-left"},
    {"kind": "awake", "anchor": "top-right", "output": "WL-2"}
  ])");
  startHost({});
  const Expected memory{"memory on WL-1", {16, 16, 170, 170}};
  const Expected awakeThere{"awake on WL-2",
                            {second.x + second.width - 16 - 170, second.y + 16, 170, 170}};
  expectWidgetsAt({memory, awakeThere}, "two-outputs.png");

  // Unplugged: its widget comes over to the other output, which now has the outer's whole width.
  ASSERT_TRUE(sway_->unplug("WL-2"));
  // The one output left is laid out again as its outer window takes the whole width.
  ASSERT_TRUE(waitFor([&] {
    outputs = sway_->outputs();
    return outputs.size() == 1 && outputs[0].width == 2 * outputWidth;
  })) << sway_->log();
  const Expected awakeHere{"awake moved to WL-1",
                           {outputs[0].width - 16 - 170, outputs[0].y + 16, 170, 170}};
  expectWidgetsAt({memory, awakeHere}, "unplugged.png");
  EXPECT_TRUE(host_->running()) << readFile(hostLog());
  EXPECT_NE(readFile(hostLog()).find("output WL-2 is unplugged or off; shown on WL-1"),
            std::string::npos)
      << readFile(hostLog());

  EXPECT_EQ(timesSaid("output WL-2 is unplugged or off"), 1U) << readFile(hostLog());

  // An output plugged in (the headless backend names it WL-3): nothing is lost, and the widget
  // stays on WL-1, which has its first width again.
  ASSERT_EQ(sway_->message({"create_output"}).exitStatus, 0);
  ASSERT_TRUE(waitFor([&] {
    outputs = sway_->outputs();
    return outputs.size() == 2 && outputs[0].width == outputWidth &&
           outputs[0].height == outputHeight;
  })) << sway_->log();
  const Expected awakeStill{"awake still on WL-1", {outputWidth - 16 - 170, 16, 170, 170}};
  expectWidgetsAt({memory, awakeStill}, "plugged.png");
  EXPECT_EQ(timesSaid("output WL-2 is unplugged or off"), 1U) << readFile(hostLog());
  EXPECT_TRUE(host_->running()) << readFile(hostLog());
}

// The desktop's colour scheme comes from the portal (a fake one on a private session bus here);
// switching it while the host runs repaints the cards.
TEST_F(WaylandHost, SwitchingThePortalsColourSchemeRepaintsTheWidgets) {
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  startSessionBus();
  const auto scheme = folder_.path() / "scheme";
  writeFile(scheme, "2");
  clients_.push_back(std::make_unique<Process>(
      asTestUser({"python3", KORVO_TEST_PORTAL, scheme.string()}), environment_,
      folder_.path() / "portal.out", folder_.path() / "portal.err"));
  ASSERT_TRUE(waitFor([&] { return readFile(folder_.path() / "portal.out") == "ready\n"; }))
      << readFile(folder_.path() / "portal.err");

  writePlacements(R"([{"kind": "awake", "anchor": "top-left", "margin": 16}])");
  startHost({});
  // A point of the card's own background: inside its padding, clear of the corner. The backdrop
  // is a gradient, so light and dark are told apart by brightness.
  const int x = 16 + 8;
  const int y = 16 + 85;
  const auto brightness = [](const std::string& hex) {
    return hex.size() == 6 ? std::stoi(hex.substr(2, 2), nullptr, 16) : -1;
  };
  std::string light;
  ASSERT_TRUE(waitFor([&] {
    light = colorAt(x, y);
    return brightness(light) > 0xC0;
  })) << "not light: "
      << light;
  sway_->screenshot(fs::path(KORVO_SCREENSHOT_DIR) / "scheme-light.png");
  writeFile(scheme, "1");
  std::string dark;
  EXPECT_TRUE(waitFor([&] {
    dark = colorAt(x, y);
    return brightness(dark) >= 0 && brightness(dark) < 0x60;
  })) << "not dark: "
      << dark;
  sway_->screenshot(fs::path(KORVO_SCREENSHOT_DIR) / "scheme-dark.png");
  writeFile(scheme, "2");
  EXPECT_TRUE(waitFor([&] { return colorAt(x, y) == light; }))
      << "not light again: " << colorAt(x, y);
  EXPECT_TRUE(host_->running());
}

// korvo itself under the compositor: the dashboard opens as an ordinary window that takes clicks,
// and the tray indicator registers with the desktop's StatusNotifierWatcher (a mock here) and
// opens the dashboard's tabs from its menu.
TEST_F(WaylandHost, TheDashboardAndItsIndicatorRunHere) {
  ASSERT_STRNE(KORVO_APP_BINARY, "") << "korvo was not built";
  ASSERT_NO_FATAL_FAILURE(startSway(1));
  startSessionBus();
  constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
  clients_.push_back(std::make_unique<Process>(
      asTestUser(
          {"/usr/bin/python3", "-m", "dbusmock", watcher, "/StatusNotifierWatcher", watcher}),
      environment_, folder_.path() / "watcher.out", folder_.path() / "watcher.err"));
  const auto mock = [&](const std::string& method, const std::vector<std::string>& arguments) {
    return busCall(watcher, "/StatusNotifierWatcher", "org.freedesktop.DBus.Mock." + method,
                   arguments);
  };
  ASSERT_TRUE(waitFor([&] { return !mock("GetCalls", {}).empty(); }))
      << readFile(folder_.path() / "watcher.err");
  mock("AddMethod", {"", "RegisterStatusNotifierItem", "s", "", ""});
  mock("AddMethod", {"", "RegisterStatusNotifierHost", "s", "", ""});
  mock("AddProperty", {"", "IsStatusNotifierHostRegistered", "<true>"});
  mock("AddProperty", {"", "ProtocolVersion", "<0>"});
  mock("AddProperty", {"", "RegisteredStatusNotifierItems", "<@as []>"});

  // The dashboard in the system's own theme and data, not the host's test theme.
  Environment korvo = environment_;
  korvo.erase("GTK_THEME");
  korvo["XDG_DATA_DIRS"] = "/usr/local/share:/usr/share";
  korvo["XDG_STATE_HOME"] = (folder_.path() / "state").string();
  korvo["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + (folder_.path() / "no-bus").string();
  korvo["KORVO_DASHBOARD_DUMP"] = (folder_.path() / "dashboard.json").string();
  const auto page = [&] {
    const auto state =
        nlohmann::json::parse(readFile(folder_.path() / "dashboard.json"), nullptr, false);
    return state.is_object() && state.value("mapped", false) ? state.value("page", "")
                                                             : std::string();
  };
  clients_.push_back(
      std::make_unique<Process>(asTestUser({KORVO_APP_BINARY, "open", "korvo://awake"}), korvo,
                                folder_.path() / "korvo.out", folder_.path() / "korvo.err"));
  ASSERT_TRUE(waitFor([&] { return page() == "awake"; })) << readFile(folder_.path() / "korvo.err");

  // A native Wayland window of its own application, tiled by sway (once its first frame is
  // committed, which may come after GTK maps it), drawn.
  nlohmann::json tree;
  const nlohmann::json* view = nullptr;
  const std::function<void(const nlohmann::json&)> find = [&](const nlohmann::json& node) {
    if (node.value("app_id", nlohmann::json()).is_string() &&
        node["app_id"] == "com.tessmoor.Korvo") {
      view = &node;
    }
    if (!node.contains("nodes")) return;
    for (const auto& child : node["nodes"]) find(child);
  };
  ASSERT_TRUE(waitFor([&] {
    tree = nlohmann::json::parse(sway_->message({"-t", "get_tree", "-r"}).output, nullptr, false);
    view = nullptr;
    find(tree);
    return view != nullptr;
  })) << tree.dump(1);
  EXPECT_EQ((*view)["name"], "Korvo · Resources, AI usage & Keep Awake");
  EXPECT_EQ((*view)["shell"], "xdg_shell");
  const auto& rect = (*view)["rect"];
  const int left = rect["x"];
  const int top = rect["y"];
  const int width = rect["width"];
  EXPECT_TRUE(waitFor([&] {
    sway_->screenshot(screen());
    return paintedBounds(screen(), {left, top + 60, width, 200}).has_value();
  })) << "the Keep Awake page drew nothing below its tabs";
  fs::copy_file(screen(), fs::path(KORVO_SCREENSHOT_DIR) / "dashboard.png",
                fs::copy_options::overwrite_existing);

  // The tab switcher is centred at the top, its four buttons of one width: just left of the
  // middle is the second, "Mem".
  sway_->click(left + width / 2 - 30, top + 8 + 14);
  EXPECT_TRUE(waitFor([&] { return page() == "memory"; }))
      << "the click on Mem did not reach the dashboard; it shows " << page();

  // The indicator: registered with the watcher; its menu opens the AI tab.
  std::string calls;
  ASSERT_TRUE(waitFor([&] {
    calls = mock("GetCalls", {});
    return calls.find("RegisterStatusNotifierItem") != std::string::npos;
  })) << readFile(folder_.path() / "korvo.err");
  const auto owner = busCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                             "org.freedesktop.DBus.GetNameOwner", {"com.tessmoor.Korvo"});
  const auto quoted = [](const std::string& text, const std::string& marker) {
    const auto at = text.find(marker);
    const auto open = at == std::string::npos ? at : text.find('\'', at + marker.size());
    const auto close = open == std::string::npos ? open : text.find('\'', open + 1);
    return close == std::string::npos ? std::string() : text.substr(open + 1, close - open - 1);
  };
  const std::string name = quoted(owner, "");
  const std::string item = quoted(calls, "'RegisterStatusNotifierItem', [<");
  ASSERT_FALSE(name.empty()) << owner;
  const std::string itemPath = !item.empty() && item.front() == '/' ? item : "/StatusNotifierItem";
  const std::string menu = quoted(busCall(name, itemPath, "org.freedesktop.DBus.Properties.Get",
                                          {"org.kde.StatusNotifierItem", "Menu"}),
                                  "objectpath ");
  ASSERT_FALSE(menu.empty());
  std::string layout;
  ASSERT_TRUE(waitFor([&] {
    layout = busCall(name, menu, "com.canonical.dbusmenu.GetLayout", {"0", "-1", "@as []"});
    return layout.find("'label': <'AI'>") != std::string::npos;
  })) << layout;
  const auto label = layout.find("'label': <'AI'>");
  const auto open = layout.rfind('(', label);
  const std::string id = layout.substr(open + 1, layout.find(',', open) - open - 1);
  busCall(name, menu, "com.canonical.dbusmenu.Event", {id, "clicked", "<0>", "0"});
  EXPECT_TRUE(waitFor([&] { return page() == "ai"; })) << "the menu's AI did not open the tab";
  EXPECT_EQ(readFile(folder_.path() / "korvo.err").find("CRITICAL"), std::string::npos)
      << readFile(folder_.path() / "korvo.err");
}

// A compositor without layer-shell: weston, headless.
class NoLayerShell : public testing::Test {
 protected:
  void start(bool xwayland) {
    ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
    const auto base = hostEnvironment(folder_.path(), {{"NO_AT_BRIDGE", "1"}});
    handToTestUser(folder_.path());
    weston_ = std::make_unique<Weston>(xwayland, folder_.path());
    ASSERT_EQ(weston_->failure(), "") << "weston could not start";
    environment_ = weston_->environment(base);
    host_ = std::make_unique<Process>(
        asTestUser({KORVO_BINARY, "run", "--widget", "awake", "--widget", "memory", "--dump-dir",
                    (folder_.path() / "dump").string()}),
        environment_, folder_.path() / "host.out", hostLog());
  }

  void TearDown() override {
    host_.reset();
    weston_.reset();
  }

  fs::path hostLog() const { return folder_.path() / "host.err"; }
  std::size_t timesSaid(const std::string& text) const {
    return occurrences(readFile(hostLog()), text);
  }
  // X tools run as the test user: XWayland lets in only the user of its compositor.
  std::string x(const std::vector<std::string>& arguments) const {
    return runCommand(asTestUser(arguments),
                      {{"PATH", "/usr/bin:/bin"}, {"DISPLAY", weston_->xDisplay()}})
        .output;
  }
  std::vector<std::string> visibleWidgets() const {
    std::vector<std::string> ids;
    std::istringstream found(
        x({"xdotool", "search", "--onlyvisible", "--name", "^(Keep Awake|Memory)$"}));
    for (std::string id; std::getline(found, id);) ids.push_back(id);
    return ids;
  }

  TemporaryDirectory folder_;
  std::unique_ptr<Weston> weston_;
  Environment environment_;
  std::unique_ptr<Process> host_;
};

TEST_F(NoLayerShell, WithXWaylandTheWidgetsRunThroughItAsOnX11AndTheHostSaysWhyOnce) {
  ASSERT_NO_FATAL_FAILURE(start(true));
  std::vector<std::string> ids;
  ASSERT_TRUE(waitFor([&] {
    ids = visibleWidgets();
    return ids.size() == 2;
  })) << "the widgets never showed through XWayland; host log:\n"
      << readFile(hostLog());
  // Weston's window manager keeps the window type but writes _NET_WM_STATE itself, without the
  // below, sticky and skip-taskbar states the host asks for; GNOME's keeps them.
  for (const auto& id : ids) {
    const auto type = x({"xprop", "-id", id, "_NET_WM_WINDOW_TYPE"});
    EXPECT_NE(type.find("_NET_WM_WINDOW_TYPE_UTILITY"), std::string::npos) << type;
  }
  EXPECT_EQ(timesSaid("offers no layer-shell; the widgets run through XWayland"), 1U)
      << readFile(hostLog());
  EXPECT_TRUE(host_->running());
}

TEST_F(NoLayerShell, WithoutXWaylandTheWidgetsAreOrdinaryWindowsAndTheHostSaysSo) {
  ASSERT_NO_FATAL_FAILURE(start(false));
  ASSERT_TRUE(waitFor([&] { return fs::exists(folder_.path() / "dump" / "2-memory-small.json"); }))
      << readFile(hostLog());
  EXPECT_EQ(timesSaid("offers neither layer-shell nor XWayland; the widgets are ordinary windows"),
            1U)
      << readFile(hostLog());
  EXPECT_TRUE(host_->running()) << readFile(hostLog());
}

// GNOME's compositor keeps what the X11 hints ask for: below, sticky, out of the taskbar.
TEST(GnomeCompositor, TheWidgetsRunThroughXWaylandBelowOnEveryWorkspaceOutOfTheTaskbar) {
  ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
  TemporaryDirectory folder;
  const auto base = hostEnvironment(folder.path(), {{"NO_AT_BRIDGE", "1"}});
  handToTestUser(folder.path());
  Mutter mutter(folder.path());
  ASSERT_EQ(mutter.failure(), "") << "mutter could not start";
  const auto environment = mutter.environment(base);
  const auto hostLog = folder.path() / "host.err";
  Process host(asTestUser({KORVO_BINARY, "run", "--widget", "awake"}), environment,
               folder.path() / "host.out", hostLog);
  const auto x = [&](const std::vector<std::string>& arguments) {
    return runCommand(asTestUser(arguments), environment).output;
  };
  std::string id;
  ASSERT_TRUE(waitFor([&] {
    id = x({"xdotool", "search", "--onlyvisible", "--name", "^Keep Awake$"});
    return !id.empty();
  })) << "the widget never showed through XWayland; host log:\n"
      << readFile(hostLog);
  id = id.substr(0, id.find('\n'));
  const auto state = x({"xprop", "-id", id, "_NET_WM_STATE"});
  EXPECT_NE(state.find("_NET_WM_STATE_BELOW"), std::string::npos) << state;
  EXPECT_NE(state.find("_NET_WM_STATE_STICKY"), std::string::npos) << state;
  EXPECT_NE(state.find("_NET_WM_STATE_SKIP_TASKBAR"), std::string::npos) << state;
  EXPECT_NE(x({"xprop", "-id", id, "_NET_WM_DESKTOP"}).find("4294967295"), std::string::npos)
      << "not on every workspace";
  EXPECT_EQ(
      occurrences(readFile(hostLog), "offers no layer-shell; the widgets run through XWayland"), 1U)
      << readFile(hostLog);
  EXPECT_TRUE(host.running());
}

}  // namespace
}  // namespace korvo::desktop_test
