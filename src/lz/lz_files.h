#pragma once

#include <cstdint>
#include <map>

#include "platform/file_system.h"
#include "platform/lz_services.h"

namespace zev::lz {

/// The services that expand files, over the file calls of a system: one implementation for every
/// binding. Its handles belong to the object, which closes what is left open.
class LzFiles final : public LzServices {
 public:
  /// Borrows the file system, which outlives this.
  explicit LzFiles(FileSystem& files) : files_(files) {}
  ~LzFiles() override;
  LzFiles(const LzFiles&) = delete;
  LzFiles& operator=(const LzFiles&) = delete;

  std::int32_t LZOpenFileA(TextView path, OFSTRUCT& record, std::int32_t style) override;
  std::int32_t LZCopy(std::int32_t source, std::int32_t destination) override;
  void LZClose(std::int32_t handle) override;

 private:
  struct OpenFile {
    FileHandle handle = 0;
    bool created = false;
  };
  const OpenFile* find(std::int32_t handle, bool created) const;

  FileSystem& files_;
  std::map<std::int32_t, OpenFile> open_;
  std::int32_t nextHandle_ = 0;
};

}  // namespace zev::lz
