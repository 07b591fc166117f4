#include <stdexcept>

#include "app/cli_commands.hpp"
#include "base/standard_output.hpp"

namespace korvo::app {

void print(std::string_view text) {
  if (const auto failure = writeStandardOutput(text)) throw std::runtime_error(*failure);
}

}  // namespace korvo::app
