#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <functional>
#include <thread>

#include "support/korvo_process.hpp"

// korvo's service claiming korvo:// links through GIO, in a user's private XDG_DATA_HOME and
// XDG_CONFIG_HOME, checked with `gio mime` as the desktop asks.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using testing_support::KorvoWorld;

constexpr const char* linkType = "x-scheme-handler/korvo";

bool eventually(const std::function<bool()>& condition) {
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (std::chrono::steady_clock::now() < giveUp) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

class LinkHandlerTest : public testing::Test {
 protected:
  void SetUp() override {
    // korvo's desktop entry where the user's own applications are, its MIME cache never built
    // (an install into a staging root, or without update-desktop-database).
    std::string entry =
        testing_support::readFile(KORVO_SOURCE_DATA_DIR "/com.tessmoor.Korvo.desktop");
    const std::string exec = "\nExec=korvo ";
    entry.replace(entry.find(exec), exec.size(), "\nExec=" KORVO_APP_BINARY " ");
    world.write("data/applications/com.tessmoor.Korvo.desktop", entry);
  }
  void TearDown() override {
    if (pid <= 0) return;
    ::kill(pid, SIGTERM);
    int status = 0;
    ::waitpid(pid, &status, 0);
  }
  // The service, until it has published once: its start-up is over by then.
  void startService() {
    pid = testing_support::startProgram(KORVO_APP_BINARY, {"service"}, world.environment(),
                                        std::nullopt);
    ASSERT_GT(pid, 0);
    ASSERT_TRUE(eventually([&] { return fs::exists(world.sharedFile()); }));
  }
  // The first line of `gio mime`: the default application, or that there is none.
  std::string handler() const {
    const auto result =
        testing_support::runProgram("/usr/bin/gio", {"mime", linkType}, world.environment());
    return result.out.substr(0, result.out.find('\n'));
  }

  KorvoWorld world;
  pid_t pid = 0;
};

TEST_F(LinkHandlerTest, TheServiceMakesKorvoTheHandlerWhenTheDesktopKnowsNone) {
  ASSERT_EQ(handler(), "No default applications for “x-scheme-handler/korvo”");
  startService();
  EXPECT_EQ(handler(),
            "Default application for “x-scheme-handler/korvo”: com.tessmoor.Korvo.desktop");
  EXPECT_NE(testing_support::readFile(world.home() / "config/mimeapps.list")
                .find("x-scheme-handler/korvo=com.tessmoor.Korvo.desktop"),
            std::string::npos);
}

TEST_F(LinkHandlerTest, AHandlerTheUserChoseStays) {
  world.write("data/applications/org.example.Links.desktop",
              "[Desktop Entry]\nType=Application\nName=Links\nExec=/bin/true %u\n"
              "MimeType=x-scheme-handler/korvo;\n");
  const std::string choice =
      "[Default Applications]\nx-scheme-handler/korvo=org.example.Links.desktop\n";
  world.write("config/mimeapps.list", choice);
  startService();
  EXPECT_EQ(handler(),
            "Default application for “x-scheme-handler/korvo”: org.example.Links.desktop");
  EXPECT_EQ(testing_support::readFile(world.home() / "config/mimeapps.list"), choice);
}

}  // namespace
}  // namespace korvo
