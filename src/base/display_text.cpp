#include "base/display_text.hpp"

#include <cstddef>
#include <cstdio>

namespace korvo {
namespace {

// The length of the UTF-8 sequence starting at `text[at]`, or 0 when it is not one (overlong
// forms, surrogates and code points past U+10FFFF included). Decoded by hand: base links no text
// library, and ICU is loaded only for dates.
std::size_t sequenceLength(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned char lead = byte(0);
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (at + length > text.size()) return 0;
  if (byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  }
  return length;
}

void appendEscape(std::string& out, unsigned char byte) {
  switch (byte) {
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default: {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\x%02X", byte);
      out += escape;
    }
  }
}

}  // namespace

std::string displayText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t at = 0;
  while (at < text.size()) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x80) {
      if (byte < 0x20 || byte == 0x7F) {
        appendEscape(out, byte);
      } else {
        out += static_cast<char>(byte);
      }
      ++at;
      continue;
    }
    const std::size_t length = sequenceLength(text, at);
    if (length == 0) {
      appendEscape(out, byte);
      ++at;
      continue;
    }
    out.append(text, at, length);
    at += length;
  }
  return out;
}

bool isUtf8(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      ++at;
      continue;
    }
    const std::size_t length = sequenceLength(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace korvo
