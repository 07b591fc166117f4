#pragma once

#include <cstdint>

// Arithmetic on kernel figures. An overflow means a figure the kernel cannot have produced, so it
// stops the program with a message naming the operation instead of showing a wrapped number.
namespace korvo::checked {

std::uint64_t add(std::uint64_t a, std::uint64_t b);
std::uint64_t sub(std::uint64_t a, std::uint64_t b);
std::uint64_t mul(std::uint64_t a, std::uint64_t b);

}  // namespace korvo::checked
