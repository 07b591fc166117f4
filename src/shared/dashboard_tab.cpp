#include "shared/dashboard_tab.hpp"

#include <cstdlib>

#include "base/text.hpp"

namespace korvo {

std::string_view rawValue(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return "ai";
    case DashboardTab::memory:
      return "memory";
    case DashboardTab::awake:
      return "awake";
  }
  std::abort();
}

std::string shortTitle(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return _("AI");
    case DashboardTab::memory:
      return _("Mem");
    case DashboardTab::awake:
      return _("Awake");
  }
  std::abort();
}

template <>
std::optional<DashboardTab> fromRaw<DashboardTab>(std::string_view raw) {
  for (const DashboardTab tab : allCases<DashboardTab>()) {
    if (rawValue(tab) == raw) return tab;
  }
  return std::nullopt;
}

}  // namespace korvo
