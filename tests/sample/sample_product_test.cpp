#include "sample/made_product.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <jpeglib.h>
#include <mspack.h>
#include <sndfile.h>
#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string_view>

#include "lz/encoder.h"

namespace zev {
namespace {

std::uint32_t numberAt(const Bytes& bytes, std::size_t offset, std::size_t length = 4) {
  std::uint32_t value = 0;
  for (std::size_t i = length; i-- > 0;) value = value << 8 | bytes.at(offset + i);
  return value;
}

std::string textAt(const Bytes& bytes, std::size_t offset, std::size_t length) {
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
  return {begin, begin + static_cast<std::ptrdiff_t>(length)};
}

/// The bytes as a file of the host's temporary folder, removed at the end.
class TemporaryFile {
 public:
  explicit TemporaryFile(const Bytes& bytes)
      : path_(std::filesystem::temp_directory_path() /
              ("zev_sample_" + std::to_string(::getpid()))) {
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  ~TemporaryFile() { std::filesystem::remove(path_); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

TEST_F(SampleProductTest, TakesTheNameByteFromWhereTheUnderscoreStands) {
  const SampleProduct names({{"MCD28m.wa_", "MCD28m.wav", 194},
                             {"Screen Recorder 6.exe.ma_", "Screen Recorder 6.exe.manifest", 667}});
  EXPECT_EQ(names.nameByte(0), 'v');
  EXPECT_EQ(names.nameByte(1), 'n');
}

TEST_F(SampleProductTest, RefusesAnUnknownName) {
  const SampleProduct stranger({{"readme.tx_", "readme.txt", 100}});
  EXPECT_THROW(stranger.make(0), std::invalid_argument);
}

TEST_F(SampleProductTest, RefusesASizeThatAFileCannotHave) {
  const SampleProduct tiny({{"ZEV6.ch_", "ZEV6.chm", 100}});
  EXPECT_THROW(tiny.make(0), std::length_error);
}

TEST_F(SampleProductTest, FitsOtherSizesThanTheManifests) {
  const SampleProduct other({{"Key118m.wa_", "Key118m.wav", 700},
                             {"zevgvas.dl_", "zevgvas.dll", 45001},
                             {"ZEVDELang.da_", "ZEVDELang.dat", 60007}});
  for (std::size_t i = 0; i < other.count(); ++i) {
    EXPECT_EQ(lz::compress(other.make(i).bytes, other.nameByte(i)).size(), other.row(i).packedSize);
  }
}

TEST_F(SampleProductTest, HoldsSoundsWhoseNamesTellTheirBits) {
  const auto sounds = filesEnding(".wav");
  EXPECT_EQ(sounds.size(), 26u);
  for (const SampleFile* sound : sounds) {
    const TemporaryFile onDisk(sound->bytes);
    SF_INFO info{};
    SNDFILE* decoder = sf_open(onDisk.path().c_str(), SFM_READ, &info);
    ASSERT_NE(decoder, nullptr) << sound->installedName;
    std::vector<short> samples(static_cast<std::size_t>(info.frames));
    EXPECT_EQ(sf_read_short(decoder, samples.data(), info.frames), info.frames);
    sf_close(decoder);
    EXPECT_EQ(info.channels, 1);
    const int loudest = std::abs(*std::ranges::max_element(
        samples, {}, [](short sample) { return std::abs(static_cast<int>(sample)); }));
    EXPECT_GT(loudest, 8000) << sound->installedName;
    const bool named = sound->installedName.ends_with("m.wav");
    const bool sixteen = sound->installedName.ends_with("16m.wav");
    if (named) {
      EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, sixteen ? SF_FORMAT_PCM_16 : SF_FORMAT_PCM_U8)
          << sound->installedName;
    }
  }
}

TEST_F(SampleProductTest, HoldsAVideoWhoseIndexFindsEveryFrame) {
  const Bytes& video = bytesOf("SampleAVI.avi");
  EXPECT_EQ(textAt(video, 0, 4) + textAt(video, 8, 4), "RIFFAVI ");
  EXPECT_EQ(numberAt(video, 4) + 8, video.size());
  std::size_t movi = 0;
  std::size_t index = 0;
  std::size_t at = 12;
  for (; at + 8 <= video.size(); at += 8 + numberAt(video, at + 4) + numberAt(video, at + 4) % 2) {
    if (textAt(video, at, 4) == "LIST" && textAt(video, at + 8, 4) == "movi") movi = at + 8;
    if (textAt(video, at, 4) == "idx1") index = at;
  }
  EXPECT_EQ(at, video.size());
  ASSERT_NE(movi, 0u);
  ASSERT_NE(index, 0u);
  const std::size_t frames = numberAt(video, index + 4) / 16;
  EXPECT_GE(frames, 20u);
  EXPECT_EQ(numberAt(video, 48), frames);
  for (std::size_t i = 0; i < frames; ++i) {
    const std::size_t frame = movi + numberAt(video, index + 8 + 16 * i + 8);
    EXPECT_EQ(textAt(video, frame, 4), "00db");
    EXPECT_EQ(numberAt(video, frame + 4), 320u * 240 * 3);
  }
}

TEST_F(SampleProductTest, HoldsFourCursorsOfDifferentColours) {
  const auto cursors = filesEnding(".cur");
  ASSERT_EQ(cursors.size(), 4u);
  std::set<std::string> distinct;
  for (const SampleFile* cursor : cursors) {
    const Bytes& bytes = cursor->bytes;
    distinct.insert(textAt(bytes, 0, bytes.size()));
    EXPECT_EQ(numberAt(bytes, 0), 0x20000u);  // a file of cursors
    EXPECT_EQ(numberAt(bytes, 4, 2), 1u);
    EXPECT_EQ(bytes.at(6), 32);
    EXPECT_EQ(bytes.at(7), 32);
    EXPECT_LT(numberAt(bytes, 10, 2), 32u);  // the hot spot lies in the picture
    EXPECT_LT(numberAt(bytes, 12, 2), 32u);
    EXPECT_EQ(numberAt(bytes, 14) + numberAt(bytes, 18), bytes.size());
    EXPECT_EQ(bytes.size(), 22u + 40 + 1024 + 1024 + 128);
  }
  EXPECT_EQ(distinct.size(), 4u);
}

TEST_F(SampleProductTest, HoldsAPictureThatTheJpegLibraryDecodes) {
  const Bytes& bytes = bytesOf("Qmark.jpg");
  jpeg_error_mgr errors{};
  jpeg_decompress_struct decoder{};
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, bytes.data(), bytes.size());
  ASSERT_EQ(jpeg_read_header(&decoder, TRUE), JPEG_HEADER_OK);
  jpeg_start_decompress(&decoder);
  std::vector<JSAMPLE> row(decoder.output_width *
                           static_cast<std::size_t>(decoder.output_components));
  std::set<JSAMPLE> shades;
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW rows[] = {row.data()};
    jpeg_read_scanlines(&decoder, rows, 1);
    shades.insert(row.begin(), row.end());
  }
  jpeg_finish_decompress(&decoder);
  EXPECT_EQ(decoder.output_width, 24u);
  EXPECT_GT(*shades.rbegin() - *shades.begin(), 100);  // ink on paper
  EXPECT_EQ(errors.num_warnings, 0);
  jpeg_destroy_decompress(&decoder);
}

TEST_F(SampleProductTest, HoldsAPaletteOf256Colours) {
  const Bytes& palette = bytesOf("ZEVDefault.pal");
  EXPECT_EQ(textAt(palette, 0, 4) + textAt(palette, 8, 8), "RIFFPAL data");
  EXPECT_EQ(numberAt(palette, 4) + 8, palette.size());
  EXPECT_EQ(numberAt(palette, 20, 2), 0x0300u);
  EXPECT_EQ(numberAt(palette, 22, 2), 256u);
  EXPECT_EQ(numberAt(palette, 24 + 255 * 4), 0x00ffffffu);
}

TEST_F(SampleProductTest, HoldsAHelpFileWhoseWelcomePageUnpacks) {
  const TemporaryFile onDisk(bytesOf("ZEV6.chm"));
  const std::string path = onDisk.path();  // the library keeps a pointer to it
  const std::string out = path + ".html";
  mschm_decompressor* decoder = mspack_create_chm_decompressor(nullptr);
  ASSERT_NE(decoder, nullptr);
  mschmd_header* help = decoder->open(decoder, path.c_str());
  ASSERT_NE(help, nullptr);
  mschmd_file* page = help->files;
  while (page != nullptr && std::string_view(page->filename) != "/welcome.html") page = page->next;
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(decoder->extract(decoder, page, out.c_str()), MSPACK_ERR_OK);
  std::stringstream text;
  text << std::ifstream(out).rdbuf();
  EXPECT_THAT(text.str(), testing::HasSubstr("<h1>ZEV Screen Recorder 6</h1>"));
  decoder->close(decoder, help);
  mspack_destroy_chm_decompressor(decoder);
  std::filesystem::remove(out);
}

TEST_F(SampleProductTest, HoldsAHelpFileWithoutTheTimeOfTheBuild) {
  EXPECT_EQ(numberAt(bytesOf("ZEV6.chm"), 16), 0u);
}

TEST_F(SampleProductTest, HoldsArchivesThatAreWhole) {
  const auto archives = filesEnding(".zev");
  ASSERT_EQ(archives.size(), 5u);
  for (const SampleFile* archive : archives) {
    const TemporaryFile onDisk(archive->bytes);
    zip_t* zip = zip_open(onDisk.path().c_str(), ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
    ASSERT_NE(zip, nullptr) << archive->installedName;
    EXPECT_GE(zip_get_num_entries(zip, 0), 5) << archive->installedName;
    for (zip_int64_t i = 0; i < zip_get_num_entries(zip, 0); ++i) {
      zip_stat_t stat;
      ASSERT_EQ(zip_stat_index(zip, static_cast<zip_uint64_t>(i), 0, &stat), 0);
      Bytes contents(stat.size + 1);
      zip_file_t* entry = zip_fopen_index(zip, static_cast<zip_uint64_t>(i), 0);
      ASSERT_NE(entry, nullptr);
      EXPECT_EQ(zip_fread(entry, contents.data(), contents.size()),
                static_cast<zip_int64_t>(stat.size));
      EXPECT_EQ(zip_fclose(entry), 0);
    }
    zip_discard(zip);
  }
}

TEST_F(SampleProductTest, HoldsImagesOfProgramsAndLibraries) {
  constexpr std::uint32_t kLibrary = 0x2000;
  for (const std::string_view ending : {".exe", ".dll"}) {
    const auto images = filesEnding(ending);
    EXPECT_EQ(images.size(), ending == ".exe" ? 5u : 7u);
    for (const SampleFile* image : images) {
      const Bytes& bytes = image->bytes;
      EXPECT_EQ(textAt(bytes, 0, 2), "MZ") << image->installedName;
      const std::size_t header = numberAt(bytes, 60);
      EXPECT_EQ(textAt(bytes, header, 4), std::string("PE\0\0", 4)) << image->installedName;
      EXPECT_EQ(textAt(bytes, header + 4, 2), "\x4C\x01") << "no 32 bits: " << image->installedName;
      const auto subsystemVersion = bytes[header + 24 + 48];
      EXPECT_LE(subsystemVersion, 5) << "starts on no Windows XP: " << image->installedName;
      EXPECT_EQ(numberAt(bytes, header + 8), 0u) << "time stamp of " << image->installedName;
      const bool library = (numberAt(bytes, header + 22, 2) & kLibrary) != 0;
      EXPECT_EQ(library, ending == ".dll") << image->installedName;
    }
  }
}

TEST_F(SampleProductTest, HoldsAProjectWithRoomForThePathOfItsVideo) {
  const Bytes& project = bytesOf("SampleProject.zrd");
  EXPECT_EQ(textAt(project, 0, 25), "ZEV Reel Desk Project 6\r\n");
  EXPECT_EQ(textAt(project, 25, 512), std::string(512, ' '));
  EXPECT_EQ(textAt(project, 537, 13), "\r\n[Project]\r\n");
}

TEST_F(SampleProductTest, HoldsLanguageFilesOfTextNotOfFiller) {
  const std::map<std::string_view, std::string_view> names = {
      {"ZEVDELang.dat", "Name=Deutsch\r\n"},
      {"ZEVFRLang.dat",
       "Name=Fran\xe7"
       "ais\r\n"},
      {"ZEVSPLang.dat", "Name=Espa\xf1ol\r\n"}};
  for (const auto& [installedName, name] : names) {
    const Bytes& bytes = bytesOf(installedName);
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_THAT(text, testing::HasSubstr(std::string(name)));
    const std::size_t signature = text.find("\r\nSignature=");
    ASSERT_NE(signature, std::string::npos);
    EXPECT_LT(text.size() - signature, 2000u) << installedName;
  }
}

TEST_F(SampleProductTest, HoldsAnApplicationManifest) {
  const Bytes& bytes = bytesOf(".exe.manifest");
  const std::string text(bytes.begin(), bytes.end());
  EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\""));
  EXPECT_TRUE(text.ends_with("</assembly>\r\n"));
  EXPECT_THAT(text, testing::HasSubstr("level=\"asInvoker\""));
}

}  // namespace
}  // namespace zev
