#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "sample/sample_product.h"

namespace zev {

using Bytes = std::vector<std::uint8_t>;
using Cells = std::vector<std::string>;

/// The rows of a table of tab-separated cells, behind the line of column names.
inline std::vector<Cells> readTable(const std::string& name) {
  std::ifstream file(std::string(ZEV_TEST_DATA) + "/" + name);
  std::vector<Cells> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    Cells cells;
    std::istringstream rest(line);
    for (std::string cell; std::getline(rest, cell, '\t');) {
      std::erase(cell, '"');
      cells.push_back(cell);
    }
    rows.push_back(cells);
  }
  if (!rows.empty()) rows.erase(rows.begin());
  return rows;
}

inline std::vector<SampleRow> manifestRows() {
  std::map<std::string, std::string> installedNames;
  for (const Cells& cells : readTable("manifest_targets.tsv")) {
    installedNames[cells.at(0)] = cells.at(1);
  }
  std::vector<SampleRow> rows;
  for (const Cells& cells : readTable("manifest_packing.tsv")) {
    if (cells.at(3) == "-") continue;
    rows.push_back({cells.at(2), installedNames.at(cells.at(3)), std::stoul(cells.at(1))});
  }
  return rows;
}

/// The product of the manifest, and its files as they lie beside the package.
class SampleProductTest : public testing::Test {
 protected:
  static const SampleProduct& product() {
    static const SampleProduct made(manifestRows());
    return made;
  }

  static const SampleFile& file(std::size_t index) {
    static std::map<std::size_t, SampleFile> read;
    const auto found = read.find(index);
    return found != read.end() ? found->second : read.emplace(index, readFile(index)).first->second;
  }

  static std::vector<const SampleFile*> filesEnding(std::string_view ending) {
    std::vector<const SampleFile*> found;
    for (std::size_t i = 0; i < product().count(); ++i) {
      if (product().row(i).installedName.ends_with(ending)) found.push_back(&file(i));
    }
    return found;
  }
  static const Bytes& bytesOf(std::string_view name) { return filesEnding(name).at(0)->bytes; }

 private:
  static SampleFile readFile(std::size_t index) {
    const SampleRow& row = product().row(index);
    const std::string path = std::string(ZEV_SAMPLE) + "/" + row.installedName;
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("no file of the sample product: " + path);
    Bytes bytes(static_cast<std::size_t>(std::filesystem::file_size(path)));
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return {row.packedName, row.installedName, std::move(bytes), {}};
  }
};

}  // namespace zev
