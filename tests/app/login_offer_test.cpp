#include "app/login_offer.hpp"

#include <gtest/gtest.h>

#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

// The first dashboard of a home install offers "Start at login" once; an install elsewhere, or
// one that already starts at login, is never asked.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using testing_support::writeFile;

class LoginOffer : public testing::Test {
 protected:
  void SetUp() override {
    places.userUnits = home() / ".config/systemd/user";
    places.userAutostart = home() / ".config/autostart";
    places.unitFolders = {home() / ".local/share/systemd/user", folder.path() / "usr/lib"};
    places.programs = home() / ".local/bin";
    for (const char* unit : {"korvo.service", "korvo-widgets.service"}) {
      writeFile(home() / ".local/share/systemd/user" / unit, "[Unit]\n");
    }
  }
  fs::path home() const { return folder.path() / "home"; }
  fs::path mark() const { return home() / ".local/state/korvo/login-offered"; }

  testing_support::TemporaryDirectory folder;
  start_at_login::Places places;
};

TEST_F(LoginOffer, AHomeInstallIsOfferedItUntilTheOfferIsAnswered) {
  EXPECT_TRUE(login_offer::due(places, home(), mark()));
  // HOME as a user may write it, with a trailing slash.
  EXPECT_TRUE(login_offer::due(places, home().string() + "/", mark()));
  login_offer::markAnswered(mark());
  EXPECT_TRUE(fs::exists(mark()));
  EXPECT_FALSE(login_offer::due(places, home(), mark()));
}

TEST_F(LoginOffer, AnInstallOutsideHomeIsNeverOfferedIt) {
  places.programs = folder.path() / "usr/bin";
  EXPECT_FALSE(login_offer::due(places, home(), mark()));
  // A sibling folder whose name begins like home's is not inside it.
  places.programs = folder.path() / "home-other/.local/bin";
  EXPECT_FALSE(login_offer::due(places, home(), mark()));
}

TEST_F(LoginOffer, ItIsNotOfferedWhenKorvoAlreadyStartsAtLogin) {
  start_at_login::set(places, true);
  EXPECT_FALSE(login_offer::due(places, home(), mark()));
}

TEST_F(LoginOffer, TheMarkLivesInKorvosStateFolder) {
  {
    testing_support::ScopedEnvironment state("XDG_STATE_HOME", "/tmp/state-of-korvo");
    EXPECT_EQ(login_offer::markLocation(), fs::path("/tmp/state-of-korvo/korvo/login-offered"));
  }
  testing_support::ScopedEnvironment noState("XDG_STATE_HOME", std::nullopt);
  testing_support::ScopedEnvironment user("HOME", home().string());
  EXPECT_EQ(login_offer::markLocation(), home() / ".local/state/korvo/login-offered");
}

TEST_F(LoginOffer, AMarkThatCannotBeWrittenIsNamedOnOneLine) {
  writeFile(home() / ".local/state", "a file where a folder should be");
  try {
    login_offer::markAnswered(mark());
    FAIL() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "cannot write " + mark().string());
  }
}

}  // namespace
}  // namespace korvo
