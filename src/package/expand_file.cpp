#include "package/expand_file.h"

#include <algorithm>

#include "localisation/catalogue.h"
#include "runtime/number.h"

namespace zev {
namespace {

constexpr TextView failureTitle = u"ExpandFile - Error!";

/// Reasons of a failed open, by the system's number.
struct OpenError {
  std::int16_t nErrCode;
  std::int32_t code;
  TextView text;
  bool path;  ///< the text is followed by the path and a quotation mark
};

constexpr OpenError openErrors[] = {
    {2, -1, u"File not found : '", true},
    {3, -2, u"Invalid path : '", true},
    {4, -3, u"Too many files opened!", false},
    {5, -4, u"Couldn't access to file : '", true},
    {8, -5, u"Insufficient memory!", false},
    {11, -6, u"Invalid file format : '", true},
    {15, -7, u"Invalid drive : '", true},
    {19, -8, u"Couldn't write to file : '", true},
    {21, -9, u"Drive is not ready! : '", true},
    {23, -10, u"CRC file error : '", true},
    {27, -11, u"Couldn't find the file sector : '", true},
    {32, fileInUse, u"File in use : '", true},
    {54, -13, u"Couldn't read from computer : '", true},
    {65, -14, u"Access denied : '", true},
    {80, -15, u"File already exists : '", true},
};

/// Any other reason.
constexpr OpenError unknownError = {0, -16, u"Unknown error : '", true};

/// What a failed copy's box adds; nothing for any other result.
struct CopyDetail {
  std::int32_t result;
  TextView text;
};

constexpr CopyDetail copyDetails[] = {
    {-100, u"Invalid handle number for the source file."},
    {-200, u"Invalid handle number for the destionation file."},
    {-300, u"Invalid source file format."},
    {-500, u"Insufficient memory."},
    {-800, u"Compression algoritm of the source file is not supported."},
};

TextView copyDetail(std::int32_t result) {
  const auto row = std::find_if(std::begin(copyDetails), std::end(copyDetails),
                                [&](const CopyDetail& each) { return each.result == result; });
  return row == std::end(copyDetails) ? TextView() : row->text;
}

void showCopyError(Dialogs& dialogs, Phrases& phrases, std::int32_t result, TextView source) {
  const Text text = join(phrases.Translate(u"Error in ExpandFile: Couldn't decompress the file! "),
                         trim(copyDetail(result)), lineEnd, lineEnd, source, lineEnd, lineEnd,
                         phrases.Translate(mailRequestPhrase));
  dialogs.MsgBox(trim(text), box_style::systemExclamation, failureTitle);
}

/// An open file of the services: its handle, or the code of the failure.
struct Opened {
  std::int32_t handle;
  std::int32_t code;
};

Opened open(LzServices& lz, TextView path, std::int32_t style) {
  OFSTRUCT record;
  const std::int32_t handle = lz.LZOpenFileA(path, record, style);
  return {handle, MapOpenError(handle, record.nErrCode)};
}

}  // namespace

std::int32_t MapOpenError(std::int32_t handle, std::int16_t nErrCode) {
  if (handle >= 0) return 0;
  const auto row = std::find_if(std::begin(openErrors), std::end(openErrors),
                                [&](const OpenError& each) { return each.nErrCode == nErrCode; });
  return row == std::end(openErrors) ? unknownError.code : row->code;
}

void ShowExpandError(Dialogs& dialogs, std::int32_t code, TextView path) {
  const auto row = std::find_if(std::begin(openErrors), std::end(openErrors),
                                [&](const OpenError& each) { return each.code == code; });
  if (row == std::end(openErrors) && code != unknownError.code) return;
  const OpenError& error = row == std::end(openErrors) ? unknownError : *row;
  const Text text = error.path ? join(error.text, trim(path), u"'") : Text(error.text);
  dialogs.MsgBox(text, box_style::systemExclamation, failureTitle);
}

std::int32_t ExpandFile(LzServices& lz, Dialogs& dialogs, Phrases& phrases, TextView source,
                        TextView destination, bool showErrors) {
  const TextView from = trim(source);
  const TextView to = trim(destination);
  const Opened packed = open(lz, from, OF_READ);
  if (packed.code < 0) {
    if (showErrors) ShowExpandError(dialogs, packed.code, from);
    return packed.code;
  }
  const Opened target = open(lz, to, OF_CREATE);
  if (target.code < 0) {
    if (showErrors) ShowExpandError(dialogs, target.code, to);
    lz.LZClose(packed.handle);
    return target.code;
  }
  std::int32_t result = lz.LZCopy(packed.handle, target.handle);
  if (result <= 0) {
    result = multiply(result, 100);
    if (showErrors) showCopyError(dialogs, phrases, result, from);
  }
  lz.LZClose(packed.handle);
  lz.LZClose(target.handle);
  return result;
}

}  // namespace zev
