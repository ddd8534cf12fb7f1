#pragma once

#include <functional>
#include <vector>

#include "programs/zevsim/form_layout.h"
#include "runtime/form.h"

namespace zev::scenario {

/// Names of the folders in a folder of the machine.
using FolderNames = std::function<std::vector<Text>(const Text& folder)>;

/// The text that a control shows: its caption, text or selected entry, without the marks of access
/// keys.
Text shownText(const Control& control);

/// Whether the control, and all that it lies in, is enabled.
bool isEnabled(const Control& control);

/// What is to be seen of a form that is drawn so many columns wide, one piece a control. The form,
/// and `folderNames`, outlive the pieces.
std::vector<Piece> piecesOf(const Form& form, int columns, const FolderNames& folderNames);

}  // namespace zev::scenario
