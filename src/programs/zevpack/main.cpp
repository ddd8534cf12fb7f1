#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iostream>
#include <new>

#include "programs/command_line/command_line.h"
#include "programs/zevpack/commands.h"
#include "programs/zevpack/host_file.h"

namespace {

using namespace zev::packing;
using namespace zev::command_line;

constexpr int failed = 1;
constexpr int wrongUse = 2;

/// What the person typed, as far as the commands need it.
struct Arguments {
  std::string image, members, output, package, folder, in, out;
  std::string against, installed, system, projects;
  bool packed = false;
  bool plainOk = false;
  bool force = false;
  bool digests = false;

  Stored stored() const { return plainOk ? Stored::Right : Stored::Wrong; }
  Force forced() const { return force ? Force::Yes : Force::No; }
};

std::optional<std::filesystem::path> given(const std::string& path) {
  return path.empty() ? std::nullopt : std::optional<std::filesystem::path>(path);
}

Verification verification(const Arguments& a) {
  if (a.package.empty() && (a.installed.empty() || a.against.empty())) {
    throw Missing("a package, or --installed and --against");
  }
  if (a.installed.empty() && !(a.system.empty() && a.projects.empty())) {
    throw Missing("--installed beside --system and --projects");
  }
  Verification wanted{given(a.package), given(a.against), std::nullopt, a.stored()};
  if (!a.installed.empty()) wanted.installed = {a.installed, given(a.system), given(a.projects)};
  return wanted;
}

/// Adds a command that runs `work` and remembers its exit status.
Command command(CommandLine& line, const char* name, const char* help, int& status,
                std::function<int()> work) {
  Command added = line.command(name, help);
  added.then([&status, work = std::move(work)] { status = work(); });
  return added;
}

void addPlainOk(Command& c, Arguments& a) {
  c.flag("--plain-ok", a.plainOk, "Members that are stored without compression are right");
}

void addBuild(CommandLine& line, Arguments& a, int& status) {
  Command c =
      command(line, "build", "Builds a package: the image with 56 members behind it", status,
              [&a] { return build(a.image, a.members, a.output, a.stored(), a.forced()); });
  c.option("--image", a.image, "The program's own image").required();
  c.option("--members", a.members,
           "Folder of packed members under their packed names, or of plain files under their "
           "installed names, which are compressed")
      .required();
  c.option("--output", a.output, "The package to write").required();
  addPlainOk(c, a);
  c.flag("--force", a.force,
         "Builds it although the image is no program without members, or a member of the "
         "right size would not expand");
}

void addList(CommandLine& line, Arguments& a, int& status) {
  Command c =
      command(line, "list", "Lists the members of a package; 1 if one is wrong", status, [&a] {
        return a.digests ? listDigests(a.package, a.stored()) : list(a.package, a.stored());
      });
  c.option("package", a.package, "The package").required();
  c.flag("--digests", a.digests, "SHA-256 of each expanded member, for sha256sum -c");
  addPlainOk(c, a);
}

void addVerify(CommandLine& line, Arguments& a, int& status) {
  Command c = command(line, "verify",
                      "Checks the program, and place, header and full expansion of every member, "
                      "or what was laid of them; 1 if one is wrong",
                      status, [&a] { return verify(verification(a)); });
  c.option("package", a.package, "The package");
  addPlainOk(c, a);
  c.option("--against", a.against, "Digests that members and files have to have");
  c.option("--installed", a.installed, "Install directory of a product to be checked");
  c.option("--system", a.system, "System directory with its libraries");
  c.option("--projects", a.projects, "Folder of the sample project");
}

void addExtract(CommandLine& line, Arguments& a, int& status) {
  Command c = command(line, "extract", "Takes the members out of a package", status, [&a] {
    return extract(a.package, a.folder, a.packed, a.stored(), a.forced());
  });
  c.option("package", a.package, "The package").required();
  c.option("--to", a.folder, "Folder to write to; made if it is missing").required();
  c.flag("--packed", a.packed, "As they are stored, under their packed names");
  addPlainOk(c, a);
  c.flag("--force", a.force, "Takes out what there is of a package that is not right");
}

void addSingleFiles(CommandLine& line, Arguments& a, int& status) {
  Command c = command(line, "compress", "Compresses one file", status,
                      [&a] { return compress(a.in, a.out); });
  c.option("in", a.in, "The plain file").required();
  c.option("out", a.out, "The packed file to write").required();

  c = command(line, "expand", "Expands one file", status, [&a] { return expand(a.in, a.out); });
  c.option("in", a.in, "The packed file").required();
  c.option("out", a.out, "The plain file to write").required();

  c = command(line, "sample", "Makes the 56 files of the sample product", status,
              [&a] { return sample(a.folder); });
  c.option("--to", a.folder, "Folder to write to; made if it is missing").required();
}

int statusOf(CommandLine& line, const std::vector<std::string>& words, const int& status) {
  try {
    const Outcome outcome = line.read(words, std::cout, std::cerr);
    if (outcome == Outcome::Taken) return status;
    return outcome == Outcome::Helped ? 0 : wrongUse;
  } catch (const std::bad_alloc&) {
    std::fputs("zevpack: there is not enough memory\n", stderr);
    return failed;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zevpack: %s\n", error.what());
    return failed;
  }
}

/// What was printed is part of the work.
int withOutputWritten(int status) {
  std::cout.flush();
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout) return status;
  std::fprintf(stderr, "zevpack: cannot write to standard output: %s\n", std::strerror(errno));
  return failed;
}

}  // namespace

int main(int argc, char** argv) {
  CommandLine line("zevpack",
                   "zevpack builds and checks packages of the ZEV Screen Recorder setup.");
  Arguments arguments;
  int status = 0;
  addBuild(line, arguments, status);
  addList(line, arguments, status);
  addVerify(line, arguments, status);
  addExtract(line, arguments, status);
  addSingleFiles(line, arguments, status);
  return withOutputWritten(statusOf(line, wordsOf(argc, argv), status));
}
