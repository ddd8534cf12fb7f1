#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zev {

/// The routing code: 32-bit x86, as pairs of hexadecimal digits, with a marker of eight characters
/// for each field that is filled in later.
inline constexpr std::string_view thunkCode =
    "5850505589E55753515231C0EB0EE8xxxxx01x83F802742285C074258B45103D0008000074433D01080000745BE820"
    "0000005A595B5FC9C21400E813000000EBF168xxxxx02x6AFCFF750CE8xxxxx03xEBE0FF7518FF7514FF7510FF750C"
    "68xxxxx04xE8xxxxx05xC3BBxxxxx06x8B4514BFxxxxx07x89D9F2AF75B629CB4B8B1C9Dxxxxx08xEB1DBBxxxxx09x"
    "8B4514BFxxxxx0Ax89D9F2AF759729CB4B8B1C9Dxxxxx0Bx895D088B1B8B5B1C89D85A595B5FC9FFE0";

/// Bytes of the code.
inline constexpr std::size_t thunkSize = 182;
static_assert(thunkCode.size() == 2 * thunkSize);

/// The bytes of the code. What the pairs of a marker read as is of no account: every marker is
/// overwritten before its place is reached.
std::array<std::uint8_t, thunkSize> thunkBytes();

/// Where the fields lie, in bytes from the start of the block. The relative ones hold the
/// displacement of a near call, the others a value; all have 32 bits.
namespace thunk_field {
inline constexpr std::size_t guardJump = 12;         ///< two bytes, in force while they jump
inline constexpr std::size_t ebMode = 15;            ///< relative
inline constexpr std::size_t restoreProcedure = 66;  ///< for the guard's restore
inline constexpr std::size_t setWindowLong = 76;     ///< relative
inline constexpr std::size_t forwardProcedure = 95;  ///< for forwarding
inline constexpr std::size_t callWindowProc = 100;   ///< relative
inline constexpr std::size_t resolveCount = 106;
inline constexpr std::size_t resolveHandles = 114;
inline constexpr std::size_t resolveObjects = 130;
inline constexpr std::size_t socketCount = 137;
inline constexpr std::size_t socketHandles = 145;
inline constexpr std::size_t socketObjects = 161;
}  // namespace thunk_field

}  // namespace zev
