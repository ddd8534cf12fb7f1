#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "json/value.h"

namespace zev::json {

/// Why a text is no document, and where.
class ParseError : public std::runtime_error {
 public:
  ParseError(const std::string& reason, std::size_t offset)
      : std::runtime_error(reason), offset_(offset) {}
  /// The byte at which the parser stopped, from 0 on.
  std::size_t offset() const { return offset_; }

 private:
  std::size_t offset_;
};

/// An object that names a key twice: the later value would silently win.
class TwiceError : public std::runtime_error {
 public:
  TwiceError(const std::string& key, std::string path)
      : std::runtime_error("the key " + Value(key).dump() + " stands twice in one object"),
        path_(std::move(path)) {}
  /// Of the object, such as `$.script[3]`.
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// Reads a document. Bad syntax, and a number that no type can hold, are ParseErrors. It goes down
/// level by level, so whoever gets texts from strangers counts these first.
Value parse(std::string_view text);

/// The step from an object to a member, in a JSON path: `.click`, `["a b"]`.
std::string pathStep(const std::string& key);

}  // namespace zev::json
