#include "support/private_buses.hpp"

#include <stdexcept>

namespace korvo::bus_test {
namespace {

using namespace desktop_test;

const char* const python = "/usr/bin/python3";  // Debian's, where python3-dbusmock lives

}  // namespace

PrivateBus::PrivateBus(const std::filesystem::path& folder, const std::string& name) {
  const auto socket = folder / (name + "-bus");
  address_ = "unix:path=" + socket.string();
  daemon_ =
      std::make_unique<Process>(std::vector<std::string>{"dbus-daemon", "--session", "--nofork",
                                                         "--nopidfile", "--address=" + address_},
                                Environment{{"PATH", "/usr/bin:/bin"}},
                                folder / (name + "-bus.out"), folder / (name + "-bus.err"));
  if (!waitFor([&] { return std::filesystem::exists(socket); })) {
    throw std::runtime_error("dbus-daemon did not start for " + name);
  }
}

Mock::Mock(const Environment& environment, const std::filesystem::path& folder,
           const std::vector<std::string>& arguments, const std::string& name, bool system) {
  std::vector<std::string> words{python, "-m", "dbusmock", system ? "--system" : "--session"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  process_ = std::make_unique<Process>(words, environment, folder / (name + ".out"),
                                       folder / (name + ".err"));
  if (!waitFor([&] { return owned(environment, system, name); })) {
    throw std::runtime_error("the mock of " + name + " did not start");
  }
}

std::vector<std::string> callCommand(bool system, const std::string& destination,
                                     const std::string& path, const std::string& method,
                                     const std::vector<std::string>& arguments) {
  std::vector<std::string> words{"gdbus",  "call",      system ? "--system" : "--session",
                                 "--dest", destination, "--object-path",
                                 path,     "--method",  method};
  // Arguments such as -1 are values, not options.
  if (!arguments.empty()) words.push_back("--");
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

std::string call(const Environment& environment, bool system, const std::string& destination,
                 const std::string& path, const std::string& method,
                 const std::vector<std::string>& arguments) {
  return runCommand(callCommand(system, destination, path, method, arguments), environment).output;
}

bool owned(const Environment& environment, bool system, const std::string& name) {
  return call(environment, system, "org.freedesktop.DBus", "/org/freedesktop/DBus",
              "org.freedesktop.DBus.NameHasOwner", {name})
             .find("true") != std::string::npos;
}

}  // namespace korvo::bus_test
