#pragma once

#include <string_view>
#include <vector>

#include "extension/widget_configuration.hpp"

namespace korvo {

// The memory widget: a fresh reading of the machine, small and medium.
struct KorvoMemoryWidget {
  WidgetConfiguration body() const;
};

// The keep-awake shortcut: a fixed card, small only.
struct KorvoAwakeWidget {
  WidgetConfiguration body() const;
};

// The AI-usage widget: the shared snapshot's usage limits, small and medium.
struct KorvoUsageWidget {
  WidgetConfiguration body() const;
};

// The CPU-temperature widget: the shared snapshot's temperature, small only.
struct KorvoTemperatureWidget {
  WidgetConfiguration body() const;
};

// The widget bundle: the four configurations in the order the gallery lists them.
struct KorvoWidgets {
  std::vector<WidgetConfiguration> body() const;
};

// The configuration whose kind is `kind` or ends in "." + `kind`; none for anything else.
const WidgetConfiguration* findWidget(const std::vector<WidgetConfiguration>& widgets,
                                      std::string_view kind);

}  // namespace korvo
