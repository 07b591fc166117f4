#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// An absolute URL of the form scheme://host/path, enough for file locations and deep links.
// Components are held decoded; `string()` writes them back with percent escapes where needed.
struct Url {
  std::string scheme;  // lower-case scheme without the colon ("file", "korvo", "https")
  std::string host;    // authority, decoded; empty for file URLs
  std::string path;    // decoded path, starting with "/" when not empty

  // The URL as text: "korvo://awake", "file:///home/a%20b/usage-snapshot.json".
  std::string string() const;

  // Parses an absolute "scheme://host/path" URL; none for anything else (no scheme, spaces or
  // other characters that a URL cannot hold unescaped, bad percent escapes, a query or fragment).
  static std::optional<Url> parse(std::string_view text);

  // The file URL of an absolute path; none for a relative or empty path.
  static std::optional<Url> file(const std::filesystem::path& absolutePath);

  friend bool operator==(const Url&, const Url&) = default;
};

}  // namespace korvo
