#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "shared/json_writer.hpp"
#include "shared/usage_state.hpp"

// The usage records as parts of a larger document, for the widget snapshot's coder.
namespace korvo::usage_json {

void write(JsonWriter& writer, const UsageWindow& window);
void write(JsonWriter& writer, const UsageSnapshot& snapshot);
void write(JsonWriter& writer, const UsageState& state);

// Each throws json_reader::Failure naming the offending path (below `path`).
UsageWindow readWindow(const nlohmann::json& value, const std::string& path);
UsageSnapshot readSnapshot(const nlohmann::json& value, const std::string& path);
UsageState readState(const nlohmann::json& value, const std::string& path);

}  // namespace korvo::usage_json
