#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zev {

/// What an install is asked for.
struct InstallOrder {
  bool profileClass = true;  ///< the product's settings are value files in the user's profile
  std::string directory = "C:\\Program Files\\ZEV Screen Recorder 6";
  int listIndex = 0;  ///< of the language
  bool group = true;
  bool desktop = true;
};

/// A state without what an install does not fix: the free space, the bytes of a shortcut's file
/// (its properties stand apart), and texts that digests cover; those of value files stay.
nlohmann::json comparable(const nlohmann::json& state);

/// The state in which an install must leave a machine that was in this one: worked out from the
/// tables of tests/data and the sample product alone. The machine is a usual one of user bob.
nlohmann::json installedOn(const nlohmann::json& before, const InstallOrder& order);

/// The paths, keys and shortcuts in which two states differ, one a line, for messages.
std::string differences(const nlohmann::json& found, const nlohmann::json& expected);

}  // namespace zev
