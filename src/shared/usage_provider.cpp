#include "shared/usage_provider.hpp"

#include <cstdio>
#include <cstdlib>

#include "base/text.hpp"

namespace korvo {
namespace {

// The pages are constants; a failure to parse one is a programming error.
Url constantUrl(std::string_view text) {
  auto url = Url::parse(text);
  if (!url) {
    std::fprintf(stderr, "korvo: constant URL does not parse: %.*s\n",
                 static_cast<int>(text.size()), text.data());
    std::abort();
  }
  return *url;
}

}  // namespace

std::string_view rawValue(UsageProvider provider) {
  return wordFor(usageProviderWords, provider);
}

std::string displayName(UsageProvider provider) {
  switch (provider) {
    case UsageProvider::codex:
      return _("OpenAI · Codex");
    case UsageProvider::claude:
      return _("Anthropic · Claude");
  }
  std::abort();
}

std::string shortName(UsageProvider provider) {
  switch (provider) {
    case UsageProvider::codex:
      return _("Codex");
    case UsageProvider::claude:
      return _("Claude");
  }
  std::abort();
}

Url usagePageURL(UsageProvider provider) {
  switch (provider) {
    case UsageProvider::codex:
      return constantUrl("https://chatgpt.com/codex/settings/usage");
    case UsageProvider::claude:
      return constantUrl("https://claude.ai/settings/usage");
  }
  std::abort();
}

template <>
std::optional<UsageProvider> fromRaw<UsageProvider>(std::string_view raw) {
  return valueNamed(usageProviderWords, raw);
}

}  // namespace korvo
