#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/platform.h"
#include "support/raised.h"

namespace zev::contract {

/// One machine to run the contract against, behind a binding. Made for each test, cleaned up with
/// it.
class Bench {
 public:
  virtual ~Bench() = default;
  virtual Platform& platform() = 0;
  /// The file calls below the statements.
  virtual FileSystem& fileSystem() = 0;
  /// An empty folder of this test's own, on a fixed drive, without a backslash at its end.
  virtual Text folder() = 0;
  /// A key under HKEY_CURRENT_USER that is not there, and is gone behind the test.
  virtual Text key() = 0;
  /// A letter that no drive has.
  virtual char16_t freeLetter() = 0;
  /// Full path of a program that starts and ends by itself.
  virtual Text program() = 0;
  /// The control of a form that what is typed now goes to; null if that is none that can take the
  /// focus.
  virtual const Control* focused(const Form& form) = 0;
  /// The person logs off. False if the program asks to wait.
  virtual bool endSession(const Form& form) = 0;
  /// From here on the system can show no box.
  virtual void refuseBoxes() = 0;
  /// Number of the code page of the system's texts.
  virtual std::uint32_t codePage() = 0;
  /// Makes a folder whose name may have letters that the code page does not have.
  virtual void makeFolder(const Text& path) = 0;
  /// Makes a link that leads to a folder. False where none can be made.
  virtual bool makeLink(const Text& path, const Text& folder) = 0;
  /// Whether there is such an entry, whatever letters its path has.
  virtual bool isThere(const Text& path) = 0;
  /// Until the end of the test that folder is the one for temporary files, or for the user's
  /// documents.
  virtual void nameTemporaryFolder(const Text& path) = 0;
  virtual void nameDocuments(const Text& path) = 0;
  /// True on Wine: where it is known to differ from Windows, a case says so and why.
  virtual bool isWine() { return false; }
};

/// Drives that are no letters; where the code page does not have the last ones they are its default
/// character behind it.
inline constexpr TextView noDrives[] = {
    u"9:", u"_:", u".:", u" :", u"::", u"@:", u"[:", u"`:", u"{:", u"\u00E9:", u"\u6F22:",
};

/// Defined once by each binding that the suite is linked with.
std::unique_ptr<Bench> makeBench();

class ContractTest : public testing::Test {
 protected:
  Platform& platform() { return bench_->platform(); }
  Files& files() { return platform().files; }
  FileSystem& system() { return bench_->fileSystem(); }
  Bench& bench() { return *bench_; }

  /// How an entry on a drive that is not there is refused. Wine takes the drive for an entry of the
  /// folder that holds its drives.
  SystemError missingOn(TextView drive) {
    const SystemError folder = missingFolderOn(drive);
    const bool asEntry = bench_->isWine() && folder == system_error::pathNotFound;
    return asEntry ? system_error::fileNotFound : folder;
  }
  /// How the folder that such a drive would be is refused.
  SystemError missingFolderOn(TextView drive) {
    const bool refusedByName = bench_->isWine() && system().toAnsi(drive) == "?:";
    return refusedByName ? system_error::invalidName : system_error::pathNotFound;
  }

  /// A path in the folder of this test.
  Text in(TextView name) { return join(bench_->folder(), u"\\", name); }
  /// A file with that line as its text.
  Text made(TextView name, TextView line = u"text") {
    const Text path = in(name);
    const std::int32_t number = files().FreeFile();
    files().OpenOutput(number, path);
    files().Print(number, line);
    files().Close(number);
    return path;
  }

 private:
  std::unique_ptr<Bench> bench_ = makeBench();
};

}  // namespace zev::contract
