#include "system/value_files.h"

#include "localisation/catalogue.h"
#include "runtime/error.h"
#include "system/attributes.h"

namespace zev {
namespace {

Text pathOf(TextView folder, TextView name) { return join(trim(folder), u"\\", trim(name)); }

Text failure(TextView procedure, const RuntimeError& error) {
  return join(u"Error in ", procedure, u" : ", decimal(error.number()), u": ", error.description());
}

}  // namespace

Text ValueFiles::ReadConf(TextView folder, TextView name, TextView defaultText) {
  std::int32_t number = 0;
  try {
    const Text path = pathOf(folder, name);
    if (trim(folder).empty() || trim(name).empty() ||
        !exists(files_, path, dir_mask::hiddenFiles)) {
      return Text(defaultText);
    }
    clearAttributes(trim(folder), path);
    number = files_.FreeFile();
    files_.OpenInput(number, path);
    const Text text = readItems(number);
    files_.Close(number);
    return Text(trim(text));
  } catch (const RuntimeError& error) {
    ignoringErrors([&] { files_.Close(number); });
    dialogs_.MsgBox(join(failure(u"ReadConf", error), lineEnd, lineEnd, mailRequest()),
                    box_style::exclamation, dialogs_.defaultTitle());
    return {};
  }
}

Text ValueFiles::readItems(std::int32_t number) {
  Text text;
  while (!files_.Eof(number)) {
    const Text item = files_.Input(number);
    text = join(trim(text), trim(item));
  }
  return text;
}

bool ValueFiles::WriteConf(TextView folder, TextView name, TextView text) {
  if (trim(folder).empty() || trim(name).empty()) return false;
  std::int32_t number = 0;
  try {
    const Text path = pathOf(folder, name);
    clearAttributes(trim(folder), path);
    number = files_.FreeFile();
    files_.OpenOutput(number, path);
    files_.Print(number, text);
    files_.Close(number);
    return true;
  } catch (const RuntimeError& error) {
    ignoringErrors([&] { files_.Close(number); });
    dialogs_.MsgBox(join(failure(u"WriteConf", error), lineEnd, lineEnd, folder, u" - ", name,
                         u" - ", text, lineEnd, lineEnd, mailRequest()),
                    box_style::exclamation, dialogs_.defaultTitle());
    return false;
  }
}

bool ValueFiles::DeleteConf(TextView folder, TextView name) {
  try {
    const Text path = pathOf(folder, name);
    if (trim(folder).empty() || trim(name).empty() ||
        !exists(files_, path, dir_mask::hiddenFiles)) {
      return true;
    }
    clearAttributes(trim(folder), path);
    files_.Kill(path);
    return false;
  } catch (const RuntimeError& error) {
    dialogs_.MsgBox(join(failure(u"DeleteConf", error), lineEnd, lineEnd, mailRequest()),
                    box_style::exclamation, dialogs_.defaultTitle());
    return false;
  }
}

void ValueFiles::deleteFolder(TextView folder) {
  const Text base(trim(folder));
  const Text pattern = join(base, u"\\*.*");
  Text name = files_.Dir(pattern, dir_mask::normal);
  while (!trim(name).empty()) {
    const Text path = join(base, u"\\", name);
    clearAttributes(base, path);
    ignoringErrors([&] { files_.Kill(path); });
    name = files_.Dir(pattern, dir_mask::hiddenFiles);
  }
  files_.RmDir(base);
}

void ValueFiles::clearAttributes(TextView folder, TextView path) {
  ClearHiddenAttribute(files_, folder);
  ClearReadOnlyAttribute(files_, folder);
  ClearHiddenAttribute(files_, path);
  ClearReadOnlyAttribute(files_, path);
}

Text ValueFiles::mailRequest() { return phrases_.Translate(mailRequestPhrase); }

}  // namespace zev
