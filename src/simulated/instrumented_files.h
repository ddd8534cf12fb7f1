#pragma once

#include <map>

#include "platform/files.h"
#include "simulated/instrumentation.h"

namespace zev::simulated {

/// The file statements under observation. An injected error number is a run-time error itself (see
/// isRuntimeError), or one of the system and becomes the run-time error that it leads to. `Dir`
/// fails with an empty text and SetFileAttributesA with false. Statements that know their file by
/// number are matched by its path. All that open a file share the name `Open`, and both that write
/// into it at a place the name `Put`.
class InstrumentedFiles final : public Files {
 public:
  /// Borrows both.
  InstrumentedFiles(Files& files, Instrumentation& instrumentation)
      : files_(files), instrumentation_(instrumentation) {}

  Text Dir(TextView pattern, std::int32_t attributes) override;
  Text Dir() override;
  void Kill(TextView pattern) override;
  void MkDir(TextView path) override;
  void RmDir(TextView path) override;
  std::int32_t GetAttr(TextView path) override;
  std::int32_t FileLen(TextView path) override;
  std::size_t peek(TextView path, std::uint64_t offset, std::span<std::uint8_t> into) override;
  bool SetFileAttributesA(TextView path, std::int32_t attributes) override;
  std::int32_t FreeFile() override;
  void OpenBinary(std::int32_t number, TextView path, bool locked) override;
  void OpenBinaryWrite(std::int32_t number, TextView path) override;
  void OpenInput(std::int32_t number, TextView path) override;
  void OpenOutput(std::int32_t number, TextView path) override;
  void Close(std::int32_t number) override;
  std::int32_t LOF(std::int32_t number) override;
  void Get(std::int32_t number, std::int32_t position, std::span<std::uint8_t> into) override;
  void Put(std::int32_t number, std::int32_t position, std::span<const std::uint8_t> from) override;
  void PutText(std::int32_t number, std::int32_t position, TextView text) override;
  void Print(std::int32_t number, TextView text) override;
  Text Input(std::int32_t number) override;
  bool Eof(std::int32_t number) override;

 private:
  Operation onFile(std::string_view name, std::int32_t number) const;
  template <typename Open>
  void open(std::string_view name, std::int32_t number, TextView path, Arguments arguments,
            Open open);
  template <typename Forward>
  auto statement(const Operation& operation, Arguments arguments, Forward forward);

  Files& files_;
  Instrumentation& instrumentation_;
  std::map<std::int32_t, Text> paths_;  ///< of the files that are open, by number
};

}  // namespace zev::simulated
