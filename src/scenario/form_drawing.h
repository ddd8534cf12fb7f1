#pragma once

#include <functional>
#include <string>
#include <vector>

#include "runtime/form.h"

namespace zev::scenario {

/// Names of the folders in a folder of the machine.
using FolderNames = std::function<std::vector<Text>(const Text& folder)>;

/// Draws a form as text, in UTF-8, in its own layout: one column is 75 twips wide, one row 240
/// high.
///
/// `[ Next >> ]` is a button, `[text   ]` a text box, `[English v]` a list, `(*)` and `( )` option
/// buttons, `[x]` and `[ ]` check boxes. A directory tree shows the opened folder and what it lies
/// in, each a step further in, and below it its own folders, if `folderNames` can tell them; what
/// does not fit is told by "...". Of a control that is disabled the brackets become colons.
/// What is hidden, or lies in something hidden, is not drawn.
std::string drawForm(const Form& form, const FolderNames& folderNames = {});

/// The controls that a person can use, and those that are disabled, by name and caption: one line
/// each. `focused` is marked; null marks none.
std::string listControls(const Form& form, const Control* focused);

/// The text that a control shows: its caption, text or selected entry, without the marks of access
/// keys.
Text shownText(const Control& control);

}  // namespace zev::scenario
