#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/codex_state_file.hpp"

// Any codex.json reads as some record, never a crash; a record written and read again is the same
// record, and writing over any file keeps it a file korvo reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  namespace state = korvo::codex_state_file;
  const state::Record once = state::read(state::document("", state::read(bytes)));
  if (state::read(state::document("", once)) != once) std::abort();
  if (state::read(state::document(bytes, once)) != once) std::abort();
  return 0;
}
