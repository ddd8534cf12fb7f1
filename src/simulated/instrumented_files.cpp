#include "simulated/instrumented_files.h"

namespace zev::simulated {
namespace {

[[noreturn]] void raise(std::int32_t code) {
  throw RuntimeError(isRuntimeError(code) ? code : runtimeErrorOf(static_cast<SystemError>(code)));
}

std::int64_t count(std::size_t bytes) { return static_cast<std::int64_t>(bytes); }

}  // namespace

template <typename Forward>
auto InstrumentedFiles::statement(const Operation& operation, Arguments arguments,
                                  Forward forward) {
  using Result = decltype(forward());
  return instrumentation_.perform(
      operation, arguments, forward, [](std::int32_t code) -> Result { raise(code); },
      []() -> Result { return Result(); });
}

Operation InstrumentedFiles::onFile(std::string_view name, std::int32_t number) const {
  const auto found = paths_.find(number);
  return {name, {}, found == paths_.end() ? TextView() : TextView(found->second)};
}

// ---- queries

Text InstrumentedFiles::Dir(TextView pattern, std::int32_t attributes) {
  return instrumentation_.perform(
      {"Dir"}, {pattern, attributes}, [&] { return files_.Dir(pattern, attributes); },
      [](std::int32_t) { return Text(); }, [] { return Text(); });
}

Text InstrumentedFiles::Dir() {
  return instrumentation_.perform(
      {"Dir"}, {}, [&] { return files_.Dir(); }, [](std::int32_t) { return Text(); },
      [] { return Text(); });
}

// ---- files and directories by name

void InstrumentedFiles::Kill(TextView pattern) {
  statement({"Kill"}, {pattern}, [&] { files_.Kill(pattern); });
}

void InstrumentedFiles::MkDir(TextView path) {
  statement({"MkDir"}, {path}, [&] { files_.MkDir(path); });
}

void InstrumentedFiles::RmDir(TextView path) {
  statement({"RmDir"}, {path}, [&] { files_.RmDir(path); });
}

std::int32_t InstrumentedFiles::GetAttr(TextView path) {
  return statement({"GetAttr"}, {path}, [&] { return files_.GetAttr(path); });
}

std::int32_t InstrumentedFiles::FileLen(TextView path) {
  return statement({"FileLen"}, {path}, [&] { return files_.FileLen(path); });
}

std::size_t InstrumentedFiles::peek(TextView path, std::uint64_t offset,
                                    std::span<std::uint8_t> into) {
  return files_.peek(path, offset, into);
}

bool InstrumentedFiles::SetFileAttributesA(TextView path, std::int32_t attributes) {
  return instrumentation_.perform(
      {"SetFileAttributesA"}, {path, attributes},
      [&] { return files_.SetFileAttributesA(path, attributes); },
      [](std::int32_t) { return false; }, [] { return true; });
}

// ---- open files

std::int32_t InstrumentedFiles::FreeFile() {
  return statement({"FreeFile"}, {}, [&] { return files_.FreeFile(); });
}

template <typename Open>
void InstrumentedFiles::open(std::string_view name, std::int32_t number, TextView path,
                             Arguments arguments, Open open) {
  statement({name, "Open"}, arguments, open);
  paths_[number] = path;
}

void InstrumentedFiles::OpenBinary(std::int32_t number, TextView path, bool locked) {
  open("OpenBinary", number, path, {number, path, locked},
       [&] { files_.OpenBinary(number, path, locked); });
}

void InstrumentedFiles::OpenBinaryWrite(std::int32_t number, TextView path) {
  open("OpenBinaryWrite", number, path, {number, path},
       [&] { files_.OpenBinaryWrite(number, path); });
}

void InstrumentedFiles::OpenInput(std::int32_t number, TextView path) {
  open("OpenInput", number, path, {number, path}, [&] { files_.OpenInput(number, path); });
}

void InstrumentedFiles::OpenOutput(std::int32_t number, TextView path) {
  open("OpenOutput", number, path, {number, path}, [&] { files_.OpenOutput(number, path); });
}

void InstrumentedFiles::Close(std::int32_t number) {
  statement(onFile("Close", number), {number}, [&] { files_.Close(number); });
  paths_.erase(number);
}

std::int32_t InstrumentedFiles::LOF(std::int32_t number) {
  return statement(onFile("LOF", number), {number}, [&] { return files_.LOF(number); });
}

void InstrumentedFiles::Get(std::int32_t number, std::int32_t position,
                            std::span<std::uint8_t> into) {
  statement(onFile("Get", number), {number, position, count(into.size())},
            [&] { files_.Get(number, position, into); });
}

void InstrumentedFiles::Put(std::int32_t number, std::int32_t position,
                            std::span<const std::uint8_t> from) {
  statement(onFile("Put", number), {number, position, count(from.size())},
            [&] { files_.Put(number, position, from); });
}

void InstrumentedFiles::PutText(std::int32_t number, std::int32_t position, TextView text) {
  Operation operation = onFile("PutText", number);
  operation.alias = "Put";
  statement(operation, {number, position, text}, [&] { files_.PutText(number, position, text); });
}

void InstrumentedFiles::Print(std::int32_t number, TextView text) {
  statement(onFile("Print", number), {number, text}, [&] { files_.Print(number, text); });
}

Text InstrumentedFiles::Input(std::int32_t number) {
  return statement(onFile("Input", number), {number}, [&] { return files_.Input(number); });
}

bool InstrumentedFiles::Eof(std::int32_t number) {
  return statement(onFile("Eof", number), {number}, [&] { return files_.Eof(number); });
}

}  // namespace zev::simulated
