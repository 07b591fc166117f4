#include "base/clock.hpp"

#include <chrono>
#include <mutex>

namespace korvo::clock {
namespace {

struct Settings {
  std::optional<Date> fixed;
  double offsetSeconds = 0;
  double rate = 1;
  double warpStartUnix = 0;
};

std::mutex settingsMutex;
Settings settings;

double realUnixSeconds() {
  using namespace std::chrono;
  return duration<double>(system_clock::now().time_since_epoch()).count();
}

}  // namespace

Date now() {
  std::scoped_lock lock(settingsMutex);
  if (settings.fixed) return *settings.fixed;
  const double real = realUnixSeconds();
  const double warped = settings.warpStartUnix + (real - settings.warpStartUnix) * settings.rate +
                        settings.offsetSeconds;
  return Date::fromUnixSeconds(warped);
}

void setFixed(std::optional<Date> moment) {
  std::scoped_lock lock(settingsMutex);
  settings.fixed = moment;
}

void setWarp(double offsetSeconds, double rate) {
  std::scoped_lock lock(settingsMutex);
  settings.offsetSeconds = offsetSeconds;
  settings.rate = rate;
  settings.warpStartUnix = realUnixSeconds();
}

void reset() {
  std::scoped_lock lock(settingsMutex);
  settings = Settings{};
}

}  // namespace korvo::clock
