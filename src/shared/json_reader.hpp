#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "base/date.hpp"
#include "shared/decode_result.hpp"

// Strict reading of the shared file's JSON, shared by the record decoders of this folder.
namespace korvo::json_reader {

// Deepest nesting of arrays and objects accepted; deeper input is refused before it can exhaust
// the stack of anything that walks the document.
inline constexpr std::size_t maxNestingDepth = 512;

// Parses one whole document: nesting at most maxNestingDepth deep, no key twice in an
// object, nothing but whitespace after the value, no NUL byte anywhere, a leading UTF-8
// byte-order mark skipped.
Decoded<nlohmann::json> parse(std::string_view bytes);

// Thrown by the field readers below with the reason; each decoder catches it at its top.
struct Failure {
  std::string reason;
};

// "codex" + "enabled" -> "codex.enabled"; "" + "date" -> "date".
std::string memberPath(const std::string& parent, std::string_view key);

// The member `key` of `object` (an object), which must be there.
const nlohmann::json& required(const nlohmann::json& object, const std::string& parent,
                               std::string_view key);
// The member `key`, or nullptr when it is missing or null.
const nlohmann::json* optional(const nlohmann::json& object, std::string_view key);

void expectObject(const nlohmann::json& value, const std::string& path);
void expectArray(const nlohmann::json& value, const std::string& path);
std::string readString(const nlohmann::json& value, const std::string& path);
double readNumber(const nlohmann::json& value, const std::string& path);
Date readDate(const nlohmann::json& value, const std::string& path);
bool readBoolean(const nlohmann::json& value, const std::string& path);

}  // namespace korvo::json_reader
