#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zev {

/// The routing code: 32-bit x86, as pairs of hexadecimal digits, with a marker of eight characters
/// (xxxxx01x to xxxxx0Bx) for each field that `Thunk` fills in later.
///
/// The block as it is laid out. Numbers in front are bytes from its start, numbers in brackets are
/// the markers, and the names are those of `thunk_field`:
///
///     0  entry     doubles the return address, saves ebp, edi, ebx, ecx and edx
///    12            jmp 28                  guardJump: skips the guard, unless overwritten
///    14  guard     call [01]               ebMode; 2: call 82, then leave; 0: to 65
///    28  switch    uMsg 2048: to 105; 2049: to 136
///    45            call 82                 every other message
///    50  leave     restores the registers, `ret 20`
///    58            call 82, to 50          the guard's way to forward
///    65  restore   push [02]               restoreProcedure
///                  call [03]               setWindowLong, then leave
///    82  forward   pushes lParam, wParam, uMsg, hwnd
///    94            push [04]               forwardProcedure
///                  call [05]               callWindowProc; returns to whoever called 82
///   105  look-up   ebx = [06]              resolveCount
///                  edi = [07]              resolveHandles: searched for wParam; a miss: leave
///                  ebx = [08][index]       resolveObjects; a hit: to 165
///   136  socket    ebx = [09]              socketCount
///                  edi = [0A]              socketHandles: searched for wParam; a miss: leave
///                  ebx = [0B][index]       socketObjects
///   165  enter     puts the instance into the spare word, restores the registers,
///                  jumps to the eighth method of the table that the instance begins with
///
/// Why the return address is doubled: a window procedure has four arguments, a method has the
/// instance in front of them. The second copy of the address is the word that becomes the instance,
/// so that the method can be jumped to and returns straight to the caller of the window procedure:
///
///     at entry                 after entry                   in the method
///     return address           return address                return address
///     hwnd                     (a second copy of it)         instance
///     uMsg                     hwnd                          hwnd
///     wParam                   uMsg                          uMsg
///     lParam                   wParam                        wParam
///                              lParam                        lParam
///
/// This is also why leaving takes 20 bytes off the stack and not 16. After a miss eax still holds
/// wParam, which so becomes the result of the message.
inline constexpr std::string_view thunkCode =
    "5850505589E55753515231C0EB0EE8xxxxx01x83F802742285C074258B45103D0008000074433D01080000745BE820"
    "0000005A595B5FC9C21400E813000000EBF168xxxxx02x6AFCFF750CE8xxxxx03xEBE0FF7518FF7514FF7510FF750C"
    "68xxxxx04xE8xxxxx05xC3BBxxxxx06x8B4514BFxxxxx07x89D9F2AF75B629CB4B8B1C9Dxxxxx08xEB1DBBxxxxx09x"
    "8B4514BFxxxxx0Ax89D9F2AF759729CB4B8B1C9Dxxxxx0Bx895D088B1B8B5B1C89D85A595B5FC9FFE0";

/// Bytes of the code.
inline constexpr std::size_t thunkSize = 182;
static_assert(thunkCode.size() == 2 * thunkSize);

/// The bytes of the code. What the pairs of a marker come out as does not matter: each marker is
/// overwritten before the processor gets there, or lies in the guard, which is jumped over.
std::array<std::uint8_t, thunkSize> thunkBytes();

/// Where the fields lie, in bytes from the start of the block. The relative ones hold the
/// displacement of a near call, counted from the end of the field; the others hold a value. All
/// have 32 bits, except `guardJump`. The handles and objects are addresses of the first cell of a
/// column.
namespace thunk_field {
inline constexpr std::size_t guardJump =
    12;                                    ///< two bytes: a jump, or two `nop` to turn the guard on
inline constexpr std::size_t ebMode = 15;  ///< relative
inline constexpr std::size_t restoreProcedure = 66;  ///< what the guard puts back
inline constexpr std::size_t setWindowLong = 76;     ///< relative
inline constexpr std::size_t forwardProcedure = 95;  ///< where other messages go
inline constexpr std::size_t callWindowProc = 100;   ///< relative
inline constexpr std::size_t resolveCount = 106;
inline constexpr std::size_t resolveHandles = 114;
inline constexpr std::size_t resolveObjects = 130;
inline constexpr std::size_t socketCount = 137;
inline constexpr std::size_t socketHandles = 145;
inline constexpr std::size_t socketObjects = 161;
}  // namespace thunk_field

}  // namespace zev
