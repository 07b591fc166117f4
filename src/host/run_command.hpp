#pragma once

#include <CLI/CLI.hpp>

namespace korvo {

// Registers `run`: the desktop host, one window per placed widget.
void addRunCommand(CLI::App& app);

}  // namespace korvo
