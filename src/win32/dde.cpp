#include "win32/dde.h"

#include <algorithm>
#include <string>

#include "runtime/error.h"
#include "win32/ansi.h"
#include "win32/windows_api.h"
// The header of DDE management needs the system's before it.
#include <ddeml.h>

namespace zev::win32 {
namespace {

constexpr std::int32_t milliseconds = 100;  // of a tenth of a second
constexpr std::int32_t longestTimeout = 65535;

HCONV conversationOf(void* conversation) { return static_cast<HCONV>(conversation); }

/// The library's callback. A client without links has nothing to do in it.
HDDEDATA CALLBACK ignore(UINT, UINT, HCONV, HSZ, HSZ, HDDEDATA, ULONG_PTR, ULONG_PTR) {
  return nullptr;
}

/// A name that the library holds for as long as this.
class Name {
 public:
  Name(DWORD instance, TextView text)
      : instance_(instance),
        handle_(::DdeCreateStringHandleA(instance, ansiArgument(text).c_str(), CP_WINANSI)) {}
  ~Name() {
    if (handle_ != nullptr) ::DdeFreeStringHandle(instance_, handle_);
  }
  Name(const Name&) = delete;
  Name& operator=(const Name&) = delete;

  HSZ get() const { return handle_; }

 private:
  DWORD instance_;
  HSZ handle_;
};

[[noreturn]] void noAnswer() { throw RuntimeError(ErrorNumber::NoForeignApplicationResponded); }

}  // namespace

Win32Dde::~Win32Dde() {
  disconnect();
  if (instance_ != 0) ::DdeUninitialize(instance_);
}

void Win32Dde::join() {
  if (instance_ != 0) return;
  DWORD instance = 0;
  if (::DdeInitializeA(&instance, ignore, APPCMD_CLIENTONLY, 0) == DMLERR_NO_ERROR) {
    instance_ = instance;
  }
}

void Win32Dde::disconnect() {
  if (conversation_ != nullptr) ::DdeDisconnect(conversationOf(conversation_));
  conversation_ = nullptr;
}

void Win32Dde::connect() {
  join();
  const std::size_t bar = std::min(topic_.find(u'|'), topic_.size());
  const Name service(instance_, TextView(topic_).substr(0, bar));
  const Name topic(instance_, TextView(topic_).substr(std::min(bar + 1, topic_.size())));
  conversation_ = ::DdeConnect(instance_, service.get(), topic.get(), nullptr);
  if (conversation_ == nullptr) noAnswer();
}

/// A new topic ends the conversation.
void Win32Dde::LinkTopic(TextView topic) {
  disconnect();
  topic_ = topic;
}

/// Commands have no item.
void Win32Dde::LinkItem(TextView) {}

void Win32Dde::LinkMode(std::int32_t mode) {
  disconnect();
  if (mode != 0) connect();
}

/// A negative number is the longest time.
void Win32Dde::LinkTimeout(std::int32_t tenths) {
  timeout_ = tenths < 0 ? longestTimeout : std::min(tenths, longestTimeout);
}

/// While it waits for the answer, the library dispatches what comes for the program's windows.
void Win32Dde::LinkExecute(TextView command) {
  if (conversation_ == nullptr) noAnswer();
  std::string bytes = ansiArgument(command);
  const HDDEDATA answer = ::DdeClientTransaction(
      reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size() + 1),
      conversationOf(conversation_), nullptr, 0, XTYP_EXECUTE,
      static_cast<DWORD>(timeout_ * milliseconds), nullptr);
  if (answer == nullptr) noAnswer();
}

}  // namespace zev::win32
