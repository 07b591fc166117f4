#pragma once

#include <vector>

#include "model/reload_policy.hpp"

namespace korvo {

// The entries a provider hands to the widget host, oldest first, and when to ask again.
template <class Entry>
struct Timeline {
  std::vector<Entry> entries;  // each shown from its date until the next one's
  ReloadPolicy policy;         // when the host requests the next timeline

  friend bool operator==(const Timeline&, const Timeline&) = default;
};

}  // namespace korvo
