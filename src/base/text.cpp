#include "base/text.hpp"

#include <libintl.h>

namespace korvo {
namespace {

constexpr const char* textDomain = "korvo-widgets";

}  // namespace

std::string _(const char* literal) {
  return dgettext(textDomain, literal);
}

}  // namespace korvo
