#include "app/start_at_login.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

// Starting at login, switched on and off, read back from the files a session and the systemd user
// manager read: the installs into a home prefix and from the package.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing_support::readFile;
using testing_support::writeFile;

constexpr const char* units[] = {"korvo.service", "korvo-widgets.service"};
constexpr const char* entries[] = {"com.tessmoor.Korvo.Service.desktop",
                                   "com.tessmoor.Korvo.Widgets.desktop"};

class StartAtLogin : public testing::Test {
 protected:
  void SetUp() override {
    places.userUnits = root() / "config/systemd/user";
    places.userAutostart = root() / "config/autostart";
    places.unitFolders = {root() / "etc/systemd/user", root() / "prefix/share/systemd/user",
                          root() / "usr/lib/systemd/user"};
    places.systemAutostart = {root() / "etc/xdg/autostart"};
    places.programs = root() / "prefix/bin";
  }

  const fs::path& root() const { return folder.path(); }
  fs::path userLink(const char* unit) const {
    return places.userUnits / "graphical-session.target.wants" / unit;
  }
  static bool present(const fs::path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
  }

  testing_support::TemporaryDirectory folder;
  start_at_login::Places places;
};

// `cmake --install --prefix ~/.local`: the units in the prefix's share/systemd/user, no entry
// any session reads until the switch puts one in the user's autostart folder.
TEST_F(StartAtLogin, AHomeInstallIsEnabledByLinksToItsUnitsAndCopiesOfTheEntries) {
  for (const char* unit : units) writeFile(root() / "prefix/share/systemd/user" / unit, "[Unit]\n");
  EXPECT_FALSE(start_at_login::enabled(places));

  start_at_login::set(places, true);
  EXPECT_TRUE(start_at_login::enabled(places));
  for (const char* unit : units) {
    ASSERT_TRUE(fs::is_symlink(userLink(unit))) << unit;
    EXPECT_EQ(fs::read_symlink(userLink(unit)), root() / "prefix/share/systemd/user" / unit);
  }
  const std::string service = readFile(places.userAutostart / entries[0]);
  EXPECT_THAT(service, HasSubstr("Exec=" + (root() / "prefix/bin/korvo").string() + " service\n"));
  EXPECT_THAT(service, HasSubstr("X-GNOME-HiddenUnderSystemd=true\n"));
  EXPECT_THAT(service, testing::Not(HasSubstr("Hidden=true\nX")));
  EXPECT_THAT(readFile(places.userAutostart / entries[1]),
              HasSubstr("Exec=" + (root() / "prefix/bin/korvo-widgets").string() + " run\n"));
  struct stat status {};
  ASSERT_EQ(::stat((places.userAutostart / entries[0]).c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0644U);

  start_at_login::set(places, false);
  EXPECT_FALSE(start_at_login::enabled(places));
  for (const char* unit : units) EXPECT_FALSE(present(userLink(unit))) << unit;
  for (const char* entry : entries) EXPECT_FALSE(present(places.userAutostart / entry)) << entry;
}

// The package enables the units for everyone and ships the entries system-wide: the user's switch
// turns them off with overrides of their own, and on again by taking those away.
TEST_F(StartAtLogin, APackageInstallIsTurnedOffByTheUsersOverridesAndOnByRemovingThem) {
  for (const char* unit : units) {
    writeFile(root() / "usr/lib/systemd/user" / unit, "[Unit]\n");
    fs::create_directories(root() / "etc/systemd/user/graphical-session.target.wants");
    fs::create_symlink(root() / "usr/lib/systemd/user" / unit,
                       root() / "etc/systemd/user/graphical-session.target.wants" / unit);
  }
  for (const char* entry : entries) {
    writeFile(root() / "etc/xdg/autostart" / entry, "[Desktop Entry]\nType=Application\n");
  }
  EXPECT_TRUE(start_at_login::enabled(places));

  start_at_login::set(places, false);
  EXPECT_FALSE(start_at_login::enabled(places));
  for (const char* unit : units) {
    ASSERT_TRUE(fs::is_symlink(userLink(unit))) << unit;
    EXPECT_EQ(fs::read_symlink(userLink(unit)), "/dev/null") << "masks the system's link";
  }
  for (const char* entry : entries) {
    EXPECT_THAT(readFile(places.userAutostart / entry), HasSubstr("\nHidden=true\n")) << entry;
  }
  EXPECT_EQ(readFile(root() / "etc/xdg/autostart" / entries[0]),
            "[Desktop Entry]\nType=Application\n")
      << "the system's files are left alone";

  start_at_login::set(places, true);
  EXPECT_TRUE(start_at_login::enabled(places));
  for (const char* unit : units) EXPECT_FALSE(present(userLink(unit))) << unit;
  for (const char* entry : entries) EXPECT_FALSE(present(places.userAutostart / entry)) << entry;
}

TEST_F(StartAtLogin, WithoutUnitsTheEntriesAloneDecide) {
  start_at_login::set(places, true);
  EXPECT_TRUE(start_at_login::enabled(places));
  EXPECT_FALSE(present(places.userUnits)) << "no link to a unit that is not installed";
  start_at_login::set(places, false);
  EXPECT_FALSE(start_at_login::enabled(places));
}

TEST_F(StartAtLogin, AFolderThatCannotBeWrittenIsNamedOnOneLine) {
  writeFile(root() / "config/autostart", "a file where the folder should be");
  try {
    start_at_login::set(places, true);
    ADD_FAILURE() << "no error";
  } catch (const std::runtime_error& error) {
    const std::string message = error.what();
    EXPECT_THAT(message, HasSubstr((places.userAutostart / entries[0]).string()));
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
  }
}

TEST_F(StartAtLogin, ThePlacesFollowTheXdgFoldersAndThePrefixOfKorvo) {
  testing_support::ScopedEnvironment environment;
  environment.set("XDG_CONFIG_HOME", "/home/u/conf");
  environment.set("XDG_CONFIG_DIRS", "/etc/xdg:relative");
  environment.set("XDG_DATA_HOME", "/home/u/data");
  const auto places = start_at_login::placesFromEnvironment("/home/u/.local/bin/korvo");
  EXPECT_EQ(places.userUnits, "/home/u/conf/systemd/user");
  EXPECT_EQ(places.userAutostart, "/home/u/conf/autostart");
  EXPECT_EQ(places.systemAutostart, std::vector<fs::path>{"/etc/xdg/autostart"});
  EXPECT_EQ(places.programs, "/home/u/.local/bin");
  const auto& folders = places.unitFolders;
  EXPECT_NE(std::find(folders.begin(), folders.end(), "/home/u/.local/share/systemd/user"),
            folders.end());
  EXPECT_NE(std::find(folders.begin(), folders.end(), "/home/u/data/systemd/user"), folders.end());
  EXPECT_NE(std::find(folders.begin(), folders.end(), "/usr/lib/systemd/user"), folders.end());
}

}  // namespace
}  // namespace korvo
