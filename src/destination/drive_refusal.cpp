#include "destination/drive_refusal.h"

#include <algorithm>

#include "platform/system_information.h"

namespace zev {
namespace {

/// Where the root stands in the text.
enum class Root { Nowhere, InFront, Behind };

/// What the folder browser says.
enum class InBrowser { Nothing, English, Translated };

struct DriveRefusal {
  std::uint32_t type;
  TextView phrase;
  Root root;
  InBrowser inBrowser;
};

// clang-format off
constexpr DriveRefusal refusals[] = {
    {drive_type::unknown,         u" couldn't be found!",                                           Root::InFront, InBrowser::English},
    {drive_type::noRootDirectory, u"Please check the drive : ",                                     Root::Behind,  InBrowser::Nothing},
    {drive_type::removable,       u"Screen Recorder can not be installed into a diskette driver.",  Root::Nowhere, InBrowser::English},
    {drive_type::remote,          u"Screen Recorder can not be installed into a network driver.",   Root::Nowhere, InBrowser::Translated},
    {drive_type::cdRom,           u"Screen Recorder can not be installed into a CD driver.",        Root::Nowhere, InBrowser::English},
    {drive_type::ramDisk,         u"Screen Recorder can not be installed into a RAM driver.",       Root::Nowhere, InBrowser::English},
};
// clang-format on

constexpr TextView title = u"Driver";

const DriveRefusal* findRefusal(std::uint32_t type) {
  const auto* found = std::find_if(std::begin(refusals), std::end(refusals),
                                   [&](const DriveRefusal& each) { return each.type == type; });
  return found == std::end(refusals) ? nullptr : found;
}

Text withRoot(const DriveRefusal& refusal, TextView phrase, TextView root) {
  switch (refusal.root) {
    case Root::InFront:
      return join(root, phrase);
    case Root::Behind:
      return join(phrase, root);
    default:
      return Text(phrase);
  }
}

}  // namespace

void showDriveRefusal(Dialogs& dialogs, Phrases& phrases, Refuser refuser, std::uint32_t driveType,
                      TextView root) {
  const DriveRefusal* refusal = findRefusal(driveType);
  const bool browsing = refuser == Refuser::FolderBrowser;
  if (refusal == nullptr || (browsing && refusal->inBrowser == InBrowser::Nothing)) return;
  const bool english = browsing && refusal->inBrowser == InBrowser::English;
  const Text phrase = english ? Text(refusal->phrase) : phrases.Translate(refusal->phrase);
  dialogs.MsgBox(withRoot(*refusal, phrase, root), box_style::systemExclamation,
                 browsing ? Text(title) : phrases.Translate(title));
}

bool refusedByCheck(std::uint32_t driveType) { return findRefusal(driveType) != nullptr; }

}  // namespace zev
