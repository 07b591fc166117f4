#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/process_run.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

namespace fs = std::filesystem;
using testing_support::ProcessResult;
using testing_support::TemporaryDirectory;

const fs::path dataDir = fs::path(KORVO_SOURCE_DIR) / "data";
constexpr bool buildsKorvo = KORVO_BUILDS_KORVO;

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

bool has(const std::vector<std::string>& items, const std::string& item) {
  return std::find(items.begin(), items.end(), item) != items.end();
}

// One `cmake --install` of the build tree into a fresh prefix, shared by every test here.
class Installed : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryDirectory;
    ::chmod(folder_->path().c_str(), 0755);
    prefix_ = new fs::path(folder_->path() / "prefix");
    install_ = new ProcessResult(testing_support::runProgram(
        KORVO_CMAKE, {"--install", KORVO_BUILD_DIR, "--prefix", prefix_->string()},
        {{"PATH", "/usr/bin:/bin"}}));
  }
  static void TearDownTestSuite() {
    delete install_;
    delete prefix_;
    delete folder_;
  }
  void SetUp() override { ASSERT_EQ(install_->exitCode, 0) << install_->out << install_->err; }

  static const fs::path& prefix() { return *prefix_; }
  // `program` run to its end with exactly `environment`.
  static ProcessResult run(const std::string& program, const std::vector<std::string>& args,
                           std::map<std::string, std::string> environment = {}) {
    environment.emplace("PATH", "/usr/bin:/bin");
    environment.emplace("HOME", (folder_->path() / "home").string());
    environment.emplace("LANG", "C.UTF-8");
    return testing_support::runProgram(program, args, environment);
  }
  static std::vector<fs::path> filesIn(const fs::path& folder, const std::string& extension) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.path().extension() == extension) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
  }

  static inline TemporaryDirectory* folder_ = nullptr;
  static inline fs::path* prefix_ = nullptr;
  static inline ProcessResult* install_ = nullptr;
};

TEST_F(Installed, EveryFileLandsWhereTheDesktopLooksForIt) {
  std::vector<std::string> expected{
      "bin/korvo-widgets",
      "libexec/korvo-widgets/korvo-widgets-desktop",
      "lib/korvo-widgets/korvo-render.so",
      "lib/korvo-widgets/korvo-date-text.so",
      "share/korvo-widgets/Info.json",
      "share/applications/com.tessmoor.Korvo.Widgets.desktop",
      "etc/xdg/autostart/com.tessmoor.Korvo.Widgets.desktop",
      "share/systemd/user/korvo-widgets.service",
      "share/dbus-1/services/com.tessmoor.Korvo.Widgets.service",
      "share/icons/hicolor/scalable/apps/com.tessmoor.Korvo.Widgets.svg",
      "share/metainfo/com.tessmoor.Korvo.Widgets.metainfo.xml",
      "share/man/man1/korvo-widgets.1.gz",
      "share/doc/korvo-widgets/copyright",
      "share/doc/korvo-widgets/changelog.gz",
      "share/bash-completion/completions/korvo-widgets",
      "share/zsh/site-functions/_korvo-widgets",
      "share/fish/vendor_completions.d/korvo-widgets.fish",
  };
  if (buildsKorvo) {
    for (const char* file :
         {"bin/korvo", "libexec/korvo/korvo-service",
          "share/applications/com.tessmoor.Korvo.desktop",
          "etc/xdg/autostart/com.tessmoor.Korvo.Service.desktop",
          "share/systemd/user/korvo.service", "share/dbus-1/services/com.tessmoor.Korvo.service",
          "share/icons/hicolor/scalable/apps/com.tessmoor.Korvo.svg",
          "share/icons/hicolor/scalable/status/com.tessmoor.Korvo-awake.svg",
          "share/man/man1/korvo.1.gz", "share/bash-completion/completions/korvo",
          "share/zsh/site-functions/_korvo", "share/fish/vendor_completions.d/korvo.fish"}) {
      expected.emplace_back(file);
    }
  }
  for (const std::string& file : expected) {
    EXPECT_TRUE(fs::is_regular_file(prefix() / file)) << file;
  }
}

TEST_F(Installed, UnitsAndBusServicesStartTheInstalledPrograms) {
  const std::string bin = (prefix() / "bin").string();
  const auto unit =
      lines(testing_support::readFile(prefix() / "share/systemd/user/korvo-widgets.service"));
  EXPECT_TRUE(has(unit, "ExecStart=" + bin + "/korvo-widgets run"));
  EXPECT_TRUE(has(unit, "PartOf=graphical-session.target"));
  EXPECT_TRUE(has(unit, "WantedBy=graphical-session.target"));
  const auto service = lines(testing_support::readFile(
      prefix() / "share/dbus-1/services/com.tessmoor.Korvo.Widgets.service"));
  EXPECT_TRUE(has(service, "Exec=" + bin + "/korvo-widgets run"));
  EXPECT_TRUE(has(service, "SystemdService=korvo-widgets.service"));
}

TEST_F(Installed, DesktopEntriesStartTheInstalledProgramsWhateverThePath) {
  // GIO ignores an entry whose program is not on PATH, and the prefix's bin/ may not be.
  const std::string bin = (prefix() / "bin").string();
  const auto widgets = lines(testing_support::readFile(
      prefix() / "share/applications/com.tessmoor.Korvo.Widgets.desktop"));
  EXPECT_TRUE(has(widgets, "Exec=" + bin + "/korvo-widgets run"));
  if (buildsKorvo) {
    const auto korvo = lines(
        testing_support::readFile(prefix() / "share/applications/com.tessmoor.Korvo.desktop"));
    EXPECT_TRUE(has(korvo, "Exec=" + bin + "/korvo open %u"));
    EXPECT_TRUE(has(korvo, "MimeType=x-scheme-handler/korvo;"));
  }
}

// Where systemd's generator turns autostart entries into units (Plasma and other systemd-run
// sessions) and where GNOME's session manager runs under systemd, the user units start the
// programs instead: each starts once.
TEST_F(Installed, AutostartEntriesGiveWayToTheUserUnitsUnderSystemd) {
  const fs::path autostart = prefix() / "etc/xdg/autostart";
  const auto entries = filesIn(autostart, ".desktop");
  ASSERT_EQ(entries.size(), buildsKorvo ? 2u : 1u);
  for (const auto& entry : entries) {
    EXPECT_TRUE(has(lines(testing_support::readFile(entry)), "X-GNOME-HiddenUnderSystemd=true"))
        << entry;
  }
  const fs::path generated = folder_->path() / "generated";
  fs::create_directories(generated);
  const ProcessResult result =
      run("/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator",
          {generated.string(), generated.string(), generated.string()},
          {{"XDG_CONFIG_DIRS", (prefix() / "etc/xdg").string()},
           {"XDG_CONFIG_HOME", (folder_->path() / "no-config").string()},
           {"SYSTEMD_LOG_LEVEL", "debug"}});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  for (const auto& entry : entries) {
    EXPECT_NE(result.err.find(entry.string() + ": not generating unit, marked as skipped"),
              std::string::npos)
        << result.err;
  }
  std::vector<fs::path> units;
  for (const auto& unit : fs::recursive_directory_iterator(generated)) units.push_back(unit.path());
  EXPECT_EQ(units, std::vector<fs::path>{});
}

TEST_F(Installed, TheProgramsFindTheirDataFromThePrefixWithoutEnvironmentVariables) {
  // An Info.json of the test's own tells which file the installed programs read.
  std::ofstream(prefix() / "share/korvo-widgets/Info.json", std::ios::trunc)
      << R"({"KorvoAppGroup": "group.test.installed"})";
  const ProcessResult path = run((prefix() / "bin/korvo-widgets").string(), {"snapshot", "path"});
  EXPECT_EQ(path.exitCode, 0) << path.err;
  EXPECT_NE(path.out.find("/app-groups/group.test.installed/usage-snapshot.json"),
            std::string::npos)
      << path.out;
  // `run` finds the desktop host in libexec.
  const ProcessResult host = run((prefix() / "bin/korvo-widgets").string(), {"run", "--help"});
  EXPECT_EQ(host.exitCode, 0) << host.err;
  EXPECT_NE(host.out.find("--replace"), std::string::npos) << host.out;
}

TEST_F(Installed, EveryDesktopEntryValidates) {
  std::vector<fs::path> entries = filesIn(prefix() / "share/applications", ".desktop");
  for (const auto& entry : filesIn(prefix() / "etc/xdg/autostart", ".desktop")) {
    entries.push_back(entry);
  }
  // korvo's own entries, also before the korvo program is built.
  for (const auto& entry : filesIn(dataDir, ".desktop")) entries.push_back(entry);
  for (const auto& entry : filesIn(dataDir / "autostart", ".desktop")) entries.push_back(entry);
  ASSERT_GE(entries.size(), 4u);
  for (const auto& entry : entries) {
    const ProcessResult result = run("/usr/bin/desktop-file-validate", {entry.string()});
    EXPECT_EQ(result.exitCode, 0) << entry << result.out << result.err;
    EXPECT_EQ(result.out + result.err, "") << entry;
  }
  const auto korvo = lines(testing_support::readFile(dataDir / "com.tessmoor.Korvo.desktop"));
  EXPECT_TRUE(has(korvo, "MimeType=x-scheme-handler/korvo;"));
  EXPECT_TRUE(has(korvo, "Exec=korvo open %u"));
}

TEST_F(Installed, TheMetainfoValidatesAndShowsTheGallery) {
  const fs::path metainfo = prefix() / "share/metainfo/com.tessmoor.Korvo.Widgets.metainfo.xml";
  const ProcessResult result =
      run("/usr/bin/appstreamcli", {"validate", "--no-net", metainfo.string()});
  EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
  const std::string text = testing_support::readFile(metainfo);
  for (const char* picture :
       {"memory-medium-light-placeholder.png", "usage-medium-dark-placeholder.png",
        "temperature-small-light-placeholder.png"}) {
    EXPECT_NE(text.find(picture), std::string::npos) << picture;
  }
}

TEST_F(Installed, TheUserUnitsVerify) {
  const fs::path runtime = folder_->path() / "runtime";
  fs::create_directories(runtime);
  ::chmod(runtime.c_str(), 0700);
  std::vector<fs::path> units = filesIn(prefix() / "share/systemd/user", ".service");
  std::string manPath = (prefix() / "share/man").string();
  // korvo's unit from the source, its program stood in for by a stub until korvo is built here.
  if (!buildsKorvo) {
    const fs::path stub = folder_->path() / "stub" / "korvo";
    fs::create_directories(stub.parent_path());
    std::ofstream(stub) << "#!/bin/sh\n";
    fs::permissions(stub, fs::perms::owner_all);
    std::string unit = testing_support::readFile(dataDir / "korvo.service");
    const std::string exec = "\nExecStart=korvo ";
    unit.replace(unit.find(exec), exec.size(), "\nExecStart=" + stub.string() + " ");
    const fs::path copy = folder_->path() / "stub" / "korvo.service";
    std::ofstream(copy) << unit;
    units.push_back(copy);
    fs::create_directories(folder_->path() / "stub" / "man" / "man1");
    fs::copy_file(dataDir / "man" / "korvo.1",
                  folder_->path() / "stub" / "man" / "man1" / "korvo.1",
                  fs::copy_options::overwrite_existing);
    manPath += ":" + (folder_->path() / "stub" / "man").string();
  }
  ASSERT_EQ(units.size(), 2u);
  for (const auto& unit : units) {
    // Documentation=man:… must name a page man finds.
    const ProcessResult result =
        run("/usr/bin/systemd-analyze", {"--user", "verify", unit.string()},
            {{"XDG_RUNTIME_DIR", runtime.string()}, {"MANPATH", manPath}});
    EXPECT_EQ(result.exitCode, 0) << unit << result.out << result.err;
    EXPECT_EQ(result.err, "") << unit;
  }
}

TEST_F(Installed, EveryManPageRendersWithoutWarnings) {
  // korvo's from the source also before korvo is built; the installed ones compressed.
  auto pages = filesIn(dataDir / "man", ".1");
  ASSERT_EQ(pages.size(), 2u);
  const auto installed = filesIn(prefix() / "share/man/man1", ".gz");
  ASSERT_EQ(installed.size(), buildsKorvo ? 2u : 1u);
  pages.insert(pages.end(), installed.begin(), installed.end());
  for (const auto& page : pages) {
    const ProcessResult result = run("/usr/bin/man", {"--warnings", "-l", page.string()},
                                     {{"MANWIDTH", "80"}, {"MANPAGER", "cat"}, {"PAGER", "cat"}});
    EXPECT_EQ(result.exitCode, 0) << page << result.err;
    EXPECT_EQ(result.err, "") << page;
    EXPECT_NE(result.out.find("SYNOPSIS"), std::string::npos) << page;
  }
}

// What each shell completes after a line, for both programs.
struct CompletionCase {
  std::vector<std::string> words;  // the line, its last word the one being completed
  std::vector<std::string> offered;
};

const std::vector<CompletionCase> completionCases{
    {{"korvo-widgets", ""},
     {"list", "timeline", "render", "gallery", "snapshot", "memory", "status", "run", "reload",
      "stop"}},
    {{"korvo-widgets", "render", ""}, {"memory", "awake", "usage", "temperature"}},
    {{"korvo-widgets", "status", ""}, {"memory", "usage", "temperature"}},
    {{"korvo", ""},
     {"open", "service", "publish", "temperature", "codex", "claude-statusline", "awake",
      "settings"}},
};

std::string joinedLine(const std::vector<std::string>& words) {
  std::string line;
  for (const auto& word : words) line += word + " ";
  return line.substr(0, line.size() - 1);
}

void expectOffered(const std::string& shell, const CompletionCase& test,
                   const ProcessResult& result) {
  EXPECT_EQ(result.exitCode, 0) << shell << " " << result.err;
  const auto offered = lines(result.out);
  for (const auto& word : test.offered) {
    EXPECT_TRUE(has(offered, word) || has(offered, word + "\t"))
        << shell << ": \"" << joinedLine(test.words) << "\" does not offer " << word
        << "; offers:\n"
        << result.out;
  }
  if (test.words[1] == "status") {
    EXPECT_FALSE(has(offered, "awake")) << shell << ": status offers awake";
  }
}

TEST_F(Installed, BashCompletesTheCommandsAndKinds) {
  for (const auto& test : completionCases) {
    const std::string script =
        (prefix() / "share/bash-completion/completions" / test.words[0]).string();
    if (!fs::exists(script)) continue;  // korvo's, before korvo is built
    std::vector<std::string> args{KORVO_INSTALL_TESTS_DIR "/complete.bash", script};
    args.insert(args.end(), test.words.begin(), test.words.end());
    expectOffered("bash", test, run("/bin/bash", args));
  }
}

TEST_F(Installed, ZshCompletesTheCommandsAndKinds) {
  // The installed folder holds korvo-widgets' function; the source folder also korvo's.
  for (const fs::path& folder : {prefix() / "share/zsh/site-functions", dataDir / "completions"}) {
    for (const auto& test : completionCases) {
      if (!fs::exists(folder / ("_" + test.words[0]))) continue;
      const ProcessResult result = run(
          "/usr/bin/zsh",
          {"-f", KORVO_INSTALL_TESTS_DIR "/complete.zsh", folder.string(), joinedLine(test.words)});
      expectOffered("zsh", test, result);
    }
  }
}

TEST_F(Installed, FishCompletesTheCommandsAndKinds) {
  for (const auto& test : completionCases) {
    for (const fs::path& script :
         {prefix() / "share/fish/vendor_completions.d" / (test.words[0] + ".fish"),
          dataDir / "completions" / (test.words[0] + ".fish")}) {
      if (!fs::exists(script)) continue;
      const ProcessResult result =
          run("/usr/bin/fish", {"--no-config", "-c",
                                "source " + script.string() + "; complete -C '" +
                                    joinedLine(test.words) + "' | cut -f1"});
      expectOffered("fish", test, result);
    }
  }
}

// /usr/local staged as a distribution builder stages it: autostart entries where sessions read
// them, units where the user manager does, and no MIME cache (the target system builds its own).
TEST_F(Installed, AStagedUsrLocalInstallPutsSessionFilesWhereTheSessionReadsThem) {
  const fs::path root = folder_->path() / "staged";
  const ProcessResult result =
      run(KORVO_CMAKE, {"--install", KORVO_BUILD_DIR, "--prefix", "/usr/local"},
          {{"DESTDIR", root.string()}});
  ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
  EXPECT_TRUE(fs::is_regular_file(root / "etc/xdg/autostart/com.tessmoor.Korvo.Widgets.desktop"));
  EXPECT_TRUE(fs::is_regular_file(root / "usr/local/share/systemd/user/korvo-widgets.service"));
  EXPECT_FALSE(fs::exists(root / "usr/local/etc"));
  EXPECT_FALSE(fs::exists(root / "usr/local/share/applications/mimeinfo.cache"));
  const auto entry = lines(testing_support::readFile(
      root / "usr/local/share/applications/com.tessmoor.Korvo.Widgets.desktop"));
  EXPECT_TRUE(has(entry, "Exec=/usr/local/bin/korvo-widgets run"));
}

TEST_F(Installed, AnUnwritablePrefixIsRefusedOnOneClearLine) {
  // A folder only its owner may write to, tried by someone else.
  const fs::path locked = folder_->path() / "locked";
  fs::create_directories(locked);
  ::chmod(locked.c_str(), 0755);
  std::vector<std::string> args{"--install", KORVO_BUILD_DIR, "--prefix",
                                (locked / "usr").string()};
  ProcessResult result;
  if (::geteuid() == 0) {
    args.insert(args.begin(), {"-u", "nobody", "--", KORVO_CMAKE});
    result = run("/usr/sbin/runuser", args);
  } else {
    ::chmod(locked.c_str(), 0555);
    result = run(KORVO_CMAKE, args);
  }
  EXPECT_NE(result.exitCode, 0);
  EXPECT_NE(result.err.find("korvo-widgets: cannot install into " + (locked / "usr").string() +
                            ": " + locked.string() + " is not a writable folder"),
            std::string::npos)
      << result.err;
  EXPECT_FALSE(fs::exists(locked / "usr"));
}

}  // namespace
}  // namespace korvo
