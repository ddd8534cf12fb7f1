#include <sys/resource.h>
#include <sys/socket.h>

#include <ctime>

#include "posix/on_the_machine.h"

namespace zev::posix {
namespace {

class Selecting : public OnTheMachine {};

using Events = std::vector<Told>;

// ---- no room

TEST_F(Selecting, ARestEndsByItselfOnceThereIsRoom) {
  const std::int32_t listener = newListener();
  const Peer caller = Peer::connectedTo(portOf(listener));
  ASSERT_TRUE(pumpUntil([&] { return wasTold(listener, ws::fdAccept); }));
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{0, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);
  SocketAddress peer;
  EXPECT_EQ(sockets().accept(listener, peer), ws::noSocket);
  EXPECT_EQ(lastError(), ws::error::tooManyFiles);
  takeTold();
  // Longer than a rest lasts: it goes on, and takes next to no processor time.
  const std::clock_t begin = std::clock();
  EXPECT_FALSE(machine->dispatch(600));
  EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC / 20);
  EXPECT_EQ(takeTold(), Events());
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_TRUE(pumpUntil([&] { return wasTold(listener, ws::fdAccept); }));
  EXPECT_GT(sockets().accept(listener, peer), 0);
}

// ---- connecting

TEST_F(Selecting, TellsOfAConnectionOnceAndOfRoomBehindIt) {
  const Peer listener = Peer::listening();
  const std::int32_t socket = newSocket();
  select(socket);
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), ws::failed);
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdConnect, 0}, {socket, ws::fdWrite, 0}}));
  EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), ws::failed);
  EXPECT_EQ(lastError(), ws::error::alreadyConnected);
}

TEST_F(Selecting, TellsWhyNoConnectionCame) {
  const std::uint16_t port = Peer::listening().port();  // closed again
  const std::int32_t socket = newSocket();
  select(socket);
  EXPECT_EQ(sockets().connect(socket, loopback(port)), ws::failed);
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdConnect, ws::error::refused}}));
  EXPECT_EQ(send(socket, "x"), ws::failed);
  EXPECT_EQ(lastError(), ws::error::notConnected);
}

TEST_F(Selecting, ConnectsAgainBehindAFailure) {
  const std::uint16_t closed = Peer::listening().port();
  const std::int32_t socket = newSocket();
  select(socket);
  sockets().connect(socket, loopback(closed));
  settle();
  takeTold();
  const Peer listener = Peer::listening();
  EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), ws::failed);
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdConnect, 0}, {socket, ws::fdWrite, 0}}));
}

TEST_F(Selecting, TellsOfAnUnreachableNetworkByTheEvent) {
  const std::int32_t socket = newSocket();
  select(socket);
  SocketAddress elsewhere = loopback(80);
  elsewhere.address = static_cast<std::int32_t>(::inet_addr("192.0.2.1"));
  EXPECT_EQ(sockets().connect(socket, elsewhere), ws::failed);
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdConnect, ws::error::networkUnreachable}}));
}

TEST_F(Selecting, TellsOfConnectionThenDataThenEndThatCameTogether) {
  const Peer listener = Peer::listening();
  const std::int32_t socket = newSocket();
  select(socket);
  sockets().connect(socket, loopback(listener.port()));
  Peer peer = listener.accept();
  peer.send("all");
  peer.close();
  settle();
  EXPECT_EQ(
      takeTold(),
      (Events{{socket, ws::fdConnect, 0}, {socket, ws::fdWrite, 0}, {socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 10), "all");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
}

TEST_F(Selecting, TellsOfAConnectionThatWasResetAtOnce) {
  const Peer listener = Peer::listening();
  const std::int32_t socket = newSocket();
  select(socket);
  sockets().connect(socket, loopback(listener.port()));
  Peer peer = listener.accept();
  peer.reset();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdConnect, 0},
                                {socket, ws::fdClose, ws::error::connectionReset}}));
}

// ---- reading

TEST_F(Selecting, TellsOfDataOnceUntilTheyAreRead) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("one");
  settle();
  peer->send("two");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100), "onetwo");
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(receive(socket, 100), "[10035]");
  peer->send("three");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
}

TEST_F(Selecting, TellsAgainOfDataThatAReadHasLeft) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("abcdef");
  settle();
  takeTold();
  for (const char* part : {"ab", "cd"}) {
    EXPECT_EQ(receive(socket, 2), part);
    settle();
    EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}})) << part;
  }
  EXPECT_EQ(receive(socket, 2), "ef");
  settle();
  EXPECT_EQ(takeTold(), Events());
}

TEST_F(Selecting, TellsAgainAtOnceWhereTheSystemHasToldOfMore) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send(std::string(100, 'x'));
  ASSERT_TRUE(pumpUntil([&] { return wasTold(socket, ws::fdRead); }));
  EXPECT_EQ(receive(socket, 10), std::string(10, 'x'));
  EXPECT_EQ(windows().waiting(), 0u) << "nobody has asked yet";
  ASSERT_TRUE(machine->dispatch(1000));
  int atOnce = 0;
  while (receive(socket, 1) == "x" && windows().waiting() == 1) {
    takeTold();
    EXPECT_TRUE(windows().dispatch());
    EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
    ++atOnce;
  }
  EXPECT_GT(atOnce, 3);
  EXPECT_LT(atOnce, 50) << "others have their turn";
  ASSERT_TRUE(machine->dispatch(1000));
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  const std::size_t left = 89 - static_cast<std::size_t>(atOnce);
  EXPECT_EQ(receive(socket, left - 1).size(), left - 1);
  ASSERT_TRUE(machine->dispatch(1000));
  EXPECT_EQ(receive(socket, 1), "x");
  takeTold();
  settle();
  EXPECT_EQ(takeTold(), Events()) << "there are none left";
  peer->close();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
}

TEST_F(Selecting, TellsAgainBehindALook) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("abc");
  settle();
  takeTold();
  EXPECT_EQ(receive(socket, 10, ws::peek), "abc");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 10), "abc");
  settle();
  EXPECT_EQ(takeTold(), Events());
}

TEST_F(Selecting, TellsOfDataBehindUrgentOnes) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("before");
  peer->send("!", MSG_OOB);
  peer->send("behind");
  settle();
  std::string all;
  while (!takeTold().empty()) {
    all += receive(socket, 100);
    settle();
  }
  EXPECT_EQ(all, "beforebehind");
  peer->close();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
}

// ---- the end

TEST_F(Selecting, TellsOfTheEndBehindTheLastByte) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("abcd");
  peer->close();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 2), "ab");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 2), "cd");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
  EXPECT_EQ(receive(socket, 2), "");
  EXPECT_EQ(receive(socket, 2), "");
  settle();
  EXPECT_EQ(takeTold(), Events());
}

TEST_F(Selecting, TellsOfAnEndThatFollowsLater) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("abcd");
  settle();
  takeTold();
  peer->close();
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(receive(socket, 100), "abcd");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
}

TEST_F(Selecting, TellsOfAnEndThatAReadFoundFirst) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->close();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_EQ(receive(socket, 10), "");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
}

TEST_F(Selecting, SendsOnBehindTheEndOfThePeer) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->halfClose();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
  EXPECT_EQ(send(socket, "late"), 4);
  EXPECT_EQ(peer->receive(4), "late");
  settle();
  EXPECT_EQ(takeTold(), Events());
}

TEST_F(Selecting, TellsOfRoomAlsoBehindTheEndOfThePeer) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->halfClose();
  settle();
  takeTold();
  const std::string much(65536, 'x');
  std::size_t total = 0;
  for (std::int32_t sent = 0; (sent = send(socket, much)) > 0;) {
    total += static_cast<std::size_t>(sent);
  }
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(peer->receive(total).size(), total);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdWrite, 0}}));
}

TEST_F(Selecting, TellsOfAReset) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->reset();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, ws::error::connectionReset}}));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(receive(socket, 10), "[10054]");
    EXPECT_EQ(send(socket, "x"), ws::failed);  // and no signal strikes
    EXPECT_EQ(lastError(), ws::error::connectionReset);
  }
  settle();
  EXPECT_EQ(takeTold(), Events());
}

TEST_F(Selecting, TellsOfAResetThatACallFoundFirst) {
  for (const bool bySending : {false, true}) {
    std::unique_ptr<Peer> peer;
    const std::int32_t socket = newConnection(peer);
    peer->reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    if (bySending) {
      EXPECT_EQ(send(socket, "x"), ws::failed);
      EXPECT_EQ(lastError(), ws::error::connectionReset);
    } else {
      EXPECT_EQ(receive(socket, 10), "[10054]");
    }
    settle();
    EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, ws::error::connectionReset}}));
  }
}

TEST_F(Selecting, TellsOfDataBeforeTheReset) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("abcdef");
  peer->reset();
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 4), "abcd");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 4), "ef");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, ws::error::connectionReset}}));
}

TEST_F(Selecting, TellsOfDataBeforeAResetThatComesWhileTheyWait) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("abcdef");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  peer->reset();
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(receive(socket, 100), "abcdef");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, ws::error::connectionReset}}));
}

// ---- sending

TEST_F(Selecting, TellsOfRoomOnceAfterThereWasNone) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  EXPECT_EQ(send(socket, "small"), 5);
  EXPECT_EQ(peer->receive(5), "small");
  settle();
  EXPECT_EQ(takeTold(), Events());  // there was room all the time
  const std::string much(1 << 20, 'x');
  std::size_t total = 0;
  for (std::int32_t sent = 0; (sent = send(socket, much)) > 0;) {
    total += static_cast<std::size_t>(sent);
  }
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(peer->receive(total).size(), total);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdWrite, 0}}));
}

// ---- accepting

TEST_F(Selecting, TellsOfEachConnectionBehindTheTakingOfTheLast) {
  const std::int32_t listener = newListener();
  const Peer first = Peer::connectedTo(portOf(listener));
  const Peer second = Peer::connectedTo(portOf(listener));
  settle();
  EXPECT_EQ(takeTold(), (Events{{listener, ws::fdAccept, 0}}));
  SocketAddress from;
  const std::int32_t one = sockets().accept(listener, from);
  EXPECT_GT(one, 0);
  EXPECT_EQ(ntohs(from.port), first.port());
  EXPECT_EQ(from.address, loopback(0).address);
  settle();
  EXPECT_EQ(takeTold(), (Events{{listener, ws::fdAccept, 0}, {one, ws::fdWrite, 0}}));
  const std::int32_t two = sockets().accept(listener, from);
  EXPECT_EQ(ntohs(from.port), second.port());
  settle();
  EXPECT_EQ(takeTold(), (Events{{two, ws::fdWrite, 0}}));
  EXPECT_EQ(sockets().accept(listener, from), ws::noSocket);
  EXPECT_EQ(lastError(), ws::error::wouldBlock);
  const Peer third = Peer::connectedTo(portOf(listener));
  settle();
  EXPECT_EQ(takeTold(), (Events{{listener, ws::fdAccept, 0}}));
}

TEST_F(Selecting, TellsAnAcceptedSocketWhatCameBefore) {
  const std::int32_t listener = newListener();
  Peer peer = Peer::connectedTo(portOf(listener));
  peer.send("early");
  peer.close();
  settle();
  takeTold();
  SocketAddress from;
  const std::int32_t socket = sockets().accept(listener, from);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdWrite, 0}, {socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100), "early");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, 0}}));
}

TEST_F(Selecting, TellsAnAcceptedSocketOfAResetBefore) {
  const std::int32_t listener = newListener();
  Peer peer = Peer::connectedTo(portOf(listener));
  peer.send("early");
  peer.reset();
  settle();
  takeTold();
  SocketAddress from;
  const std::int32_t socket = sockets().accept(listener, from);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100), "early");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdClose, ws::error::connectionReset}}));
}

TEST_F(Selecting, InheritsWindowMessageAndMask) {
  const std::int32_t listener = newSocket();
  EXPECT_EQ(sockets().bind(listener, loopback(0)), 0);
  const WindowHandle other = newWindow();
  EXPECT_EQ(sockets().WSAAsyncSelect(listener, other, 1234, ws::fdAccept | ws::fdClose), 0);
  EXPECT_EQ(sockets().listen(listener, 5), 0);
  Peer peer = Peer::connectedTo(portOf(listener));
  settle();
  SocketAddress from;
  const std::int32_t socket = sockets().accept(listener, from);
  EXPECT_EQ(receive(socket, 10), "[10035]");  // it does not block
  peer.close();
  settle();
  ASSERT_EQ(others.size(), 2u);
  EXPECT_EQ(others[1].window, other);
  EXPECT_EQ(others[1].message, 1234u);
  EXPECT_EQ(others[1].wParam, static_cast<std::uintptr_t>(socket));
  EXPECT_EQ(others[1].lParam, ws::fdClose);
}

// ---- selecting and closing

TEST_F(Selecting, SeesWhatCameBeforeIt) {
  const Peer listener = Peer::listening();
  const std::int32_t socket = newSocket();
  EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), 0);  // it blocks so far
  Peer peer = listener.accept();
  peer.send("abc");
  peer.close();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  select(socket);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdWrite, 0}, {socket, ws::fdRead, 0}}));
}

TEST_F(Selecting, EndsAndBeginsAnew) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  select(socket, 0);
  peer->send("abc");
  settle();
  EXPECT_EQ(takeTold(), Events());
  EXPECT_EQ(receive(socket, 1), "a");
  select(socket);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdWrite, 0}, {socket, ws::fdRead, 0}}));
  select(socket, ws::fdRead);
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
}

TEST_F(Selecting, WantsAWindow) {
  const std::int32_t socket = newSocket();
  for (const std::int32_t events : {allEvents, ws::fdRead}) {
    EXPECT_EQ(sockets().WSAAsyncSelect(socket, 0, eventMessage, events), ws::failed) << events;
    EXPECT_EQ(lastError(), ws::error::invalidArgument) << events;
  }
  EXPECT_EQ(sockets().WSAAsyncSelect(socket, 0, 0, 0), 0) << "no event, and nobody to tell";
}

TEST_F(Selecting, NeverTellsANewSocketOfAnOldOne) {
  std::unique_ptr<Peer> peer;
  const std::int32_t old = newConnection(peer);
  peer->send("abc");
  // Posts what has come, but dispatches only the message that was there before.
  windows().post({window, 1, 0, 0});
  for (int i = 0; i < 3; ++i) windows().post({window, 1, 0, 0});
  EXPECT_EQ(sockets().closesocket(old), 0);
  std::unique_ptr<Peer> fresh;
  const std::int32_t socket = newConnection(fresh);
  EXPECT_NE(socket, old);
  settle();
  for (const Told& each : takeTold()) EXPECT_NE(each.socket, socket);
  EXPECT_EQ(sockets().closesocket(old), ws::failed);
  EXPECT_EQ(lastError(), ws::error::notSocket);
}

TEST_F(Selecting, KeepsWhatWasPostedOfASocketThatIsClosed) {
  std::unique_ptr<Peer> first;
  std::unique_ptr<Peer> second;
  const std::int32_t one = newConnection(first);
  const std::int32_t two = newConnection(second);
  onTold = [&](const Told& each) {
    onTold = nullptr;
    EXPECT_EQ(sockets().closesocket(each.socket == one ? two : one), 0);
  };
  first->send("x");
  second->send("x");
  settle();
  EXPECT_EQ(told.size(), 2u);  // of both, one of which is gone
}

// ---- datagrams

TEST_F(Selecting, TellsOfEachDatagram) {
  const std::int32_t socket = newDatagramSocket();
  const Peer peer = Peer::forDatagrams();
  peer.sendTo(portOf(socket), "first");
  peer.sendTo(portOf(socket), "second");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100, ws::peek), "first");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100), "first");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100), "second");
  EXPECT_EQ(receive(socket, 1), "[10035]");
  settle();
  EXPECT_EQ(takeTold(), Events());
  peer.sendTo(portOf(socket), "");
  settle();
  EXPECT_EQ(takeTold(), (Events{{socket, ws::fdRead, 0}}));
  EXPECT_EQ(receive(socket, 100), "");
}

TEST_F(Selecting, TellsADatagramSocketThatNobodyTookItsDatagram) {
  const std::uint16_t closed = Peer::forDatagrams().port();
  const std::int32_t socket = newDatagramSocket();
  EXPECT_EQ(sockets().connect(socket, loopback(closed)), 0);
  EXPECT_EQ(send(socket, "x"), 1);
  settle();
  EXPECT_TRUE(wasTold(socket, ws::fdRead));
  EXPECT_EQ(receive(socket, 10), "[10054]");
  settle();
  takeTold();
  EXPECT_EQ(receive(socket, 10), "[10035]");
  EXPECT_EQ(send(socket, "x"), 1);
  EXPECT_EQ(send(socket, "y"), 1);  // what became of the one does not stop the other
}

// ---- many

TEST_F(Selecting, ServesAThousandConnections) {
  constexpr int many = 1000;
  const std::int32_t listener = newListener();
  const SocketAddress address = loopback(portOf(listener));
  std::vector<std::int32_t> clients;
  int echoed = 0;
  int closed = 0;
  onTold = [&](const Told& each) {
    EXPECT_EQ(each.error, 0);
    SocketAddress from;
    const bool client = each.socket <= clients.back() && each.socket >= clients.front();
    if (each.event == ws::fdAccept) {
      EXPECT_GT(sockets().accept(listener, from), 0);
    } else if (each.event == ws::fdConnect) {
      EXPECT_EQ(send(each.socket, "ping"), 4);
    } else if (each.event == ws::fdRead && !client) {
      EXPECT_EQ(send(each.socket, receive(each.socket, 100)), 4);
    } else if (each.event == ws::fdRead) {
      EXPECT_EQ(receive(each.socket, 100), "ping");
      EXPECT_EQ(sockets().closesocket(each.socket), 0);
      ++echoed;
    } else if (each.event == ws::fdClose) {
      EXPECT_EQ(sockets().closesocket(each.socket), 0);
      ++closed;
    }
  };
  for (int i = 0; i < many; ++i) {
    clients.push_back(newSocket());
    select(clients.back());
  }
  for (const std::int32_t each : clients) sockets().connect(each, address);
  EXPECT_TRUE(pumpUntil([&] { return closed == many; }));
  EXPECT_EQ(echoed, many);
  EXPECT_EQ(sockets().openSockets(), 1u);
}

}  // namespace
}  // namespace zev::posix
