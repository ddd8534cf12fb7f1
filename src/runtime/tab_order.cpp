#include "runtime/tab_order.h"

#include <algorithm>

namespace zev {

std::vector<Control*> tabOrder(const Form& form) {
  std::vector<Control*> order = form.Controls();
  const auto place = [](const Control* control) {
    return static_cast<std::uint32_t>(control->TabIndex.get());  // -1 is the greatest
  };
  std::stable_sort(order.begin(), order.end(), [&](const Control* first, const Control* second) {
    return place(first) < place(second);
  });
  return order;
}

Control* nextFocusable(const Form& form, const Control* from, TabDirection direction) {
  std::vector<Control*> order = tabOrder(form);
  if (direction == TabDirection::Backward) std::reverse(order.begin(), order.end());
  const auto start = std::find(order.begin(), order.end(), from);
  if (start != order.end()) std::rotate(order.begin(), start + 1, order.end());
  const auto found = std::find_if(order.begin(), order.end(),
                                  [](const Control* each) { return each->canTakeFocus(); });
  return found == order.end() ? nullptr : *found;
}

}  // namespace zev
