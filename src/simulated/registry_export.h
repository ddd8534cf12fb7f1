#pragma once

#include <filesystem>

#include "simulated/registry_tree.h"

namespace zev::simulated {

/// The hives as a text that registry editors import: every key with a value or without subkeys gets
/// a section of its own, in order.
Text registryEditorText(const RegistryTree& registry);

/// Writes that text as editors write it: UTF-16, low byte first, with a byte order mark. Throws
/// std::runtime_error if the file cannot be written.
void exportRegistry(const RegistryTree& registry, const std::filesystem::path& file);

}  // namespace zev::simulated
