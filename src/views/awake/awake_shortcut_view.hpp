#pragma once

#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// The keep-awake widget: a fixed card that opens the host's session controls ("korvo://awake").
// It shows no session state, so it takes no entry.
struct AwakeShortcutView {
  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const AwakeShortcutView&, const AwakeShortcutView&) = default;
};

}  // namespace korvo
