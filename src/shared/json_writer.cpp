#include "shared/json_writer.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

namespace korvo {
namespace {

constexpr double twoToThe53 = 9007199254740992.0;

}  // namespace

void JsonWriter::beginValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!out_.empty() && out_.back() != '[' && out_.back() != '{') out_.push_back(',');
}

void JsonWriter::beginObject() {
  beginValue();
  out_.push_back('{');
}

void JsonWriter::endObject() {
  out_.push_back('}');
}

void JsonWriter::beginArray() {
  beginValue();
  out_.push_back('[');
}

void JsonWriter::endArray() {
  out_.push_back(']');
}

void JsonWriter::key(std::string_view name) {
  string(name);
  out_.push_back(':');
  afterKey_ = true;
}

void JsonWriter::string(std::string_view text) {
  beginValue();
  try {
    out_ += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::strict);
  } catch (const nlohmann::json::exception&) {
    failed_ = true;
  }
}

void JsonWriter::number(double value) {
  beginValue();
  if (!std::isfinite(value)) {
    failed_ = true;
    return;
  }
  char buffer[32];
  std::to_chars_result result{};
  if (std::trunc(value) == value && std::fabs(value) < twoToThe53) {
    result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::int64_t>(value));
  } else {
    result = std::to_chars(buffer, buffer + sizeof buffer, value);
  }
  out_.append(buffer, result.ptr);
}

void JsonWriter::boolean(bool value) {
  beginValue();
  out_ += value ? "true" : "false";
}

std::optional<std::string> JsonWriter::finish() && {
  if (failed_) return std::nullopt;
  return std::move(out_);
}

}  // namespace korvo
