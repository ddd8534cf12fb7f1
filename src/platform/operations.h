#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace zev {

/// Names of all platform operations that are observed, as faults and counts name them: those that
/// the services carry out, `DoEvents`, and the names that several share (`Open`).
/// Sorted without regard to letter case.
std::span<const std::string_view> operationNames();

/// An operation's name in the spelling of the list, letter case aside; none if there is no such
/// operation.
std::optional<std::string_view> findOperation(std::string_view written);

}  // namespace zev
