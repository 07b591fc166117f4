#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/desktop_harness.hpp"

// Private D-Bus buses and python3-dbusmock services for the tests of korvo's service: a
// "system" bus (a bus daemon of its own that DBUS_SYSTEM_BUS_ADDRESS points at) with logind's
// mock, and a session bus with a mock org.gnome.SessionManager or org.freedesktop.ScreenSaver.
// Everything stops with the object.
namespace korvo::bus_test {

using desktop_test::Environment;

class PrivateBus {
 public:
  PrivateBus(const std::filesystem::path& folder, const std::string& name);
  const std::string& address() const { return address_; }

 private:
  std::string address_;
  std::unique_ptr<desktop_test::Process> daemon_;
};

// One dbusmock process serving `name` at `path`; `system` puts it on the system bus.
class Mock {
 public:
  Mock(const Environment& environment, const std::filesystem::path& folder,
       const std::vector<std::string>& arguments, const std::string& name, bool system);
  void stop() { process_->stop(); }

 private:
  std::unique_ptr<desktop_test::Process> process_;
};

// The `gdbus call` command line for a call on the session or system bus.
std::vector<std::string> callCommand(bool system, const std::string& destination,
                                     const std::string& path, const std::string& method,
                                     const std::vector<std::string>& arguments = {});

// `gdbus call` on the bus the environment names; its output ("(uint32 42,)").
std::string call(const Environment& environment, bool system, const std::string& destination,
                 const std::string& path, const std::string& method,
                 const std::vector<std::string>& arguments = {});

// Whether `name` has an owner on that bus.
bool owned(const Environment& environment, bool system, const std::string& name);

}  // namespace korvo::bus_test
