#pragma once

#include <cstdint>
#include <iterator>
#include <list>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/error.h"
#include "runtime/text.h"

namespace zev {

/// The language's keyed collection: items in the order of their adding, each under a key of its
/// own. Keys are compared as they are written.
template <typename T>
class Collection {
 public:
  /// Error 457 for a key that is taken.
  void Add(T item, const Text& key) {
    if (places_.count(key) != 0) throw RuntimeError(ErrorNumber::CollectionKeyAlreadyUsed);
    items_.push_back(std::move(item));
    places_.emplace(key, std::prev(items_.end()));
  }
  /// Error 5 for a key that is not there, here and below.
  T& Item(const Text& key) { return *place(key); }
  void Remove(const Text& key) {
    items_.erase(place(key));
    places_.erase(key);
  }
  bool contains(const Text& key) const { return places_.count(key) != 0; }
  std::size_t Count() const { return items_.size(); }

  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  using Items = std::list<T>;

  typename Items::iterator place(const Text& key) const {
    const auto found = places_.find(key);
    if (found == places_.end()) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return found->second;
  }

  Items items_;
  std::unordered_map<Text, typename Items::iterator> places_;
};

/// An array of `size` bytes, all 0. Error 9 for less than one, error 7 for more than can be had.
inline std::vector<std::uint8_t> byteArray(std::int32_t size) {
  if (size < 1) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  try {
    return std::vector<std::uint8_t>(static_cast<std::size_t>(size));
  } catch (const std::bad_alloc&) {
    throw RuntimeError(ErrorNumber::OutOfMemory);
  }
}

}  // namespace zev
