#include "shared/dashboard_tab.hpp"

#include <cstdlib>

#include "base/text.hpp"

namespace korvo {

std::string_view rawValue(DashboardTab tab) {
  return wordFor(dashboardTabWords, tab);
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

std::string title(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return _("AI Usage");
    case DashboardTab::memory:
      return _("Memory");
    case DashboardTab::awake:
      return _("Keep Awake");
  }
  std::abort();
}

template <>
std::optional<DashboardTab> fromRaw<DashboardTab>(std::string_view raw) {
  return valueNamed(dashboardTabWords, raw);
}

}  // namespace korvo
