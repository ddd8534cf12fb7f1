#include <cstdlib>
#include <string>

#include "contract/bench.h"
#include "simulated/nobody.h"
#include "simulated/put_text.h"
#include "simulated/simulated_machine.h"

namespace zev::contract {
namespace {

/// A machine of the code page that the environment names, or else of the usual one.
class SimulatedBench final : public Bench {
 public:
  SimulatedBench() {
    if (const char* page = std::getenv("ZEV_CODE_PAGE")) {
      machine_.settings().system.codePage = static_cast<std::uint32_t>(std::stoul(page));
    }
    machine_.disks().putDirectory(folder());
    putText(machine_.disks(), program(), "MZ");
    machine_.startProgram();
  }

  Platform& platform() override { return machine_.platform(); }
  FileSystem& fileSystem() override { return machine_.fileSystem(); }
  Text folder() override { return u"C:\\Contract"; }
  Text key() override { return u"Software\\Contract"; }
  char16_t freeLetter() override { return u'Q'; }
  Text program() override { return u"C:\\Windows\\system32\\hostname.exe"; }
  const Control* focused(const Form& form) override {
    return machine_.screen().activeForm() == &form ? machine_.screen().focused(form) : nullptr;
  }
  bool endSession(const Form&) override { return machine_.hand().endSession(); }
  void refuseBoxes() override {
    constexpr std::int32_t outOfMemory = 8;
    machine_.setFaults(
        {{.call = "MsgBox", .code = outOfMemory}, {.call = "InputBox", .code = outOfMemory}});
  }

  std::uint32_t codePage() override { return machine_.settings().system.codePage; }
  void makeFolder(const Text& path) override { machine_.disks().putDirectory(path); }
  bool makeLink(const Text& path, const Text& folder) override {
    machine_.disks().put(path, {.directory = true, .link = folder});
    return true;
  }
  bool isThere(const Text& path) override { return machine_.disks().exists(path); }
  void nameTemporaryFolder(const Text& path) override { machine_.settings().folders.temp = path; }
  void nameDocuments(const Text& path) override { machine_.settings().folders.documents = path; }

 private:
  simulated::Nobody person_;
  simulated::NoTranscript transcript_;
  simulated::SimulatedMachine machine_{person_, transcript_};
};

}  // namespace

std::unique_ptr<Bench> makeBench() { return std::make_unique<SimulatedBench>(); }

}  // namespace zev::contract
