#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/display_text.hpp"
#include "sources/cpu_sensor_choice.hpp"

// Any sysfs attribute text: a temperature is a whole number of millidegrees within a working
// sensor's range or none; a name's first line holds no newline and shows as one line of UTF-8;
// families and ranks are decided without reading past the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto celsius = korvo::cpu_sensor::celsiusFromMillidegrees(text)) {
    if (!(*celsius >= -40 && *celsius <= 150)) std::abort();
  }
  const std::string_view line = korvo::cpu_sensor::firstLine(text);
  if (line.find('\n') != std::string_view::npos || line.size() > text.size()) std::abort();
  const std::string shown = korvo::displayText(line);
  for (const char c : shown) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) std::abort();
  }
  using korvo::cpu_sensor::Family;
  for (const Family family : {Family::coretemp, Family::amd, Family::cpuThermal, Family::acpi}) {
    if (const auto rank = korvo::cpu_sensor::labelRank(family, shown)) {
      if (*rank < 0 || *rank > 2) std::abort();
    }
  }
  korvo::cpu_sensor::familyOfChip(shown);
  korvo::cpu_sensor::familyOfZone(shown);
  return 0;
}
