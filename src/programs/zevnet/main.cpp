#include <cstdio>
#include <iostream>

#include "programs/command_line/command_line.h"
#include "programs/zevnet/zevnet.h"
#if defined(_WIN32)
#include "programs/zevnet/win32_terminal.h"
#else
#include "programs/zevnet/posix_terminal.h"
#endif

namespace {

using zev::netcat::Wishes;
using namespace zev::command_line;

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

void addCommonOptions(Command& command, Wishes& wishes) {
  command.flag("--udp", wishes.udp, "Datagrams instead of a connection");
  command.flag("--close", wishes.close,
               "Close once the whole input is sent and the peer, who is told so, has closed");
  command.option("--idle", wishes.idle, "End when nothing was sent or received for so many seconds")
      .within(0.001, 86400.0);
  command
      .option("--timeout", wishes.timeout,
              "Give up a peer that does not answer, or with --close does not close, for so many "
              "seconds")
      .within(0.001, 86400.0)
      .showsDefault();
  command.flag("--trace", wishes.trace, "Tell each step of the sockets on standard error");
}

void addConnect(CommandLine& line, Wishes& wishes) {
  Command connect = line.command(
      "connect", "Connects to a host: standard input goes out, what comes to standard output");
  connect.option("host", wishes.host, "Name or dotted address").required();
  connect.option("port", wishes.port, "Port of the host").required().within(1, highestPort);
  addCommonOptions(connect, wishes);
}

void addListen(CommandLine& line, Wishes& wishes) {
  Command listen =
      line.command("listen", "Waits for a connection, or for datagrams, and does the same");
  listen.option("port", wishes.port, "Port to listen on; 0 for any free one, which is told")
      .required()
      .within(0, highestPort);
  listen.option("--bind", wishes.address, "Address of this machine to listen on").showsDefault();
  listen.flag("--keep", wishes.keep, "Take connections on and on, several at once too");
  addCommonOptions(listen, wishes);
  listen.then([&wishes] { wishes.listen = true; });
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
  CommandLine line("zevnet", "zevnet connects standard input and output with the network.");
  Wishes wishes;
  addConnect(line, wishes);
  addListen(line, wishes);
  try {
    const Outcome outcome = line.read(wordsOf(argc, argv), std::cout, std::cerr);
    if (outcome == Outcome::Taken) return runOnThisMachine(wishes);
    return outcome == Outcome::Helped ? helpWritten() : wrongUse;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zevnet: %s\n", error.what());
    return 1;
  }
}
