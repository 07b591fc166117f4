#include "sources/cpu_temperature.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/temporary_directory.hpp"
#include "support/unprivileged.hpp"

namespace korvo {
namespace {

const std::filesystem::path fixtures = std::filesystem::path(KORVO_FIXTURES_DIR) / "hwmon";

struct TreeCase {
  const char* tree;
  std::optional<CpuTemperature> expected;
};

TEST(CpuTemperatureTest, EachFixtureTreeGivesItsFamilysHottestSensor) {
  const TreeCase cases[] = {
      {"coretemp_two_packages",
       CpuTemperature{62, "coretemp", "Package id 1", "/sys/class/hwmon/hwmon1/temp1_input"}},
      {"coretemp_cores_only",
       CpuTemperature{48, "coretemp", "Core 1", "/sys/class/hwmon/hwmon0/temp3_input"}},
      {"k10temp_tdie_tctl_tccd",
       CpuTemperature{60, "k10temp", "Tdie", "/sys/class/hwmon/hwmon0/temp2_input"}},
      {"k10temp_tctl_only",
       CpuTemperature{55.5, "k10temp", "Tctl", "/sys/class/hwmon/hwmon0/temp1_input"}},
      {"zenpower", CpuTemperature{47, "zenpower", "Tdie", "/sys/class/hwmon/hwmon0/temp1_input"}},
      {"arm_cpu_thermal",
       CpuTemperature{51.234, "cpu_thermal", "", "/sys/class/hwmon/hwmon0/temp1_input"}},
      {"x86_pkg_temp_and_acpitz_zones",
       CpuTemperature{58, "x86_pkg_temp", "", "/sys/class/thermal/thermal_zone1/temp"}},
      {"acpitz_zone_only",
       CpuTemperature{27.8, "acpitz", "", "/sys/class/thermal/thermal_zone0/temp"}},
      {"attributes_under_device", CpuTemperature{49, "coretemp", "Package id 0",
                                                 "/sys/class/hwmon/hwmon0/device/temp1_input"}},
      {"broken_package_readings",
       CpuTemperature{41, "coretemp", "Core 0", "/sys/class/hwmon/hwmon0/temp5_input"}},
      {"nvme_and_amdgpu_only", std::nullopt},
      {"empty", std::nullopt},
      {"no_such_tree", std::nullopt},
  };
  for (const auto& [tree, expected] : cases) {
    EXPECT_EQ(readCpuTemperature(fixtures / tree), expected) << tree;
  }
}

class CpuTemperatureTreeTest : public testing::Test {
 protected:
  void SetUp() override {
    // Readable by the unprivileged user some tests switch to.
    std::filesystem::permissions(directory.path(), std::filesystem::perms::all &
                                                       ~std::filesystem::perms::group_write &
                                                       ~std::filesystem::perms::others_write);
  }
  void package(const std::string& hwmon, const std::string& label, const std::string& milli) {
    const std::string dir = "sys/class/hwmon/" + hwmon + "/";
    directory.write(dir + "name", "coretemp\n");
    directory.write(dir + "temp1_label", label + "\n");
    directory.write(dir + "temp1_input", milli + "\n");
  }
  std::filesystem::path hwmon(const std::string& name) const {
    return directory.path() / "sys/class/hwmon" / name;
  }

  testing_support::TemporaryDirectory directory;
};

TEST_F(CpuTemperatureTreeTest, SymlinkLoopsAreSteppedOver) {
  package("hwmon1", "Package id 0", "57000");
  std::filesystem::create_directories(hwmon("hwmon0").parent_path());
  std::filesystem::create_directory_symlink("hwmon0", hwmon("hwmon0"));
  std::filesystem::create_directory_symlink("hwmon3", hwmon("hwmon2"));
  std::filesystem::create_directory_symlink("hwmon2", hwmon("hwmon3"));
  std::filesystem::create_directory_symlink("..", hwmon("hwmon1") / "device");
  const auto reading = readCpuTemperature(directory.path());
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->celsius, 57);
  EXPECT_EQ(reading->file, "/sys/class/hwmon/hwmon1/temp1_input");
}

// A listing is read whole: among thousands of entries (listed in no particular order) the one chip
// that counts, and its one sensor among thousands of other attributes, are found.
TEST_F(CpuTemperatureTreeTest, TheHottestSensorIsFoundAmongThousandsOfEntries) {
  for (int chip = 0; chip < 3000; ++chip) {
    std::filesystem::create_directories(hwmon("hwmon" + std::to_string(chip)));
  }
  package("hwmon1700", "Package id 0", "88000");
  for (int fan = 0; fan < 1100; ++fan) {
    directory.write("sys/class/hwmon/hwmon1700/fan" + std::to_string(fan) + "_input", "900\n");
  }
  const auto reading = readCpuTemperature(directory.path());
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->celsius, 88);
  EXPECT_EQ(reading->file, "/sys/class/hwmon/hwmon1700/temp1_input");
}

TEST_F(CpuTemperatureTreeTest, SpecialFilesAreRefusedWithoutBlocking) {
  package("hwmon0", "Package id 0", "50000");
  package("hwmon1", "Package id 1", "0");
  std::filesystem::remove(hwmon("hwmon1") / "temp1_input");
  ASSERT_EQ(::mkfifo((hwmon("hwmon1") / "temp1_input").c_str(), 0644), 0);
  package("hwmon2", "Package id 2", "0");
  std::filesystem::remove(hwmon("hwmon2") / "temp1_input");
  std::filesystem::create_symlink("/dev/zero", hwmon("hwmon2") / "temp1_input");
  package("hwmon3", "Package id 3", std::string(100'000, '9'));
  const auto reading = readCpuTemperature(directory.path());
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->label, "Package id 0");
}

TEST_F(CpuTemperatureTreeTest, AnUnreadableSensorIsSkippedForAnUnprivilegedUser) {
  package("hwmon0", "Package id 0", "70000");
  package("hwmon1", "Package id 1", "52000");
  std::filesystem::permissions(hwmon("hwmon0") / "temp1_input", std::filesystem::perms::none);
  const auto seen = testing_support::runUnprivileged([&] {
    const auto reading = readCpuTemperature(directory.path());
    return reading ? reading->label : std::string("none");
  });
  EXPECT_EQ(seen, "Package id 1");
}

TEST_F(CpuTemperatureTreeTest, AnUnreadableTreeIsNoReadingForAnUnprivilegedUser) {
  package("hwmon0", "Package id 0", "70000");
  std::filesystem::permissions(directory.path() / "sys/class/hwmon", std::filesystem::perms::none);
  const auto seen = testing_support::runUnprivileged([&] {
    return readCpuTemperature(directory.path()) ? std::string("reading") : std::string("none");
  });
  EXPECT_EQ(seen, "none");
}

TEST(CpuTemperatureTest, EverySensorOfTheFamilyIsListedPackagesFirstAndNoOtherChip) {
  const auto sensors = readCpuSensors(fixtures / "coretemp_two_packages");
  std::vector<std::string> named;
  for (const CpuTemperature& sensor : sensors) {
    named.push_back(sensor.file.parent_path().filename().string() + " " + sensor.label + " " +
                    std::to_string(static_cast<int>(sensor.celsius)));
  }
  EXPECT_EQ(named, (std::vector<std::string>{"hwmon0 Package id 0 50", "hwmon1 Package id 1 62",
                                             "hwmon0 Core 0 70", "hwmon1 Core 0 80"}));
  EXPECT_TRUE(readCpuSensors(fixtures / "nvme_and_amdgpu_only").empty());
}

}  // namespace
}  // namespace korvo
