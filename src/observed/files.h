#pragma once

#include <map>

#include "observed/observed.h"
#include "platform/files.h"
#include "runtime/error.h"

namespace zev::observed {

/// An injected number is a run-time error itself (see isRuntimeError), or one of the system and
/// becomes the run-time error that it leads to. `Dir` fails with an empty text, SetFileAttributesA
/// with false. Statements that know their file by number are matched by its path. All that open a
/// file share the name `Open`, and both that write into it at a place the name `Put`.
class Files final : public Observed<zev::Files> {
 public:
  using Observed::Observed;

  Text Dir(TextView pattern, std::int32_t attributes) override {
    return withNothing(
        {"Dir"}, [&] { return next_.Dir(pattern, attributes); }, pattern, attributes);
  }
  Text Dir() override {
    return withNothing({"Dir"}, [&] { return next_.Dir(); });
  }
  void Kill(TextView pattern) override { statement({"Kill"}, &Service::Kill, pattern); }
  void MkDir(TextView path) override { statement({"MkDir"}, &Service::MkDir, path); }
  void RmDir(TextView path) override { statement({"RmDir"}, &Service::RmDir, path); }
  std::int32_t GetAttr(TextView path) override {
    return statement({"GetAttr"}, &Service::GetAttr, path);
  }
  std::int32_t FileLen(TextView path) override {
    return statement({"FileLen"}, &Service::FileLen, path);
  }
  std::size_t peek(TextView path, std::uint64_t offset, std::span<std::uint8_t> into) override {
    return next_.peek(path, offset, into);  // the program looks at itself: nobody is to see that
  }
  std::size_t peek(std::int32_t number, std::uint64_t offset,
                   std::span<std::uint8_t> into) override {
    return next_.peek(number, offset, into);
  }
  bool SetFileAttributesA(TextView path, std::int32_t attributes) override {
    return withNothing({"SetFileAttributesA"}, &Service::SetFileAttributesA, path, attributes);
  }
  std::int32_t FreeFile() override { return statement({"FreeFile"}, &Service::FreeFile); }
  void OpenBinary(std::int32_t number, TextView path, bool locked) override {
    statement({"OpenBinary", "Open"}, &Service::OpenBinary, number, path, locked);
    paths_[number] = path;
  }
  void OpenBinaryWrite(std::int32_t number, TextView path) override {
    statement({"OpenBinaryWrite", "Open"}, &Service::OpenBinaryWrite, number, path);
    paths_[number] = path;
  }
  void OpenInput(std::int32_t number, TextView path) override {
    statement({"OpenInput", "Open"}, &Service::OpenInput, number, path);
    paths_[number] = path;
  }
  void OpenOutput(std::int32_t number, TextView path) override {
    statement({"OpenOutput", "Open"}, &Service::OpenOutput, number, path);
    paths_[number] = path;
  }
  void Close(std::int32_t number) override {
    statement(onFile("Close", number), &Service::Close, number);
    paths_.erase(number);
  }
  std::int32_t LOF(std::int32_t number) override {
    return statement(onFile("LOF", number), &Service::LOF, number);
  }
  void Get(std::int32_t number, std::int32_t position, std::span<std::uint8_t> into) override {
    statement(onFile("Get", number), &Service::Get, number, position, into);
  }
  void Put(std::int32_t number, std::int32_t position,
           std::span<const std::uint8_t> from) override {
    statement(onFile("Put", number), &Service::Put, number, position, from);
  }
  void PutText(std::int32_t number, std::int32_t position, TextView text) override {
    statement(onFile("PutText", number, "Put"), &Service::PutText, number, position, text);
  }
  void Print(std::int32_t number, TextView text) override {
    statement(onFile("Print", number), &Service::Print, number, text);
  }
  Text Input(std::int32_t number) override {
    return statement(onFile("Input", number), &Service::Input, number);
  }
  bool Eof(std::int32_t number) override {
    return statement(onFile("Eof", number), &Service::Eof, number);
  }

 private:
  Operation onFile(std::string_view name, std::int32_t number, std::string_view alias = {}) const {
    const auto found = paths_.find(number);
    return {name, alias, found == paths_.end() ? TextView() : TextView(found->second)};
  }

  template <typename Result, typename... Parameters, typename... Given>
  Result statement(const Operation& operation, Result (Service::*forward)(Parameters...),
                   Given&&... given) {
    const auto raise = [](std::int32_t code) -> Result {
      const auto error = static_cast<SystemError>(code);
      throw RuntimeError(isRuntimeError(code) ? code : runtimeErrorOf(error));
    };
    return pass(operation, forward, raise, giveDone<Result>, given...);
  }

  std::map<std::int32_t, Text> paths_;  ///< of the files that are open, by number
};

}  // namespace zev::observed
