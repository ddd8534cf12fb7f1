#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/controls.h"
#include "runtime/form.h"

namespace zev::simulator {

/// A text as people compare it: in lower case, without accents, and without what stands around its
/// words, as "back" of "<< Back".
Text folded(TextView text);

/// Which of some texts a person means: those that are the written one, else those that begin with
/// it as a word, else with it as the beginning of a word, else those of which another word begins
/// with it. Several if it cannot be told.
std::vector<std::size_t> meantOf(TextView written, const std::vector<Text>& texts);

/// The only one that is meant; none if there is none. Several are a ScenarioError that names them.
std::optional<std::size_t> meantOne(TextView written, const std::vector<Text>& texts);

/// The control of a form that a person means, by its name or by what stands on it; null if there is
/// none. Several are a ScenarioError that names them.
Control* meantControl(std::string_view written, const Form& form);

/// The controls of a sort that are to be seen on a form.
std::vector<Control*> shownOf(const Form& form, bool (*isOfSort)(const Control& control));

/// The entries of a list, in their order.
std::vector<Text> entriesOf(const ComboBox& combo);

/// Texts with commas between them.
std::string enumerated(const std::vector<Text>& texts);

/// A control as a person is told of it: `Command1 "<< Back"`.
std::string calledBy(const Control& control);

}  // namespace zev::simulator
