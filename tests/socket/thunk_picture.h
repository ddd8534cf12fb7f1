#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/table.h"

namespace zev::socket_bench {

/// Values for the fields of the routing code by their names in thunk_fields.tsv.
using FieldValues = std::map<std::string, std::uintptr_t>;

/// The routing code as it has to lie in memory, from the tables of the test data.
class ThunkPicture {
 public:
  static constexpr std::size_t fieldSize = 4;
  static constexpr std::size_t guardJump = 12;
  static constexpr int anyByte = -1;

  struct Field {
    std::string value;
    bool relative;
    std::size_t offset;
  };

  ThunkPicture() {
    for (const test::Row& row : test::Table::read("socket/thunk_bytes.tsv")) readBytes(row);
    for (const test::Row& row : test::Table::read("socket/thunk_fields.tsv")) {
      fields_.push_back({row.word("value"), row.is("form", "relative"),
                         static_cast<std::size_t>(row.number("offset"))});
    }
  }

  std::size_t size() const { return bytes_.size(); }
  /// anyByte within a field.
  const std::vector<int>& bytes() const { return bytes_; }
  const std::vector<Field>& fields() const { return fields_; }

  /// The picture with its fields filled for a block that lies at `address`. A field without a value
  /// may hold anything.
  std::vector<int> filled(std::uintptr_t address, const FieldValues& values, bool guarded) const {
    std::vector<int> all = bytes_;
    if (guarded) all[guardJump] = all[guardJump + 1] = 0x90;
    for (const Field& field : fields_) {
      const auto value = values.find(field.value);
      if (value == values.end()) continue;
      const std::uintptr_t next = address + field.offset + fieldSize;
      const std::uintptr_t written = field.relative ? value->second - next : value->second;
      for (std::size_t i = 0; i < fieldSize; ++i) {
        all[field.offset + i] = static_cast<int>(written >> 8 * i & 0xFF);
      }
    }
    return all;
  }

  /// Offsets of the bytes that are not as the picture has them.
  static std::vector<std::size_t> differences(const std::vector<int>& picture,
                                              const std::uint8_t* block) {
    std::vector<std::size_t> offsets;
    for (std::size_t i = 0; i < picture.size(); ++i) {
      if (picture[i] != anyByte && picture[i] != block[i]) offsets.push_back(i);
    }
    return offsets;
  }

 private:
  void readBytes(const test::Row& row) {
    if (static_cast<std::size_t>(row.number("offset")) != bytes_.size()) {
      throw std::runtime_error(row.where() + ": not behind the row before");
    }
    std::istringstream pairs(row.quoted("bytes"));
    for (std::string pair; pairs >> pair;) {
      bytes_.push_back(pair == ".." ? anyByte : std::stoi(pair, nullptr, 16));
    }
  }

  std::vector<int> bytes_;
  std::vector<Field> fields_;
};

}  // namespace zev::socket_bench
