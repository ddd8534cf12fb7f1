#include "sample/archive.h"

#include <zip.h>

#include <stdexcept>

namespace zev::sample {
namespace {

constexpr zip_uint16_t kDate = (2012 - 1980) << 9 | 3 << 5 | 14;  // 14 March 2012
constexpr zip_uint16_t kTime = 12 << 11;                          // noon

/// A source that the caller keeps a share of.
class KeptSource {
 public:
  KeptSource() : source_(zip_source_buffer_create(nullptr, 0, 0, nullptr)) {
    if (source_ == nullptr) throw std::bad_alloc();
    zip_source_keep(source_);
  }
  ~KeptSource() { zip_source_free(source_); }
  KeptSource(const KeptSource&) = delete;
  KeptSource& operator=(const KeptSource&) = delete;

  zip_source_t* get() const { return source_; }

  Bytes read() const {
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_source_stat(source_, &stat) != 0 || zip_source_open(source_) != 0) {
      throw std::runtime_error("archive not readable");
    }
    Bytes out(stat.size);
    const bool whole =
        zip_source_read(source_, out.data(), out.size()) == static_cast<zip_int64_t>(out.size());
    zip_source_close(source_);
    if (!whole) throw std::runtime_error("archive not readable");
    return out;
  }

 private:
  zip_source_t* source_;
};

void addEntry(zip_t* archive, const Entry& entry) {
  zip_source_t* source = zip_source_buffer(archive, entry.bytes.data(), entry.bytes.size(), 0);
  const zip_int64_t index = zip_file_add(archive, entry.name.c_str(), source, ZIP_FL_ENC_UTF_8);
  if (index < 0) {
    zip_source_free(source);
    throw std::runtime_error("archive entry not added");
  }
  zip_file_set_dostime(archive, static_cast<zip_uint64_t>(index), kTime, kDate, 0);
}

}  // namespace

Bytes makeArchive(const std::vector<Entry>& entries, const Bytes& comment) {
  const KeptSource target;
  zip_t* archive = zip_open_from_source(target.get(), ZIP_TRUNCATE, nullptr);
  if (archive == nullptr) throw std::runtime_error("archive not opened");
  try {
    for (const Entry& entry : entries) addEntry(archive, entry);
    zip_set_archive_comment(archive, reinterpret_cast<const char*>(comment.data()),
                            static_cast<zip_uint16_t>(comment.size()));
    if (zip_close(archive) != 0) throw std::runtime_error("archive not written");
  } catch (...) {
    zip_discard(archive);
    throw;
  }
  return target.read();
}

}  // namespace zev::sample
