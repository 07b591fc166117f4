#include "managed_desktop.hpp"

#include "support/host_environment.hpp"

namespace korvo::desktop_test {

void ManagedDesktop::SetUp() {
  ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
  server_ = std::make_unique<XServer>(screenWidth, screenHeight, folder_.path());
  environment_ = hostEnvironment(folder_.path(), {
                                                     {"DISPLAY", server_->display()},
                                                     {"GDK_BACKEND", "x11"},
                                                     {"NO_AT_BRIDGE", "1"},
                                                     {"KORVO_TEST_URL_LOG", urlLog().string()},
                                                 });
  windowManager_ =
      std::make_unique<Process>(std::vector<std::string>{"openbox"}, environment_,
                                folder_.path() / "openbox.out", folder_.path() / "openbox.err");
  // Openbox manages the screen once it names itself on the root window.
  ASSERT_TRUE(waitFor([&] {
    return runCommand({"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"}, environment_)
               .output.find("window id") != std::string::npos;
  })) << readFile(folder_.path() / "openbox.err");
}

}  // namespace korvo::desktop_test
