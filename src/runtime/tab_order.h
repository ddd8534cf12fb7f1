#pragma once

#include <vector>

#include "runtime/form.h"

namespace zev {

/// The controls of a form in tab order; those without a place in it come last.
std::vector<Control*> tabOrder(const Form& form);

enum class TabDirection { Forward, Backward };

/// The first control behind `from` in tab order, round the end, that can take the focus; null if
/// none can. Without `from` the order's own first one.
Control* nextFocusable(const Form& form, const Control* from,
                       TabDirection direction = TabDirection::Forward);

}  // namespace zev
