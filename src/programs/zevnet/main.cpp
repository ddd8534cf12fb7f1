#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>

#include "programs/zevnet/zevnet.h"
#if defined(_WIN32)
#include "programs/zevnet/win32_terminal.h"
#else
#include "programs/zevnet/posix_terminal.h"
#endif

namespace {

using zev::netcat::Wishes;

// The system that this runs on.
#if defined(_WIN32)
using ThisMachine = zev::win32::SocketMachine;
using ThisTerminal = zev::netcat::Win32Terminal;
#else
using ThisMachine = zev::posix::Machine;
using ThisTerminal = zev::netcat::PosixTerminal;
#endif

constexpr int wrongUse = 2;
constexpr int highestPort = 65535;

/// Nobody asks for boxes here.
class NoBoxes final : public zev::Dialogs {
 public:
  zev::BoxAnswer MsgBox(zev::TextView, std::int32_t, zev::TextView) override {
    return zev::BoxAnswer::OK;
  }
  zev::Text InputBox(zev::TextView, zev::TextView, zev::TextView) override { return {}; }
  zev::Text defaultTitle() override { return u"zevnet"; }
};

void addCommonOptions(CLI::App& command, Wishes& wishes) {
  command.add_flag("--udp", wishes.udp, "Datagrams instead of a connection");
  command.add_flag("--close", wishes.close,
                   "Close once the whole input is sent and the peer, who is told so, has closed");
  command
      .add_option("--idle", wishes.idle,
                  "End when nothing was sent or received for so many seconds")
      ->check(CLI::Range(0.001, 86400.0));
  command
      .add_option("--timeout", wishes.timeout,
                  "Give up a peer that does not answer, or with --close does not close, for so "
                  "many seconds")
      ->check(CLI::Range(0.001, 86400.0))
      ->capture_default_str();
  command.add_flag("--trace", wishes.trace, "Tell each step of the sockets on standard error");
}

void addCommands(CLI::App& app, Wishes& wishes) {
  CLI::App& connect = *app.add_subcommand(
      "connect", "Connects to a host: standard input goes out, what comes to standard output");
  connect.add_option("host", wishes.host, "Name or dotted address")->required();
  connect.add_option("port", wishes.port, "Port of the host")
      ->required()
      ->check(CLI::Range(1, highestPort));
  addCommonOptions(connect, wishes);

  CLI::App& listen =
      *app.add_subcommand("listen", "Waits for a connection, or for datagrams, and does the same");
  listen.add_option("port", wishes.port, "Port to listen on; 0 for any free one, which is told")
      ->required()
      ->check(CLI::Range(0, highestPort));
  listen.add_option("--bind", wishes.address, "Address of this machine to listen on")
      ->capture_default_str();
  listen.add_flag("--keep", wishes.keep, "Take connections on and on, several at once too");
  addCommonOptions(listen, wishes);
  listen.callback([&wishes] { wishes.listen = true; });
}

/// The exit status behind the help.
int helpWritten() {
  if (std::cout.flush()) return 0;
  std::fputs("zevnet: cannot write to standard output\n", stderr);
  return 1;
}

int runOnThisMachine(const Wishes& wishes) {
  ThisTerminal::openMissingStreams();
  ThisMachine machine;
  NoBoxes boxes;
  zev::modEventSocket module({machine.sockets(), machine.windows(), machine.kernel(), boxes});
  ThisTerminal terminal(machine);
  return zev::netcat::run(wishes, module, terminal);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("zevnet connects standard input and output with the network.");
  app.name("zevnet");
  app.require_subcommand(0, 1);
  Wishes wishes;
  addCommands(app, wishes);
  try {
    app.parse(argc, argv);
    // Asked for here, a word that is no command has been named by then.
    if (app.get_subcommands().empty()) throw CLI::RequiredError("A subcommand");
    return runOnThisMachine(wishes);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? helpWritten() : wrongUse;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zevnet: %s\n", error.what());
    return 1;
  }
}
