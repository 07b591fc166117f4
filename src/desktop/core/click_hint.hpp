#pragma once

#include <string>
#include <string_view>

namespace korvo::desktop {

// What a click on a card opens, in words for the card's tooltip: "Open AI usage in Korvo" for a
// korvo:// link, "Open" and the address for any other.
std::string clickHint(std::string_view url);

}  // namespace korvo::desktop
