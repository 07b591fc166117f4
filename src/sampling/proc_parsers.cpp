#include "sampling/proc_parsers.hpp"

#include <charconv>

namespace korvo {
namespace {

constexpr std::string_view spaces = " \t";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(spaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

// Splits off the next line (without its newline) from `text`.
std::string_view nextLine(std::string_view& text) {
  const auto end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

// Splits off the next whitespace-separated field from `text`.
std::string_view nextField(std::string_view& text) {
  const auto start = text.find_first_not_of(spaces);
  if (start == std::string_view::npos) {
    text = {};
    return {};
  }
  text.remove_prefix(start);
  const auto end = text.find_first_of(spaces);
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end);
  return field;
}

// The whole of `text` as an unsigned decimal number.
std::optional<std::uint64_t> number(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

// "   12345 kB" to bytes; no value unless it is a number with the kB unit that fits in bytes.
std::optional<std::uint64_t> kilobytes(std::string_view figure) {
  figure = trimmed(figure);
  if (!figure.ends_with("kB")) return std::nullopt;
  figure.remove_suffix(2);
  const auto value = number(trimmed(figure));
  std::uint64_t bytes = 0;
  if (!value || __builtin_mul_overflow(*value, std::uint64_t{1024}, &bytes)) return std::nullopt;
  return bytes;
}

bool addInto(std::uint64_t& sum, std::uint64_t value) {
  return !__builtin_add_overflow(sum, value, &sum);
}

}  // namespace

std::optional<Meminfo> parse_meminfo(std::string_view text) {
  enum Line {
    memTotal,
    memFree,
    active,
    inactive,
    activeFile,
    inactiveFile,
    unevictable,
    kReclaimable,
    sReclaimable,
    zswap,
    swapTotal,
    swapFree,
    lineCount
  };
  constexpr std::array<std::string_view, lineCount> names{
      "MemTotal",    "MemFree",      "Active",       "Inactive", "Active(file)", "Inactive(file)",
      "Unevictable", "KReclaimable", "SReclaimable", "Zswap",    "SwapTotal",    "SwapFree"};
  std::array<std::optional<std::uint64_t>, lineCount> figures;
  std::array<bool, lineCount> seen{};

  while (!text.empty()) {
    const std::string_view line = nextLine(text);
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view name = line.substr(0, colon);
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (name != names[i]) continue;
      if (seen[i]) break;
      seen[i] = true;
      figures[i] = kilobytes(line.substr(colon + 1));
      // A garbled swap line only costs the swap figure; every other figure feeds the page counts.
      if (!figures[i] && i != swapTotal && i != swapFree) return std::nullopt;
      break;
    }
  }
  if (!figures[swapTotal] || !figures[swapFree]) figures[swapTotal] = figures[swapFree] = {};

  for (const Line required :
       {memTotal, memFree, active, inactive, activeFile, inactiveFile, unevictable}) {
    if (!figures[required]) return std::nullopt;
  }
  const auto reclaimable = figures[kReclaimable] ? figures[kReclaimable] : figures[sReclaimable];
  if (!reclaimable) return std::nullopt;

  return Meminfo{*figures[memTotal],    *figures[memFree],    *figures[active],
                 *figures[inactive],    *figures[activeFile], *figures[inactiveFile],
                 *figures[unevictable], *reclaimable,         figures[zswap].value_or(0),
                 figures[swapTotal],    figures[swapFree]};
}

std::optional<std::uint64_t> parse_mem_total(std::string_view text) {
  while (!text.empty()) {
    const std::string_view line = nextLine(text);
    if (line.starts_with("MemTotal:")) return kilobytes(line.substr(9));
  }
  return std::nullopt;
}

std::int32_t parse_pressure_level(std::string_view text) {
  std::optional<double> some;
  std::optional<double> full;
  while (!text.empty()) {
    std::string_view line = nextLine(text);
    const std::string_view kind = nextField(line);
    const std::string_view average = nextField(line);
    if (kind != "some" && kind != "full") continue;
    if (!average.starts_with("avg10=")) return 0;
    const std::string_view digits = average.substr(6);
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value,
                                              std::chars_format::fixed);
    if (error != std::errc() || end != digits.data() + digits.size() || digits.empty()) return 0;
    (kind == "some" ? some : full) = value;
  }
  if (!some || !full) return 0;
  if (*full >= 10) return 4;
  if (*some >= 10) return 2;
  return 1;
}

std::optional<std::uint64_t> parse_zram_mm_stat(std::string_view text) {
  nextField(text);
  nextField(text);
  return number(nextField(text));
}

std::optional<CpuTicks> parse_cpu_ticks(std::string_view text) {
  std::string_view line = nextLine(text);
  if (nextField(line) != "cpu") return std::nullopt;
  std::array<std::uint64_t, 4> fields{};
  for (auto& field : fields) {
    const auto value = number(nextField(line));
    if (!value) return std::nullopt;
    field = *value;
  }
  const auto [user, nice, system, idle] = fields;
  return CpuTicks{user, system, idle, nice};
}

std::optional<PageCounts> page_counts(const Meminfo& meminfo, std::uint64_t zramBytes,
                                      std::uint64_t pageSize) {
  if (pageSize == 0) return std::nullopt;
  const std::uint64_t reclaimable = meminfo.reclaimable;
  std::uint64_t pool = meminfo.zswap;
  std::uint64_t inactive = meminfo.inactive;
  std::uint64_t external = meminfo.activeFile;
  std::uint64_t accounted = meminfo.memFree;
  const bool fits = addInto(pool, zramBytes) && addInto(inactive, reclaimable) &&
                    addInto(external, meminfo.inactiveFile) && addInto(accounted, meminfo.active) &&
                    addInto(accounted, meminfo.inactive) &&
                    addInto(accounted, meminfo.unevictable) && addInto(accounted, reclaimable) &&
                    addInto(accounted, pool);
  if (!fits) return std::nullopt;

  // Kernel memory no LRU list or cache accounts for (page tables, stacks, unreclaimable slab…).
  const std::uint64_t unaccounted = meminfo.memTotal > accounted ? meminfo.memTotal - accounted : 0;
  std::uint64_t wired = meminfo.unevictable;
  if (!addInto(wired, unaccounted)) return std::nullopt;

  return PageCounts{meminfo.active / pageSize, inactive / pageSize,    wired / pageSize,
                    pool / pageSize,           reclaimable / pageSize, external / pageSize};
}

std::optional<std::uint64_t> swap_used(const Meminfo& meminfo) {
  if (!meminfo.swapTotal || !meminfo.swapFree || *meminfo.swapFree > *meminfo.swapTotal) {
    return std::nullopt;
  }
  return *meminfo.swapTotal - *meminfo.swapFree;
}

}  // namespace korvo
