// Writing files whole or not at all.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace commands {

/// Writes a file, or the standard output for "-". A file appears under its name when it is complete; until
/// then one of that name stays as it was. Empty, or "cannot write a/b.png: no such folder".
std::string writeFile(const std::string& path, std::span<const std::uint8_t> bytes);

/// Valid as long as the text.
inline std::span<const std::uint8_t> bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace commands
