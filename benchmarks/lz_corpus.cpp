#include "lz_corpus.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zev::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kHeaderSize = 14;
constexpr std::size_t kLengthOffset = 10;

struct Kind {
  const char* name;
  std::vector<const char*> folders;
  std::vector<const char*> extensions;  // "" for files without one; none for all files
  std::size_t files;
  std::uintmax_t smallest;  // bytes of a file
  std::uintmax_t largest;
};

const std::vector<Kind> kKinds = {
    {"programs", {"/usr/bin", "/usr/lib/x86_64-linux-gnu"}, {"", ".so"}, 24, 50000, 400000},
    {"texts",
     {"/usr/share/common-licenses", "/usr/include", "/usr/share/perl", "/usr/share/doc"},
     {"", ".h", ".pm", ".txt", ".html", ".md"},
     40,
     20000,
     200000},
    {"media",
     {"/usr/share"},
     {".png", ".jpg", ".gif", ".bmp", ".ico", ".wav", ".ogg", ".ttf", ".svg"},
     40,
     10000,
     200000},
};

// Packed files beside their originals, in a folder that goes with the object.
class Packer {
 public:
  Packer() {
    std::string name = (fs::temp_directory_path() / "zev-corpus-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
  }
  ~Packer() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  Packer(const Packer&) = delete;
  Packer& operator=(const Packer&) = delete;

  // What mscompress makes of the file; nothing if it fails.
  Bytes pack(const fs::path& origin) const {
    const fs::path plain = folder_ / "member.bin";
    const fs::path packed = folder_ / "member.bin_";
    std::error_code ignored;
    fs::remove(packed, ignored);
    fs::copy_file(origin, plain, fs::copy_options::overwrite_existing, ignored);
    const std::string command = "mscompress '" + plain.string() + "' >/dev/null 2>&1";
    return std::system(command.c_str()) == 0 ? loadFile(packed.string()) : Bytes{};
  }

 private:
  fs::path folder_;
};

bool belongsTo(const Kind& kind, const fs::directory_entry& entry) {
  std::error_code ignored;
  if (entry.is_symlink(ignored) || !entry.is_regular_file(ignored)) return false;
  const std::uintmax_t size = entry.file_size(ignored);
  if (size < kind.smallest || size > kind.largest) return false;
  const std::string extension = entry.path().extension().string();
  return std::find(kind.extensions.begin(), kind.extensions.end(), extension) !=
         kind.extensions.end();
}

// The kind's files in an order that is the same at each run, spread over all there are.
std::vector<fs::path> filesOf(const Kind& kind) {
  std::vector<fs::path> found;
  std::error_code ignored;
  const auto options = fs::directory_options::skip_permission_denied;
  for (const char* folder : kind.folders) {
    for (fs::recursive_directory_iterator at(folder, options, ignored), end; at != end;
         at.increment(ignored)) {
      if (belongsTo(kind, *at)) found.push_back(at->path());
    }
  }
  std::sort(found.begin(), found.end());
  std::vector<fs::path> spread;
  const std::size_t stride = std::max<std::size_t>(1, found.size() / kind.files);
  for (std::size_t i = 0; i < found.size() && spread.size() < kind.files; i += stride) {
    spread.push_back(found[i]);
  }
  return spread;
}

void add(Corpus& corpus, Bytes packed) {
  if (packed.size() < kHeaderSize) return;
  corpus.expandedSize += declaredLength(packed);
  corpus.packed.push_back(std::move(packed));
}

bool isPacked(const Bytes& file) {
  constexpr std::uint8_t kMagic[] = {0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27, 0x33};
  return file.size() >= kHeaderSize &&
         std::equal(std::begin(kMagic), std::end(kMagic), file.begin());
}

}  // namespace

Bytes loadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

std::uint32_t declaredLength(const Bytes& packed) {
  std::uint32_t length = 0;
  for (std::size_t i = 4; i-- > 0;) length = length << 8 | packed.at(kLengthOffset + i);
  return length;
}

Corpus packedFilesIn(const std::string& name, const std::string& folder) {
  Corpus corpus{name, {}, 0};
  std::vector<fs::path> paths;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file()) paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const fs::path& path : paths) {
    Bytes file = loadFile(path.string());
    if (isPacked(file)) add(corpus, std::move(file));
  }
  return corpus;
}

std::vector<Corpus> packFilesOfThisMachine() {
  const Packer packer;
  std::vector<Corpus> corpora;
  for (const Kind& kind : kKinds) {
    Corpus corpus{kind.name, {}, 0};
    for (const fs::path& path : filesOf(kind)) add(corpus, packer.pack(path));
    if (!corpus.packed.empty()) corpora.push_back(std::move(corpus));
  }
  return corpora;
}

}  // namespace zev::benchmarks
