#pragma once

#include <string>
#include <string_view>

#include "base/words.hpp"
#include "shared/raw_value.hpp"
#include "shared/url.hpp"

namespace korvo {

// An AI subscription whose usage the host application polls, in the order the widgets list them.
enum class UsageProvider { codex, claude };

// The serialised form: "codex", "claude" (also the provider's key in the shared file).
inline constexpr Words<UsageProvider, 2> usageProviderWords{{
    {"codex", UsageProvider::codex},
    {"claude", UsageProvider::claude},
}};

// The provider's serialised word.
std::string_view rawValue(UsageProvider provider);
// "OpenAI · Codex", "Anthropic · Claude".
std::string displayName(UsageProvider provider);
// "Codex", "Claude".
std::string shortName(UsageProvider provider);
// The provider's web page of usage settings (https).
Url usagePageURL(UsageProvider provider);

template <>
std::optional<UsageProvider> fromRaw<UsageProvider>(std::string_view raw);

template <>
constexpr auto allCases<UsageProvider>() {
  return valuesOf(usageProviderWords);
}

}  // namespace korvo
