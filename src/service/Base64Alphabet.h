#pragma once
// The standard Base64 alphabet and its reverse table, shared by the strict and the tolerant
// coders.

#include <array>
#include <cstddef>
#include <cstdint>

namespace Base64Alphabet {

inline constexpr char kCharacters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Maps each alphabet character to its value 0-63 and every other byte to `other`.
template <std::size_t Size>
constexpr std::array<uint8_t, Size> decodeTable(uint8_t other)
{
    std::array<uint8_t, Size> table{};
    table.fill(other);
    for (uint8_t i = 0; i < 64; ++i)
        table[static_cast<uint8_t>(kCharacters[i])] = i;
    return table;
}

} // namespace Base64Alphabet
