#include "runtime/code_page.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace zev {
namespace {

constexpr std::uint32_t ascii = 20127;
constexpr std::uint32_t utf8 = 65001;
constexpr char defaultCharacter = '?';

/// What the bytes from 0x80 on stand for; those below are ASCII in every page.
using UpperHalf = std::array<char16_t, 128>;

consteval unsigned hexDigit(char digit) {
  return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

/// Reads 128 numbers of four hexadecimal digits, parted by one blank.
consteval UpperHalf upperHalf(std::string_view digits) {
  UpperHalf units{};
  for (std::size_t each = 0; each < units.size(); ++each) {
    unsigned unit = 0;
    for (std::size_t digit = 0; digit < 4; ++digit) {
      unit = unit * 16 + hexDigit(digits[each * 5 + digit]);
    }
    units[each] = static_cast<char16_t>(unit);
  }
  return units;
}

struct CodePage {
  std::uint32_t number;
  UpperHalf units;
};

// clang-format off
constexpr CodePage codePages[] = {
    {437,  // DOS, United States
     upperHalf(
                "00C7 00FC 00E9 00E2 00E4 00E0 00E5 00E7 00EA 00EB 00E8 00EF 00EE 00EC 00C4 00C5 "
                "00C9 00E6 00C6 00F4 00F6 00F2 00FB 00F9 00FF 00D6 00DC 00A2 00A3 00A5 20A7 0192 "
                "00E1 00ED 00F3 00FA 00F1 00D1 00AA 00BA 00BF 2310 00AC 00BD 00BC 00A1 00AB 00BB "
                "2591 2592 2593 2502 2524 2561 2562 2556 2555 2563 2551 2557 255D 255C 255B 2510 "
                "2514 2534 252C 251C 2500 253C 255E 255F 255A 2554 2569 2566 2560 2550 256C 2567 "
                "2568 2564 2565 2559 2558 2552 2553 256B 256A 2518 250C 2588 2584 258C 2590 2580 "
                "03B1 00DF 0393 03C0 03A3 03C3 00B5 03C4 03A6 0398 03A9 03B4 221E 03C6 03B5 2229 "
                "2261 00B1 2265 2264 2320 2321 00F7 2248 00B0 2219 00B7 221A 207F 00B2 25A0 00A0")},
    {850,  // DOS, Western Europe
     upperHalf(
                "00C7 00FC 00E9 00E2 00E4 00E0 00E5 00E7 00EA 00EB 00E8 00EF 00EE 00EC 00C4 00C5 "
                "00C9 00E6 00C6 00F4 00F6 00F2 00FB 00F9 00FF 00D6 00DC 00F8 00A3 00D8 00D7 0192 "
                "00E1 00ED 00F3 00FA 00F1 00D1 00AA 00BA 00BF 00AE 00AC 00BD 00BC 00A1 00AB 00BB "
                "2591 2592 2593 2502 2524 00C1 00C2 00C0 00A9 2563 2551 2557 255D 00A2 00A5 2510 "
                "2514 2534 252C 251C 2500 253C 00E3 00C3 255A 2554 2569 2566 2560 2550 256C 00A4 "
                "00F0 00D0 00CA 00CB 00C8 0131 00CD 00CE 00CF 2518 250C 2588 2584 00A6 00CC 2580 "
                "00D3 00DF 00D4 00D2 00F5 00D5 00B5 00FE 00DE 00DA 00DB 00D9 00FD 00DD 00AF 00B4 "
                "00AD 00B1 2017 00BE 00B6 00A7 00F7 00B8 00B0 00A8 00B7 00B9 00B3 00B2 25A0 00A0")},
    {874,  // Thai
     upperHalf(
                "20AC 0081 0082 0083 0084 2026 0086 0087 0088 0089 008A 008B 008C 008D 008E 008F "
                "0090 2018 2019 201C 201D 2022 2013 2014 0098 0099 009A 009B 009C 009D 009E 009F "
                "00A0 0E01 0E02 0E03 0E04 0E05 0E06 0E07 0E08 0E09 0E0A 0E0B 0E0C 0E0D 0E0E 0E0F "
                "0E10 0E11 0E12 0E13 0E14 0E15 0E16 0E17 0E18 0E19 0E1A 0E1B 0E1C 0E1D 0E1E 0E1F "
                "0E20 0E21 0E22 0E23 0E24 0E25 0E26 0E27 0E28 0E29 0E2A 0E2B 0E2C 0E2D 0E2E 0E2F "
                "0E30 0E31 0E32 0E33 0E34 0E35 0E36 0E37 0E38 0E39 0E3A F8C1 F8C2 F8C3 F8C4 0E3F "
                "0E40 0E41 0E42 0E43 0E44 0E45 0E46 0E47 0E48 0E49 0E4A 0E4B 0E4C 0E4D 0E4E 0E4F "
                "0E50 0E51 0E52 0E53 0E54 0E55 0E56 0E57 0E58 0E59 0E5A 0E5B F8C5 F8C6 F8C7 F8C8")},
    {1250,  // Central Europe
     upperHalf(
                "20AC 0081 201A 0083 201E 2026 2020 2021 0088 2030 0160 2039 015A 0164 017D 0179 "
                "0090 2018 2019 201C 201D 2022 2013 2014 0098 2122 0161 203A 015B 0165 017E 017A "
                "00A0 02C7 02D8 0141 00A4 0104 00A6 00A7 00A8 00A9 015E 00AB 00AC 00AD 00AE 017B "
                "00B0 00B1 02DB 0142 00B4 00B5 00B6 00B7 00B8 0105 015F 00BB 013D 02DD 013E 017C "
                "0154 00C1 00C2 0102 00C4 0139 0106 00C7 010C 00C9 0118 00CB 011A 00CD 00CE 010E "
                "0110 0143 0147 00D3 00D4 0150 00D6 00D7 0158 016E 00DA 0170 00DC 00DD 0162 00DF "
                "0155 00E1 00E2 0103 00E4 013A 0107 00E7 010D 00E9 0119 00EB 011B 00ED 00EE 010F "
                "0111 0144 0148 00F3 00F4 0151 00F6 00F7 0159 016F 00FA 0171 00FC 00FD 0163 02D9")},
    {1251,  // Cyrillic
     upperHalf(
                "0402 0403 201A 0453 201E 2026 2020 2021 20AC 2030 0409 2039 040A 040C 040B 040F "
                "0452 2018 2019 201C 201D 2022 2013 2014 0098 2122 0459 203A 045A 045C 045B 045F "
                "00A0 040E 045E 0408 00A4 0490 00A6 00A7 0401 00A9 0404 00AB 00AC 00AD 00AE 0407 "
                "00B0 00B1 0406 0456 0491 00B5 00B6 00B7 0451 2116 0454 00BB 0458 0405 0455 0457 "
                "0410 0411 0412 0413 0414 0415 0416 0417 0418 0419 041A 041B 041C 041D 041E 041F "
                "0420 0421 0422 0423 0424 0425 0426 0427 0428 0429 042A 042B 042C 042D 042E 042F "
                "0430 0431 0432 0433 0434 0435 0436 0437 0438 0439 043A 043B 043C 043D 043E 043F "
                "0440 0441 0442 0443 0444 0445 0446 0447 0448 0449 044A 044B 044C 044D 044E 044F")},
    {1252,  // Western Europe
     upperHalf(
                "20AC 0081 201A 0192 201E 2026 2020 2021 02C6 2030 0160 2039 0152 008D 017D 008F "
                "0090 2018 2019 201C 201D 2022 2013 2014 02DC 2122 0161 203A 0153 009D 017E 0178 "
                "00A0 00A1 00A2 00A3 00A4 00A5 00A6 00A7 00A8 00A9 00AA 00AB 00AC 00AD 00AE 00AF "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00B8 00B9 00BA 00BB 00BC 00BD 00BE 00BF "
                "00C0 00C1 00C2 00C3 00C4 00C5 00C6 00C7 00C8 00C9 00CA 00CB 00CC 00CD 00CE 00CF "
                "00D0 00D1 00D2 00D3 00D4 00D5 00D6 00D7 00D8 00D9 00DA 00DB 00DC 00DD 00DE 00DF "
                "00E0 00E1 00E2 00E3 00E4 00E5 00E6 00E7 00E8 00E9 00EA 00EB 00EC 00ED 00EE 00EF "
                "00F0 00F1 00F2 00F3 00F4 00F5 00F6 00F7 00F8 00F9 00FA 00FB 00FC 00FD 00FE 00FF")},
    {1253,  // Greek
     upperHalf(
                "20AC 0081 201A 0192 201E 2026 2020 2021 0088 2030 008A 2039 008C 008D 008E 008F "
                "0090 2018 2019 201C 201D 2022 2013 2014 0098 2122 009A 203A 009C 009D 009E 009F "
                "00A0 0385 0386 00A3 00A4 00A5 00A6 00A7 00A8 00A9 F8F9 00AB 00AC 00AD 00AE 2015 "
                "00B0 00B1 00B2 00B3 0384 00B5 00B6 00B7 0388 0389 038A 00BB 038C 00BD 038E 038F "
                "0390 0391 0392 0393 0394 0395 0396 0397 0398 0399 039A 039B 039C 039D 039E 039F "
                "03A0 03A1 F8FA 03A3 03A4 03A5 03A6 03A7 03A8 03A9 03AA 03AB 03AC 03AD 03AE 03AF "
                "03B0 03B1 03B2 03B3 03B4 03B5 03B6 03B7 03B8 03B9 03BA 03BB 03BC 03BD 03BE 03BF "
                "03C0 03C1 03C2 03C3 03C4 03C5 03C6 03C7 03C8 03C9 03CA 03CB 03CC 03CD 03CE F8FB")},
    {1254,  // Turkish
     upperHalf(
                "20AC 0081 201A 0192 201E 2026 2020 2021 02C6 2030 0160 2039 0152 008D 008E 008F "
                "0090 2018 2019 201C 201D 2022 2013 2014 02DC 2122 0161 203A 0153 009D 009E 0178 "
                "00A0 00A1 00A2 00A3 00A4 00A5 00A6 00A7 00A8 00A9 00AA 00AB 00AC 00AD 00AE 00AF "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00B8 00B9 00BA 00BB 00BC 00BD 00BE 00BF "
                "00C0 00C1 00C2 00C3 00C4 00C5 00C6 00C7 00C8 00C9 00CA 00CB 00CC 00CD 00CE 00CF "
                "011E 00D1 00D2 00D3 00D4 00D5 00D6 00D7 00D8 00D9 00DA 00DB 00DC 0130 015E 00DF "
                "00E0 00E1 00E2 00E3 00E4 00E5 00E6 00E7 00E8 00E9 00EA 00EB 00EC 00ED 00EE 00EF "
                "011F 00F1 00F2 00F3 00F4 00F5 00F6 00F7 00F8 00F9 00FA 00FB 00FC 0131 015F 00FF")},
    {1255,  // Hebrew
     upperHalf(
                "20AC 0081 201A 0192 201E 2026 2020 2021 02C6 2030 008A 2039 008C 008D 008E 008F "
                "0090 2018 2019 201C 201D 2022 2013 2014 02DC 2122 009A 203A 009C 009D 009E 009F "
                "00A0 00A1 00A2 00A3 20AA 00A5 00A6 00A7 00A8 00A9 00D7 00AB 00AC 00AD 00AE 00AF "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00B8 00B9 00F7 00BB 00BC 00BD 00BE 00BF "
                "05B0 05B1 05B2 05B3 05B4 05B5 05B6 05B7 05B8 05B9 05BA 05BB 05BC 05BD 05BE 05BF "
                "05C0 05C1 05C2 05C3 05F0 05F1 05F2 05F3 05F4 F88D F88E F88F F890 F891 F892 F893 "
                "05D0 05D1 05D2 05D3 05D4 05D5 05D6 05D7 05D8 05D9 05DA 05DB 05DC 05DD 05DE 05DF "
                "05E0 05E1 05E2 05E3 05E4 05E5 05E6 05E7 05E8 05E9 05EA F894 F895 200E 200F F896")},
    {1256,  // Arabic
     upperHalf(
                "20AC 067E 201A 0192 201E 2026 2020 2021 02C6 2030 0679 2039 0152 0686 0698 0688 "
                "06AF 2018 2019 201C 201D 2022 2013 2014 06A9 2122 0691 203A 0153 200C 200D 06BA "
                "00A0 060C 00A2 00A3 00A4 00A5 00A6 00A7 00A8 00A9 06BE 00AB 00AC 00AD 00AE 00AF "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00B8 00B9 061B 00BB 00BC 00BD 00BE 061F "
                "06C1 0621 0622 0623 0624 0625 0626 0627 0628 0629 062A 062B 062C 062D 062E 062F "
                "0630 0631 0632 0633 0634 0635 0636 00D7 0637 0638 0639 063A 0640 0641 0642 0643 "
                "00E0 0644 00E2 0645 0646 0647 0648 00E7 00E8 00E9 00EA 00EB 0649 064A 00EE 00EF "
                "064B 064C 064D 064E 00F4 064F 0650 00F7 0651 00F9 0652 00FB 00FC 200E 200F 06D2")},
    {1257,  // Baltic
     upperHalf(
                "20AC 0081 201A 0083 201E 2026 2020 2021 0088 2030 008A 2039 008C 00A8 02C7 00B8 "
                "0090 2018 2019 201C 201D 2022 2013 2014 0098 2122 009A 203A 009C 00AF 02DB 009F "
                "00A0 F8FC 00A2 00A3 00A4 F8FD 00A6 00A7 00D8 00A9 0156 00AB 00AC 00AD 00AE 00C6 "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00F8 00B9 0157 00BB 00BC 00BD 00BE 00E6 "
                "0104 012E 0100 0106 00C4 00C5 0118 0112 010C 00C9 0179 0116 0122 0136 012A 013B "
                "0160 0143 0145 00D3 014C 00D5 00D6 00D7 0172 0141 015A 016A 00DC 017B 017D 00DF "
                "0105 012F 0101 0107 00E4 00E5 0119 0113 010D 00E9 017A 0117 0123 0137 012B 013C "
                "0161 0144 0146 00F3 014D 00F5 00F6 00F7 0173 0142 015B 016B 00FC 017C 017E 02D9")},
    {1258,  // Vietnamese
     upperHalf(
                "20AC 0081 201A 0192 201E 2026 2020 2021 02C6 2030 008A 2039 0152 008D 008E 008F "
                "0090 2018 2019 201C 201D 2022 2013 2014 02DC 2122 009A 203A 0153 009D 009E 0178 "
                "00A0 00A1 00A2 00A3 00A4 00A5 00A6 00A7 00A8 00A9 00AA 00AB 00AC 00AD 00AE 00AF "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00B8 00B9 00BA 00BB 00BC 00BD 00BE 00BF "
                "00C0 00C1 00C2 0102 00C4 00C5 00C6 00C7 00C8 00C9 00CA 00CB 0300 00CD 00CE 00CF "
                "0110 00D1 0309 00D3 00D4 01A0 00D6 00D7 00D8 00D9 00DA 00DB 00DC 01AF 0303 00DF "
                "00E0 00E1 00E2 0103 00E4 00E5 00E6 00E7 00E8 00E9 00EA 00EB 0301 00ED 00EE 00EF "
                "0111 00F1 0323 00F3 00F4 01A1 00F6 00F7 00F8 00F9 00FA 00FB 00FC 01B0 20AB 00FF")},
    {28591,  // ISO 8859-1
     upperHalf(
                "0080 0081 0082 0083 0084 0085 0086 0087 0088 0089 008A 008B 008C 008D 008E 008F "
                "0090 0091 0092 0093 0094 0095 0096 0097 0098 0099 009A 009B 009C 009D 009E 009F "
                "00A0 00A1 00A2 00A3 00A4 00A5 00A6 00A7 00A8 00A9 00AA 00AB 00AC 00AD 00AE 00AF "
                "00B0 00B1 00B2 00B3 00B4 00B5 00B6 00B7 00B8 00B9 00BA 00BB 00BC 00BD 00BE 00BF "
                "00C0 00C1 00C2 00C3 00C4 00C5 00C6 00C7 00C8 00C9 00CA 00CB 00CC 00CD 00CE 00CF "
                "00D0 00D1 00D2 00D3 00D4 00D5 00D6 00D7 00D8 00D9 00DA 00DB 00DC 00DD 00DE 00DF "
                "00E0 00E1 00E2 00E3 00E4 00E5 00E6 00E7 00E8 00E9 00EA 00EB 00EC 00ED 00EE 00EF "
                "00F0 00F1 00F2 00F3 00F4 00F5 00F6 00F7 00F8 00F9 00FA 00FB 00FC 00FD 00FE 00FF")},
};
// clang-format on

const UpperHalf* singleByteTable(std::uint32_t codePage) {
  for (const CodePage& page : codePages) {
    if (page.number == codePage) return &page.units;
  }
  return nullptr;
}

/// The table of a single-byte page; null for ASCII, which needs none.
const UpperHalf* requireTable(std::uint32_t codePage) {
  const UpperHalf* table = singleByteTable(codePage);
  if (table == nullptr && codePage != ascii) {
    throw std::invalid_argument("unknown code page " + std::to_string(codePage));
  }
  return table;
}

char byteOf(char16_t unit, const UpperHalf* table) {
  if (unit < 0x80) return static_cast<char>(unit);
  if (table == nullptr) return defaultCharacter;
  const auto found = std::find(table->begin(), table->end(), unit);
  if (found == table->end()) return defaultCharacter;
  return static_cast<char>(static_cast<unsigned char>(0x80 + (found - table->begin())));
}

char16_t unitOf(unsigned char byte, const UpperHalf* table) {
  if (byte < 0x80) return byte;
  return table == nullptr ? char16_t{defaultCharacter} : (*table)[byte - 0x80u];
}

}  // namespace

bool isKnownCodePage(std::uint32_t codePage) {
  return codePage == ascii || codePage == utf8 || singleByteTable(codePage) != nullptr;
}

std::string toCodePage(TextView text, std::uint32_t codePage) {
  if (codePage == utf8) return toUtf8(text);
  const UpperHalf* table = requireTable(codePage);
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [&](char16_t unit) { return byteOf(unit, table); });
  return bytes;
}

Text fromCodePage(std::string_view bytes, std::uint32_t codePage) {
  if (codePage == utf8) return fromUtf8(bytes);
  const UpperHalf* table = requireTable(codePage);
  Text text(bytes.size(), u'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(),
                 [&](char byte) { return unitOf(static_cast<unsigned char>(byte), table); });
  return text;
}

Text throughCodePage(TextView text, std::uint32_t codePage) {
  return fromCodePage(toCodePage(text, codePage), codePage);
}

}  // namespace zev
