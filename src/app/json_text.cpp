#include "app/json_text.hpp"

#include <nlohmann/json.hpp>
#include <vector>

namespace korvo::json_text {
namespace {

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::size_t skipSpace(std::string_view text, std::size_t at) {
  while (at < text.size() && isSpace(text[at])) ++at;
  return at;
}

// Just past the string whose opening quote is at `at`.
std::size_t skipString(std::string_view text, std::size_t at) {
  for (++at; at < text.size() && text[at] != '"'; ++at) {
    if (text[at] == '\\') ++at;
  }
  return at + 1;
}

// Just past the value that starts at `at`.
std::size_t skipValue(std::string_view text, std::size_t at) {
  std::size_t depth = 0;
  do {
    const char c = text[at];
    if (c == '"') {
      at = skipString(text, at);
    } else if (c == '{' || c == '[') {
      ++depth;
      ++at;
    } else if (c == '}' || c == ']') {
      --depth;
      ++at;
    } else if (depth > 0) {
      ++at;
    } else {
      // A number or a literal ends at what cannot be part of it.
      while (at < text.size() && !isSpace(text[at]) && text[at] != ',' && text[at] != '}' &&
             text[at] != ']') {
        ++at;
      }
    }
  } while (depth > 0 && at < text.size());
  return at;
}

struct Member {
  std::size_t keyBegin = 0;
  std::string key;
  Span value;
};

struct Object {
  std::size_t open = 0;   // its '{'
  std::size_t close = 0;  // its '}'
  std::vector<Member> members;
};

Object readObject(std::string_view text, std::size_t open) {
  Object object{open, open, {}};
  std::size_t at = skipSpace(text, open + 1);
  while (at < text.size() && text[at] == '"') {
    Member member;
    member.keyBegin = at;
    const std::size_t keyEnd = skipString(text, at);
    member.key = nlohmann::json::parse(text.substr(at, keyEnd - at)).get<std::string>();
    at = skipSpace(text, skipSpace(text, keyEnd) + 1);  // past the ':'
    member.value = {at, skipValue(text, at)};
    object.members.push_back(std::move(member));
    at = skipSpace(text, object.members.back().value.end);
    if (at < text.size() && text[at] == ',') at = skipSpace(text, at + 1);
  }
  object.close = at;
  return object;
}

const Member* find(const Object& object, std::string_view key) {
  for (const Member& member : object.members) {
    if (member.key == key) return &member;
  }
  return nullptr;
}

}  // namespace

std::size_t topObject(std::string_view text) {
  return text.find('{');
}

std::optional<Span> memberValue(std::string_view text, std::size_t object, std::string_view key) {
  const Object read = readObject(text, object);
  if (const Member* member = find(read, key)) return member->value;
  return std::nullopt;
}

std::string withMember(std::string_view text, std::string_view key, std::string_view value) {
  const Object object = readObject(text, topObject(text));
  std::string result(text);
  if (const Member* member = find(object, key)) {
    return result.replace(member->value.begin, member->value.end - member->value.begin, value);
  }
  const std::string name = nlohmann::json(std::string(key)).dump();
  if (object.members.empty()) {
    return result.insert(object.open + 1, name + ": " + std::string(value));
  }
  const Member& first = object.members.front();
  const std::size_t keyEnd = skipString(text, first.keyBegin);
  const std::string_view lead = text.substr(object.open + 1, first.keyBegin - object.open - 1);
  const std::string_view colon = text.substr(keyEnd, first.value.begin - keyEnd);
  const std::string added =
      "," + std::string(lead) + name + std::string(colon) + std::string(value);
  return result.insert(object.members.back().value.end, added);
}

std::string withoutMember(std::string_view text, std::string_view key) {
  const Object object = readObject(text, topObject(text));
  const Member* member = find(object, key);
  std::string result(text);
  if (member == nullptr) return result;
  const auto index = static_cast<std::size_t>(member - object.members.data());
  std::size_t begin = member->keyBegin;
  std::size_t end = member->value.end;
  if (index + 1 < object.members.size()) {
    end = object.members[index + 1].keyBegin;
  } else if (index > 0) {
    begin = object.members[index - 1].value.end;
  }
  return result.erase(begin, end - begin);
}

}  // namespace korvo::json_text
