#pragma once
// The fields of the integers in code tables, as CodeTables.hpp describes them.

#include <cstddef>
#include <cstdint>

#include "compressedpaths/coding/CodeTables.hpp"

namespace compressedpaths::code_tables {

inline constexpr std::size_t kPageCount = 256;
inline constexpr std::size_t kPageSize = 256;
inline constexpr std::uint16_t kNoPage = 0xFFFF;

inline constexpr unsigned kWordLengthShift = 58;
inline constexpr std::uint64_t kWordBits = (std::uint64_t{1} << kWordLengthShift) - 1;
// With the seven bits that a partial byte may hold already, fewer than 64: all can be shifted out.
inline constexpr unsigned kMaxWordLength = 56;
inline constexpr std::uint64_t kLongWord = std::uint64_t{62} << kWordLengthShift;
inline constexpr std::uint64_t kNoWord = std::uint64_t{63} << kWordLengthShift;

inline constexpr std::size_t kStepCount = std::size_t{1} << CodeTables::kLookUpBits;
inline constexpr unsigned kMaxStepCharacters = 4;
inline constexpr unsigned kNoEnd = 15;
inline constexpr std::uint64_t kOtherStep = std::uint64_t{1} << 63;
inline constexpr std::uint64_t kWalkStep = std::uint64_t{1} << 8;
inline constexpr std::uint32_t kLeaf = 0x8000'0000;

constexpr unsigned lengthOf(std::uint64_t word) noexcept {
    return static_cast<unsigned>(word >> kWordLengthShift);
}

}  // namespace compressedpaths::code_tables
