#include "digest/sha256.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace zev {
namespace {

void require(int result) {
  if (result != 1) throw std::runtime_error("the digest cannot be computed");
}

}  // namespace

struct Sha256::Context {
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> digest{EVP_MD_CTX_new(),
                                                                 &EVP_MD_CTX_free};
};

Sha256::Sha256() : context_(std::make_unique<Context>()) {
  require(EVP_DigestInit_ex(context_->digest.get(), EVP_sha256(), nullptr));
}

Sha256::~Sha256() = default;

void Sha256::add(std::span<const std::uint8_t> bytes) {
  require(EVP_DigestUpdate(context_->digest.get(), bytes.data(), bytes.size()));
}

std::string Sha256::hex() {
  constexpr char digits[] = "0123456789abcdef";
  std::uint8_t digest[EVP_MAX_MD_SIZE];
  unsigned size = 0;
  require(EVP_DigestFinal_ex(context_->digest.get(), digest, &size));
  std::string text;
  for (const std::uint8_t byte : std::span(digest, size)) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

std::string sha256Hex(std::span<const std::uint8_t> bytes) {
  Sha256 digest;
  digest.add(bytes);
  return digest.hex();
}

}  // namespace zev
