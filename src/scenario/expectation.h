#pragma once

#include <string>
#include <string_view>

#include "runtime/property.h"
#include "scenario/json_reader.h"
#include "scenario/script.h"
#include "scenario/witness.h"

namespace zev::scenario {

/// What came of one expectation.
struct Verdict {
  bool held = false;
  Json found;
};

/// Whether what was found is what is expected.
Verdict verdict(const Json& expected, Json found);

/// Checks one key of an `expect` and its value as far as that can be done before the scenario is
/// played. Fails with a ScenarioError.
void checkExpectation(const std::string& key, const JsonReader& expected);

/// Checks a value that a property or global is to take or to be held against: its numbers are whole
/// ones of 32 bits. Fails with a ScenarioError.
void checkPropertyValue(const JsonReader& expected);

/// True for the name of a global (`global.gLanguage`) or of a property (`Form1.Command2.Caption`).
bool isPropertyKey(std::string_view key);

/// How a key begins, such as "file:", or the whole of one without a rest, such as "boxes"; empty
/// for the name of a property.
std::string_view kindOfKey(std::string_view key);

// Kinds that are held against files and registry. `rest` is what follows the beginning of the
// key.
Verdict judgeFile(std::string_view rest, const Json& expected, const Witness& witness);
Verdict judgeDirectory(std::string_view rest, const Json& expected, const Witness& witness);
Verdict judgeRegistry(std::string_view rest, const Json& expected, const Witness& witness);

/// How a program ended (null, "unload", "exit", or an object with `error`), held against an
/// expectation that may give the word alone.
Verdict judgeEnd(const Json& expected, const Json& ended);

/// Whether an expectation of what was started, or opened, is written with objects of its parts, and
/// not with its words alone.
bool wantsParts(const Json& expected);

/// An expected shortcut with its properties spelled as the automation object spells them.
Json normalShortcut(const Json& expected);

/// The value of a property or global in JSON, and back.
Json toJson(const PropertyValue& value);
PropertyValue toPropertyValue(const Json& value);

}  // namespace zev::scenario
