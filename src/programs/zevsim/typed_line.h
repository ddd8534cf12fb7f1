#pragma once

#include <string>
#include <string_view>

#include "programs/zevsim/form_pieces.h"
#include "scenario/script.h"

namespace zev::simulator {

/// Where mistakes of what is typed are said to be.
inline constexpr std::string_view typedPlace = "prompt";
/// Fails with a ScenarioError.
[[noreturn]] void failTyped(const std::string& reason);

/// Without blanks at its ends.
std::string_view trimmed(std::string_view text);
/// Takes the first word off a text.
std::string_view takeWord(std::string_view& text);

/// The step that a typed line stands for: a verb with its arguments, or a step in JSON. On `active`
/// controls are looked up by their captions, entries of lists by their beginnings, and folders in
/// the one that is opened there, as `folderNames` tells them; null for no form. A line that is no
/// step is a ScenarioError.
scenario::Step parseLine(const std::string& line, const Form* active,
                         const FolderNames& folderNames = {});

}  // namespace zev::simulator
