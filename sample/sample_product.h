#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sample/fit.h"

namespace zev {

/// One member of the package: its name there, the name of the file that it becomes, and the length
/// that it must have in the package, in bytes.
struct SampleRow {
  std::string packedName;
  std::string installedName;
  std::size_t packedSize = 0;
};

/// One file of the sample product as it is installed.
struct SampleFile {
  std::string packedName;
  std::string installedName;
  std::vector<std::uint8_t> bytes;
  sample::Fit fit;
};

/// The files of a product whose package fits the install manifest byte for byte: real sounds,
/// programs, archives, a video, a help file, each made so that its packed form has exactly the
/// length that the manifest gives. The same rows give the same files in every run.
///
/// An object is immutable; its files can be made by several threads at once.
class SampleProduct {
 public:
  /// Whether a file is first tried with the fit that it is known to have, which is faster. Without,
  /// the same fit is found.
  enum class Guessing { No, Yes };

  explicit SampleProduct(std::vector<SampleRow> rows, Guessing guessing = Guessing::Yes);

  std::size_t count() const { return rows_.size(); }
  const SampleRow& row(std::size_t index) const { return rows_.at(index); }

  /// Makes the file of the row `index`; lz::compress(bytes, nameByte(index)) then has the length of
  /// the row. The longest files take seconds.
  /// Throws std::invalid_argument for an installed name that is not of the product,
  /// std::length_error if the file cannot be made with that length, std::runtime_error if an
  /// encoder fails.
  SampleFile make(std::size_t index) const;

  /// The character of the installed name in whose place the packed name has its underscore.
  std::uint8_t nameByte(std::size_t index) const;

 private:
  std::vector<SampleRow> rows_;
  Guessing guessing_;
};

}  // namespace zev
