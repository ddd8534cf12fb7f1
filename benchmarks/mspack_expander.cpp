#include "mspack_expander.h"

#include <mspack.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zev::benchmarks {
namespace {

// The library sees this as its mspack_file. One of the two is null.
struct MemoryFile {
  const Bytes* source;
  Bytes* target;
  std::size_t at;
};

MemoryFile* memoryFile(mspack_file* file) { return reinterpret_cast<MemoryFile*>(file); }

void closeFile(mspack_file* file) { delete memoryFile(file); }

int readFile(mspack_file* file, void* buffer, int count) {
  MemoryFile& from = *memoryFile(file);
  const std::size_t there = from.source->size() - from.at;
  const std::size_t size = std::min(static_cast<std::size_t>(count), there);
  std::memcpy(buffer, from.source->data() + from.at, size);
  from.at += size;
  return static_cast<int>(size);
}

// The target has its full size beforehand, so that a write costs no more than its copy.
int writeFile(mspack_file* file, void* buffer, int count) {
  MemoryFile& to = *memoryFile(file);
  const std::size_t size = static_cast<std::size_t>(count);
  if (size > to.target->size() - to.at) return -1;
  std::memcpy(to.target->data() + to.at, buffer, size);
  to.at += size;
  return count;
}

int seekFile(mspack_file* file, off_t offset, int mode) {
  MemoryFile& of = *memoryFile(file);
  const std::size_t size = of.source != nullptr ? of.source->size() : of.target->size();
  std::size_t base = 0;
  if (mode == MSPACK_SYS_SEEK_CUR) base = of.at;
  if (mode == MSPACK_SYS_SEEK_END) base = size;
  of.at = base + static_cast<std::size_t>(offset);
  return of.at <= size ? 0 : -1;
}

off_t tellFile(mspack_file* file) { return static_cast<off_t>(memoryFile(file)->at); }

void ignoreMessage(mspack_file*, const char*, ...) {}

void* allocate(mspack_system*, std::size_t size) { return std::malloc(size); }

void copy(void* from, void* to, std::size_t size) { std::memcpy(to, from, size); }

}  // namespace

struct MspackExpander::Memory {
  mspack_system system{};  // first, since the library hands its address back
  const Bytes* source = nullptr;
  Bytes* target = nullptr;
  msszdd_decompressor* decompressor = nullptr;

  static mspack_file* openFile(mspack_system* self, const char*, int mode) {
    auto* const memory = reinterpret_cast<Memory*>(self);
    const bool reads = mode == MSPACK_SYS_OPEN_READ;
    auto* const file =
        new MemoryFile{reads ? memory->source : nullptr, reads ? nullptr : memory->target, 0};
    return reinterpret_cast<mspack_file*>(file);
  }
};

MspackExpander::MspackExpander() : memory_(std::make_unique<Memory>()) {
  memory_->system = {Memory::openFile, closeFile, readFile,  writeFile, seekFile, tellFile,
                     ignoreMessage,    allocate,  std::free, copy,      nullptr};
  memory_->decompressor = mspack_create_szdd_decompressor(&memory_->system);
}

MspackExpander::~MspackExpander() { mspack_destroy_szdd_decompressor(memory_->decompressor); }

bool MspackExpander::expand(const Bytes& packed, Bytes& expanded) {
  expanded.resize(declaredLength(packed));
  memory_->source = &packed;
  memory_->target = &expanded;
  return memory_->decompressor->decompress(memory_->decompressor, "source", "target") ==
         MSPACK_ERR_OK;
}

}  // namespace zev::benchmarks
