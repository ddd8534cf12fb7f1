#include "programs/zevpack/member_check.h"

#include <utility>

#include "lz/expand.h"
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
    default:
      return "cannot be expanded (" + std::to_string(result) + ")";
  }
}

std::string quoted(std::uint8_t character) { return {'\'', static_cast<char>(character), '\''}; }

}  // namespace

Expanded expandMember(std::span<const std::uint8_t> stored) {
  Bytes bytes;
  lz::MemorySource source(stored);
  lz::MemorySink sink(bytes);
  const std::int32_t result = lz::expand(source, sink);
  if (result < 0) return {{}, troubleOf(result)};
  return {std::move(bytes), {}};
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
