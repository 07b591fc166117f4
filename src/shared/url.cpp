#include "shared/url.hpp"

#include <algorithm>
#include <cctype>

namespace korvo {
namespace {

bool isUnreserved(unsigned char c) {
  return std::isalnum(c) != 0 || c == '-' || c == '.' || c == '_' || c == '~';
}

bool isSubDelimiter(unsigned char c) {
  static constexpr std::string_view delimiters = "!$&'()*+,;=";
  return delimiters.find(static_cast<char>(c)) != std::string_view::npos;
}

bool isHostCharacter(unsigned char c) {
  return isUnreserved(c) || isSubDelimiter(c) || c == ':';
}

bool isPathCharacter(unsigned char c) {
  return isUnreserved(c) || isSubDelimiter(c) || c == ':' || c == '@' || c == '/';
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Decodes percent escapes of a component whose other characters all pass `allowed`.
template <class Allowed>
std::optional<std::string> decodeComponent(std::string_view text, Allowed allowed) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == '%') {
      if (i + 2 >= text.size()) return std::nullopt;
      const int high = hexValue(text[i + 1]);
      const int low = hexValue(text[i + 2]);
      if (high < 0 || low < 0) return std::nullopt;
      out.push_back(static_cast<char>(high * 16 + low));
      i += 2;
    } else if (allowed(c)) {
      out.push_back(static_cast<char>(c));
    } else {
      return std::nullopt;
    }
  }
  return out;
}

template <class Allowed>
std::string encodeComponent(std::string_view text, Allowed allowed) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size());
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (allowed(c)) {
      out.push_back(ch);
    } else {
      out.push_back('%');
      out.push_back(digits[c >> 4]);
      out.push_back(digits[c & 0xF]);
    }
  }
  return out;
}

bool isValidScheme(std::string_view scheme) {
  if (scheme.empty() || std::isalpha(static_cast<unsigned char>(scheme.front())) == 0) return false;
  return std::all_of(scheme.begin(), scheme.end(), [](char ch) {
    const auto c = static_cast<unsigned char>(ch);
    return std::isalnum(c) != 0 || c == '+' || c == '-' || c == '.';
  });
}

}  // namespace

std::string Url::string() const {
  return scheme + "://" + encodeComponent(host, isHostCharacter) +
         encodeComponent(path, isPathCharacter);
}

std::optional<Url> Url::parse(std::string_view text) {
  const auto colon = text.find("://");
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string_view scheme = text.substr(0, colon);
  if (!isValidScheme(scheme)) return std::nullopt;
  const std::string_view rest = text.substr(colon + 3);
  const auto slash = rest.find('/');
  const std::string_view host = rest.substr(0, slash);
  const std::string_view path =
      slash == std::string_view::npos ? std::string_view{} : rest.substr(slash);
  auto decodedHost = decodeComponent(host, isHostCharacter);
  auto decodedPath = decodeComponent(path, isPathCharacter);
  if (!decodedHost || !decodedPath) return std::nullopt;
  std::string lowerScheme(scheme);
  std::transform(lowerScheme.begin(), lowerScheme.end(), lowerScheme.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  return Url{std::move(lowerScheme), std::move(*decodedHost), std::move(*decodedPath)};
}

std::optional<Url> Url::file(const std::filesystem::path& absolutePath) {
  if (absolutePath.empty() || !absolutePath.is_absolute()) return std::nullopt;
  return Url{"file", "", absolutePath.string()};
}

}  // namespace korvo
