#include "shared/json_reader.hpp"

#include <cstdio>
#include <vector>

namespace korvo::json_reader {
namespace {

using Json = nlohmann::json;

// Byte offset (1-based) of the first bracket that opens a level beyond the limit, or 0. Run before
// parsing so that no parser ever sees a document that deep; it tracks strings and their escapes
// exactly as a JSON parser does, and any input where it could be misled fails to parse earlier.
std::size_t firstTooDeepBracket(std::string_view bytes) {
  std::size_t depth = 0;
  bool inString = false;
  bool escaped = false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (inString) {
      if (escaped) {
        escaped = false;
      } else if (c == '\\') {
        escaped = true;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > maxNestingDepth) return i + 1;
    } else if ((c == ']' || c == '}') && depth > 0) {
      --depth;
    }
  }
  return 0;
}

std::string withoutExceptionPrefix(const std::string& what) {
  const auto end = what.find("] ");
  return end == std::string::npos ? what : what.substr(end + 2);
}

// Builds the document from parser events, refusing a key repeated within one object (which a
// plain parse would resolve silently, last one winning). Its destructor frees a document, which
// nlohmann does with a work list of its own: only running out of memory could throw there.
class Builder {  // NOLINT(bugprone-exception-escape)
 public:
  using number_integer_t = Json::number_integer_t;
  using number_unsigned_t = Json::number_unsigned_t;
  using number_float_t = Json::number_float_t;
  using string_t = Json::string_t;
  using binary_t = Json::binary_t;

  bool null() { return put(nullptr); }
  bool boolean(bool value) { return put(value); }
  bool number_integer(number_integer_t value) { return put(value); }
  bool number_unsigned(number_unsigned_t value) { return put(value); }
  bool number_float(number_float_t value, const string_t&) { return put(value); }
  bool string(string_t& value) { return put(std::move(value)); }
  static bool binary(binary_t&) { return false; }

  bool start_object(std::size_t) { return open(Json::object()); }
  bool start_array(std::size_t) { return open(Json::array()); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }

  bool key(string_t& name) {
    Json& object = *open_.back();
    if (object.contains(name)) {
      failure_ = "duplicate key " + memberPath(path(), name);
      return false;
    }
    keys_.back() = name;
    member_ = &object[name];
    return true;
  }

  bool parse_error(std::size_t position, const std::string&,
                   const nlohmann::detail::exception& error) {
    const std::string detail = withoutExceptionPrefix(error.what());
    if (detail.find("; expected end of input") != std::string::npos) {
      failure_ = "trailing data after the JSON value at byte " + std::to_string(position);
    } else if (detail.find("number overflow") != std::string::npos) {
      failure_ = "number out of range at byte " + std::to_string(position);
    } else {
      failure_ = "not JSON at byte " + std::to_string(position) + ": " + detail;
    }
    return false;
  }

  Json& root() { return root_; }
  const std::string& failure() const { return failure_; }

 private:
  Json* place(Json&& value) {
    if (open_.empty()) {
      root_ = std::move(value);
      return &root_;
    }
    Json& container = *open_.back();
    if (container.is_array()) {
      container.push_back(std::move(value));
      return &container.back();
    }
    *member_ = std::move(value);
    return member_;
  }

  bool put(Json&& value) { return place(std::move(value)) != nullptr; }

  bool open(Json&& container) {
    if (open_.size() >= maxNestingDepth) {
      failure_ = "nesting deeper than " + std::to_string(maxNestingDepth) + " levels";
      return false;
    }
    Json* placed = place(std::move(container));
    open_.push_back(placed);
    keys_.emplace_back();
    return true;
  }

  bool close() {
    open_.pop_back();
    keys_.pop_back();
    return true;
  }

  // The path of the innermost open object, for messages.
  std::string path() const {
    std::string text;
    for (std::size_t level = 0; level + 1 < open_.size(); ++level) {
      if (open_[level]->is_array()) {
        text += '[';
        text += std::to_string(open_[level]->size() - 1);
        text += ']';
      } else {
        text = memberPath(text, keys_[level]);
      }
    }
    return text;
  }

  Json root_;
  std::vector<Json*> open_;
  std::vector<std::string> keys_;
  Json* member_ = nullptr;
  std::string failure_;
};

std::string typeName(const Json& value) {
  if (value.is_boolean()) return "true/false";
  return value.type_name();
}

[[noreturn]] void wrongType(const Json& value, const std::string& path, const char* expected) {
  throw Failure{"wrong type at " + path + ": expected " + expected + ", found " + typeName(value)};
}

}  // namespace

Decoded<Json> parse(std::string_view bytes) {
  if (bytes.empty()) return DecodeFailure{"empty file (not JSON)"};
  // The parser takes a NUL byte for the end of its input; JSON has no place for one anywhere.
  if (const std::size_t nul = bytes.find('\0'); nul != std::string_view::npos) {
    return DecodeFailure{"NUL byte at byte " + std::to_string(nul + 1) + " (not JSON)"};
  }
  if (const std::size_t offset = firstTooDeepBracket(bytes); offset != 0) {
    return DecodeFailure{"nesting deeper than " + std::to_string(maxNestingDepth) +
                         " levels at byte " + std::to_string(offset)};
  }
  Builder builder;
  if (!Json::sax_parse(bytes, &builder)) return DecodeFailure{builder.failure()};
  return std::move(builder.root());
}

std::string memberPath(const std::string& parent, std::string_view key) {
  if (parent.empty()) return std::string(key);
  return parent + "." + std::string(key);
}

const Json& required(const Json& object, const std::string& parent, std::string_view key) {
  const auto found = object.find(key);
  if (found == object.end()) throw Failure{"missing key " + memberPath(parent, key)};
  return *found;
}

const Json* optional(const Json& object, std::string_view key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return nullptr;
  return &*found;
}

void expectObject(const Json& value, const std::string& path) {
  if (!value.is_object()) wrongType(value, path.empty() ? "the top level" : path, "object");
}

void expectArray(const Json& value, const std::string& path) {
  if (!value.is_array()) wrongType(value, path, "array");
}

std::string readString(const Json& value, const std::string& path) {
  if (!value.is_string()) wrongType(value, path, "string");
  return value.get<std::string>();
}

double readNumber(const Json& value, const std::string& path) {
  if (!value.is_number()) wrongType(value, path, "number");
  return value.get<double>();
}

Date readDate(const Json& value, const std::string& path) {
  if (!value.is_number()) {
    wrongType(value, path, "a date number (seconds since 2001-01-01)");
  }
  return Date{value.get<double>()};
}

bool readBoolean(const Json& value, const std::string& path) {
  if (!value.is_boolean()) wrongType(value, path, "true/false");
  return value.get<bool>();
}

}  // namespace korvo::json_reader
