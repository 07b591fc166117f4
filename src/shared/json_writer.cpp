#include "shared/json_writer.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

#include "base/json_number.hpp"

namespace korvo {

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
  appendJsonNumber(out_, value);
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
