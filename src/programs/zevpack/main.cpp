#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>

#include "programs/zevpack/commands.h"
#include "programs/zevpack/host_file.h"

namespace {

using zev::packing::ToolError;

constexpr int wrongUse = 2;

/// What the person typed, as far as the commands need it.
struct Arguments {
  std::string image, members, output, package, folder, in, out;
  bool packed = false;
  bool plainOk = false;
};

/// Adds a command that runs `work` and remembers its exit status.
CLI::App* command(CLI::App& app, const char* name, const char* help, int& status,
                  std::function<int()> work) {
  CLI::App* added = app.add_subcommand(name, help);
  added->callback([&status, work = std::move(work)] { status = work(); });
  return added;
}

void addCommands(CLI::App& app, Arguments& a, int& status) {
  using namespace zev::packing;
  CLI::App* c = command(app, "build", "Builds a package: the image with 56 members behind it",
                        status, [&a] { return build(a.image, a.members, a.output); });
  c->add_option("--image", a.image, "The program's own image")->required();
  c->add_option("--members", a.members,
                "Folder of packed members under their packed names, or of plain files under their "
                "installed names, which are compressed")
      ->required();
  c->add_option("--output", a.output, "The package to write")->required();

  c = command(app, "list", "Lists the members of a package", status,
              [&a] { return list(a.package); });
  c->add_option("package", a.package, "The package")->required();

  c = command(app, "verify",
              "Checks place, header and full expansion of every member; 1 if one is wrong", status,
              [&a] { return verify(a.package, a.plainOk); });
  c->add_option("package", a.package, "The package")->required();
  c->add_flag("--plain-ok", a.plainOk, "Members that are stored without compression are right");

  c = command(app, "extract", "Takes the members out of a package", status,
              [&a] { return extract(a.package, a.folder, a.packed); });
  c->add_option("package", a.package, "The package")->required();
  c->add_option("--to", a.folder, "Folder to write to; made if it is missing")->required();
  c->add_flag("--packed", a.packed, "As they are stored, under their packed names");

  c = command(app, "compress", "Compresses one file", status,
              [&a] { return compress(a.in, a.out); });
  c->add_option("in", a.in, "The plain file")->required();
  c->add_option("out", a.out, "The packed file to write")->required();

  c = command(app, "expand", "Expands one file", status, [&a] { return expand(a.in, a.out); });
  c->add_option("in", a.in, "The packed file")->required();
  c->add_option("out", a.out, "The plain file to write")->required();

  c = command(app, "sample", "Makes the 56 files of the sample product", status,
              [&a] { return sample(a.folder); });
  c->add_option("--to", a.folder, "Folder to write to; made if it is missing")->required();
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("zevpack builds and checks packages of the ZEV Screen Recorder setup.");
  app.name("zevpack");
  app.require_subcommand(1);
  Arguments arguments;
  int status = 0;
  addCommands(app, arguments, status);
  try {
    app.parse(argc, argv);
    return status;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : wrongUse;
  } catch (const ToolError& error) {
    std::fprintf(stderr, "zevpack: %s\n", error.what());
    return 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zevpack: %s\n", error.what());
    return 1;
  }
}
