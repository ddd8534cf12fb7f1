#include "programs/zevpack/member_check.h"

#include <algorithm>
#include <new>
#include <utility>

#include "lz/compressor.h"
#include "lz/expand.h"
#include "lz/group_expander.h"
#include "lz/memory_stream.h"
#include "lz/szdd_header.h"
#include "platform/lz_services.h"

namespace zev::packing {
namespace {

std::string troubleOf(std::int32_t result) {
  switch (result) {
    case lz_error::badSourceData:
      return "the data ends before the declared length";
    case lz_error::unknownMode:
      return "unknown compression mode";
    case lz_error::badValue:
      return "the declared length is beyond 2 GiB";
    case lz_error::writeFailure:
    case lz_error::outOfMemory:
      return "there is not enough memory to expand it";
    default:
      return "cannot be expanded (" + std::to_string(result) + ")";
  }
}

/// The declared length, as far as the data can come to it: a damaged header costs no memory.
std::size_t mostExpanded(std::span<const std::uint8_t> stored) {
  const std::uint64_t groups = stored.size() / lz::kGroupInput + 1;
  return std::min<std::uint64_t>({declaredLength(stored),
                                  std::max<std::uint64_t>(groups * lz::kGroupOutput, stored.size()),
                                  longestFile});
}

bool makeRoom(Bytes& bytes, std::size_t size) {
  try {
    bytes.reserve(size);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

std::string quoted(std::uint8_t character) { return {'\'', static_cast<char>(character), '\''}; }

}  // namespace

Expanded expandMember(std::span<const std::uint8_t> stored) {
  Bytes bytes;
  if (!makeRoom(bytes, mostExpanded(stored))) return {{}, troubleOf(lz_error::outOfMemory)};
  lz::MemorySource source(stored);
  lz::MemorySink sink(bytes);
  const std::int32_t result = lz::expand(source, sink);
  if (result < 0) return {{}, troubleOf(result)};
  return {std::move(bytes), {}};
}

Bytes compressed(const std::filesystem::path& plain, std::uint8_t nameByte) {
  const Bytes bytes = readFile(plain);
  try {
    Bytes packed = lz::compress(bytes, nameByte);
    if (packed.size() > longestFile) {
      throw ToolError(plain.string() + " compresses to more than 2 GiB");
    }
    return packed;
  } catch (const std::bad_alloc&) {
    throw ToolError(plain.string() + ": there is not enough memory to compress it");
  }
}

bool isPacked(std::span<const std::uint8_t> stored) {
  return stored.size() >= lz::kHeaderSize && lz::hasMagic(stored);
}

std::size_t declaredLength(std::span<const std::uint8_t> stored) {
  if (!isPacked(stored)) return stored.size();
  return lz::parseHeader(stored.first<lz::kHeaderSize>()).expandedLength;
}

std::string checkMember(std::span<const std::uint8_t> stored, std::uint8_t nameByte, bool plainOk) {
  if (!lz::hasMagic(stored)) return plainOk ? "" : "no header of a packed file";
  if (!isPacked(stored)) return "the header is cut short";
  const lz::SzddHeader header = lz::parseHeader(stored.first<lz::kHeaderSize>());
  if (header.nameByte != 0 && header.nameByte != nameByte) {
    return "the header names the character " + quoted(header.nameByte) + " instead of " +
           quoted(nameByte);
  }
  return expandMember(stored).trouble;
}

}  // namespace zev::packing
