#include "simulated/instrumented_lz.h"

#include <cstdlib>

namespace zev::simulated {
namespace {

constexpr std::int32_t noHandle = -1;

}  // namespace

TextView InstrumentedLz::pathOf(std::int32_t handle) const {
  const auto found = paths_.find(handle);
  return found == paths_.end() ? TextView() : TextView(found->second);
}

std::int32_t InstrumentedLz::LZOpenFileA(TextView path, OFSTRUCT& record, std::int32_t style) {
  const std::int32_t handle = instrumentation_.perform(
      {"LZOpenFileA"}, {path, style}, [&] { return lz_.LZOpenFileA(path, record, style); },
      [&](std::int32_t code) {
        record.nErrCode = static_cast<std::int16_t>(code);
        return noHandle;
      },
      [&] {
        record.nErrCode = 0;
        return std::int32_t{0};
      });
  if (handle >= 0) paths_[handle] = path;
  return handle;
}

std::int32_t InstrumentedLz::LZCopy(std::int32_t source, std::int32_t destination) {
  return instrumentation_.perform(
      {"LZCopy", {}, pathOf(source)}, {source, destination},
      [&] { return lz_.LZCopy(source, destination); },
      [](std::int32_t code) { return -std::abs(code); }, [] { return std::int32_t{0}; });
}

void InstrumentedLz::LZClose(std::int32_t handle) {
  instrumentation_.perform(
      {"LZClose", {}, pathOf(handle)}, {handle}, [&] { lz_.LZClose(handle); }, [](std::int32_t) {},
      [] {});
  paths_.erase(handle);
}

}  // namespace zev::simulated
