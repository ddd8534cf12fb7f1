#pragma once

#include <string>

#include "programs/zevsim/form_pieces.h"
#include "runtime/form.h"

namespace zev::simulator {

/// What a form is drawn on: the most columns and lines that it may take, its frame included.
struct Sheet {
  int columns = 78;
  int lines = 24;
};

/// Draws a form as text, in UTF-8, in its own layout: one column is 75 twips wide, one row 240
/// high. A form for which the sheet is too small is drawn narrower, and with fewer blank lines.
///
/// `[ Next >> ]` is a button, `[text   ]` a text box, `[English v]` a list, `(*)` and `( )` option
/// buttons, `[x]` and `[ ]` check boxes. A directory tree shows the opened folder and what it lies
/// in, each a step further in, and below it its own folders, if `folderNames` can tell them. "..."
/// tells that a tree, or a text box of many lines, has more. Of a control that is disabled the
/// brackets become colons. What is hidden, or lies in something hidden, is not drawn.
std::string drawForm(const Form& form, const Sheet& sheet = {},
                     const FolderNames& folderNames = {});

/// The controls that a person can use, and those that are disabled, by name and caption. `focused`
/// is marked; null marks none.
std::string listControls(const Form& form, const Control* focused, int columns = Sheet().columns);

}  // namespace zev::simulator
