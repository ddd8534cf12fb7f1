#pragma once

#include <functional>
#include <type_traits>
#include <utility>

#include "runtime/text.h"

namespace zev {

/// A line for each step of the component, for whoever debugs with it. Without a reader
/// nothing is put together and nothing printed.
class Trace {
 public:
  void setReader(std::function<void(const Text&)> reader) { reader_ = std::move(reader); }

  /// One line made of texts and numbers.
  template <typename... Pieces>
  void line(const Pieces&... pieces) const {
    if (reader_) reader_(join(text(pieces)...));
  }

 private:
  static TextView text(TextView piece) { return piece; }
  template <typename Number>
  requires std::is_integral_v<Number>
  static Text text(Number piece) { return decimal(static_cast<std::int64_t>(piece)); }

  std::function<void(const Text&)> reader_;
};

}  // namespace zev
