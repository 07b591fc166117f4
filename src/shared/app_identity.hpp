#pragma once

#include <string_view>

// Constants shared by the application and its widgets.
namespace korvo::AppIdentity {

// The scheme of every deep link into the host application.
inline constexpr std::string_view urlScheme = "korvo";
// The prefix of every widget kind.
inline constexpr std::string_view applicationIdentifier = "com.tessmoor.Korvo";
// The application's descriptive title; no widget displays it.
inline constexpr std::string_view applicationTitle = "Korvo · Resources, AI usage & Keep Awake";

}  // namespace korvo::AppIdentity
