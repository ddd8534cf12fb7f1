#include "programs/zevsim/value_json.h"

#include <nlohmann/json.hpp>

namespace zev::simulator {
namespace {

using Json = nlohmann::ordered_json;
using simulated::Value;

struct Written {
  Json operator()(std::monostate) const { return nullptr; }
  Json operator()(const std::vector<Value>& list) const {
    Json json = Json::array();
    for (const Value& each : list) json.push_back(toJson(each));
    return json;
  }
  Json operator()(const std::vector<Value::Member>& members) const {
    Json json = Json::object();
    for (const auto& [name, value] : members) json.emplace(name, toJson(value));
    return json;
  }
  template <typename Plain>
  Json operator()(const Plain& plain) const {
    return plain;
  }
};

Value listOf(const Json& json) {
  Value list = Value::list();
  for (const Json& each : json) list.push_back(fromJson(each));
  return list;
}

Value membersOf(const Json& json) {
  Value members = Value::members();
  for (const auto& [name, value] : json.items()) members[name] = fromJson(value);
  return members;
}

}  // namespace

Json toJson(const Value& value) { return value.visit(Written()); }

Value fromJson(const Json& json) {
  if (json.is_object()) return membersOf(json);
  if (json.is_array()) return listOf(json);
  if (json.is_string()) return json.get<std::string>();
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_unsigned()) return json.get<std::uint64_t>();
  if (json.is_number_integer()) return json.get<std::int64_t>();
  return json.is_number() ? Value(json.get<double>()) : Value();
}

}  // namespace zev::simulator
