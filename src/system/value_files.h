#pragma once

#include "localisation/phrases.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "runtime/text.h"

namespace zev {

/// Values as small text files, one line each, in a folder of a user's profile. A value's name is
/// the name of its file.
class ValueFiles {
 public:
  /// Borrows all three; they outlive this.
  ValueFiles(Files& files, Dialogs& dialogs, Phrases& phrases)
      : files_(files), dialogs_(dialogs), phrases_(phrases) {}

  /// The text of a value: its items joined, each trimmed, so that commas are lost. The default text
  /// if there is no such value; empty after the box of a failure.
  Text ReadConf(TextView folder, TextView name, TextView defaultText);
  /// Writes a value as one line; false for a blank folder or name, and after the box of a failure.
  bool WriteConf(TextView folder, TextView name, TextView text);
  /// Deletes a value. True only if there was nothing to do.
  bool DeleteConf(TextView folder, TextView name);

  /// Deletes all values of a folder and the folder. It takes the first file that is left until none
  /// is: with a file that cannot be deleted it does not come to an end.
  void deleteFolder(TextView folder);

 private:
  void clearAttributes(TextView folder, TextView path);
  Text readItems(std::int32_t number);
  Text mailRequest();

  Files& files_;
  Dialogs& dialogs_;
  Phrases& phrases_;
};

}  // namespace zev
