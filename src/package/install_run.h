#pragma once

#include <cstdint>

#include "localisation/phrases.h"
#include "package/manifest.h"
#include "state/program.h"
#include "system/product_settings.h"
#include "system/registry.h"

namespace zev {

/// A package shorter than this is not complete.
inline constexpr std::int32_t smallestPackage = 9'000'000;

/// The one long procedure that does the whole job, from the package to the button "Finish": a
/// single forward pass that reports what fails and goes on. Only the main program's file and an
/// unexpected run-time error stop it.
///
/// A run is good for one pass; its state is that of the pass.
class InstallRun final : private RunReport {
 public:
  /// Borrows all four; they outlive the run.
  InstallRun(Program& program, Phrases& phrases, Registry& registry, Form1Procedures& form);

  /// Leaves by ProgramEnd if the mandatory member fails, or if the person cancels meanwhile.
  void RunInstall();

 private:
  // The phases, in their order.
  bool openPackage();
  void startCounters();
  void layMembers();
  void changeStatus();
  void readySettingsStore();
  void writeSettings();
  void writeUninstallEntry();
  void registerFileType();
  void repairVideoCodecs();
  void writeLanguage();
  void removeTemporaryFiles();
  void makeShortcuts();
  void registerUsers();
  void finish();

  std::int32_t packageLength();

  // Members.
  void layMember(const ManifestRow& row);
  bool wanted(const ManifestRow& row);
  bool redistributableWanted() const;
  void prepare(const ManifestRow& row);
  void findSystemDirectory();
  bool readyProjectsFolder();
  void extract(const ManifestRow& row, TextView workFile);
  bool expand(const ManifestRow& row, TextView workFile);
  std::int32_t expandWorkFile(TextView workFile, TextView target);
  Text targetFolder(Target target) const;
  [[noreturn]] void giveUp();
  void runRedistributable();
  std::int32_t startExpanded(TextView path);
  void waitFor(std::int32_t process);
  bool DeleteFileIfPresent(TextView path);

  // The screen.
  void showTick(std::int32_t tick);
  void ShowProgress(std::int32_t percent);
  void setRunStep(std::int32_t step) override { RunStep_ = step; }
  void showStatus(TextView text) override;
  void showFile(TextView text);
  void showMemberBox(TextView text, TextView title);
  void tellIncomplete();
  void trap(const RuntimeError& error);
  Text installDirectory() const { return program_.globals.gInstallDir.trimmed(); }

  Program& program_;
  Form1& form1_;
  Platform& platform_;
  Phrases& phrases_;
  Registry& registry_;
  Form1Procedures& form_;
  ProductSettings settings_;

  std::int32_t RunStep_ = 0;
  std::int32_t TailOffset_ = 0;
  Text PackagePath_;
  Text TempFolder_;
  Text ProjectsFolder_;
  Text systemDirectory_;
};

}  // namespace zev
