#include "sampling/checked_arithmetic.hpp"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace korvo::checked {
namespace {

[[noreturn]] void overflow(const char* operation, std::uint64_t a, std::uint64_t b) {
  std::fprintf(stderr, "korvo: arithmetic overflow in %s of %" PRIu64 " and %" PRIu64 "\n",
               operation, a, b);
  std::abort();
}

}  // namespace

std::uint64_t add(std::uint64_t a, std::uint64_t b) {
  std::uint64_t result = 0;
  if (__builtin_add_overflow(a, b, &result)) overflow("addition", a, b);
  return result;
}

std::uint64_t sub(std::uint64_t a, std::uint64_t b) {
  std::uint64_t result = 0;
  if (__builtin_sub_overflow(a, b, &result)) overflow("subtraction", a, b);
  return result;
}

std::uint64_t mul(std::uint64_t a, std::uint64_t b) {
  std::uint64_t result = 0;
  if (__builtin_mul_overflow(a, b, &result)) overflow("multiplication", a, b);
  return result;
}

}  // namespace korvo::checked
