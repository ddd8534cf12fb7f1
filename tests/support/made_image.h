#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zev::test {

using Bytes = std::vector<std::uint8_t>;

/// A program's image made for a test.
struct MadeImage {
  std::size_t size = 3583;         ///< bytes, all of them its headers and its one section
  bool wide = false;               ///< one for 64 bits
  std::uint32_t directories = 16;  ///< how many the header says that it has
  std::uint32_t certificates = 0;  ///< offset of the certificate table that it names
  std::uint32_t certificatesSize = 0;
};

/// Its bytes. What is no header is the same noise for every image.
Bytes madeImage(const MadeImage& image = {});

/// Names a table of certificates in the header of the image that a file begins with.
void nameCertificates(Bytes& file, std::size_t offset, std::size_t size);

/// What signing makes of a file that begins with such an image: zeros up to a multiple of eight
/// bytes and a table of certificates of `size` bytes, which the header names.
Bytes signedFile(Bytes file, std::size_t size = 1472);

}  // namespace zev::test
