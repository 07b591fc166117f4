#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// Writes compact JSON the way the shared file holds it. Numbers: integral values below 2^53 in
// magnitude without a fraction ("816399900"), every other finite value in its shortest form that
// reads back to the same double ("52.5"); a non-finite number or a string that is not UTF-8 makes
// the whole document fail.
class JsonWriter {
 public:
  void beginObject();
  void endObject();
  void beginArray();
  void endArray();
  // The next member's key; its value follows with one of the value calls.
  void key(std::string_view name);
  void string(std::string_view text);
  void number(double value);
  void boolean(bool value);

  // The document, or none when any value could not be written.
  std::optional<std::string> finish() &&;

 private:
  void beginValue();

  std::string out_;
  bool afterKey_ = false;
  bool failed_ = false;
};

}  // namespace korvo
