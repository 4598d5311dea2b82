#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/advapi32.h"
#include "platform/host/code_page.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/security_id.h"

namespace host {
namespace {

struct Account {
  std::string name;
  std::string domain;
  std::string sid;  // as bytes
};

// A token stands for the account itself or for the one that the thread imitates.
struct Token : Object {
  Token(Account token_account, DWORD access)
      : Object("token"), account(std::move(token_account)), granted(access) {}

  Account account;
  DWORD granted;
};

Account ProcessAccount(const User& user) {
  return {user.account, user.domain, SecurityIdBytes(user.sid).value_or("")};
}

std::optional<Account> ThreadAccount(const User& user) {
  if (!user.imitated) return std::nullopt;
  const std::string_view text = *user.imitated;
  const std::size_t backslash = text.find('\\');
  Account account = ProcessAccount(user);
  if (backslash != std::string_view::npos) account.domain = text.substr(0, backslash);
  account.name = backslash == std::string_view::npos ? text : text.substr(backslash + 1);
  account.sid = NextSecurityId(account.sid);
  return account;
}

BOOL Fail(DWORD error) {
  SetLastError(error);
  return FALSE;
}

// True, with the last error set, when the call fails before it begins.
bool TokenCallFails(const char* function) {
  if (CallFails(function)) return true;
  if (CurrentMachine().IsNt()) return false;
  SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
  return true;
}

// What GetCurrentProcess and GetCurrentThread answer; asking them would count as a call of theirs.
constexpr std::intptr_t kCurrentProcess = -1;
constexpr std::intptr_t kCurrentThread = -2;

// The pseudo handle of the caller itself, or an open handle of that kind.
bool IsHandleOf(const char* kind, HANDLE handle, std::intptr_t pseudo_handle) {
  if (reinterpret_cast<std::intptr_t>(handle) == pseudo_handle) return true;
  const auto object = CurrentMachine().handles.Find(reinterpret_cast<std::uintptr_t>(handle));
  return object != nullptr && std::string_view(object->kind()) == kind;
}

BOOL GiveToken(Account account, DWORD access, PHANDLE token) {
  auto object = std::make_shared<Token>(std::move(account), access);
  *token = reinterpret_cast<HANDLE>(CurrentMachine().handles.Open(std::move(object)));
  return TRUE;
}

std::optional<Account> AccountOfSid(const User& user, std::string_view sid) {
  Account account = ProcessAccount(user);
  if (account.sid != sid) {
    const std::optional<Account> imitated = ThreadAccount(user);
    if (!imitated || imitated->sid != sid) return std::nullopt;
    account = *imitated;
  }
  if (account.name.empty()) return std::nullopt;
  return account;
}

bool Fits(std::string_view text, LPCSTR buffer, DWORD size) {
  return buffer != nullptr && text.size() < size;
}

// Copies the text with its zero, which the size does not count afterwards.
void GiveText(std::string_view text, LPSTR buffer, LPDWORD size) {
  std::memcpy(buffer, text.data(), text.size());
  buffer[text.size()] = '\0';
  *size = static_cast<DWORD>(text.size());
}

}  // namespace
}  // namespace host

BOOL WINAPI OpenThreadToken(HANDLE thread, DWORD access, BOOL, PHANDLE token) {
  if (host::TokenCallFails("OpenThreadToken")) return FALSE;
  if (!host::IsHandleOf("thread", thread, host::kCurrentThread)) {
    return host::Fail(ERROR_INVALID_HANDLE);
  }
  if (token == nullptr) return host::Fail(ERROR_INVALID_PARAMETER);
  const auto account = host::ThreadAccount(host::CurrentMachine().user);
  if (!account) return host::Fail(ERROR_NO_TOKEN);
  return host::GiveToken(*account, access, token);
}

BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token) {
  if (host::TokenCallFails("OpenProcessToken")) return FALSE;
  if (!host::IsHandleOf("process", process, host::kCurrentProcess)) {
    return host::Fail(ERROR_INVALID_HANDLE);
  }
  if (token == nullptr) return host::Fail(ERROR_INVALID_PARAMETER);
  return host::GiveToken(host::ProcessAccount(host::CurrentMachine().user), access, token);
}

BOOL WINAPI GetTokenInformation(HANDLE handle, TOKEN_INFORMATION_CLASS information, LPVOID buffer,
                                DWORD size, LPDWORD needed) {
  if (host::TokenCallFails("GetTokenInformation")) return FALSE;
  const auto token =
      host::CurrentMachine().handles.FindAs<host::Token>(reinterpret_cast<std::uintptr_t>(handle));
  if (token == nullptr) return host::Fail(ERROR_INVALID_HANDLE);
  if ((token->granted & TOKEN_QUERY) == 0) return host::Fail(ERROR_ACCESS_DENIED);
  if (information != TokenUser || needed == nullptr) return host::Fail(ERROR_INVALID_PARAMETER);
  const std::string& sid = token->account.sid;
  *needed = static_cast<DWORD>(sizeof(TOKEN_USER) + sid.size());
  if (buffer == nullptr || size < *needed) return host::Fail(ERROR_INSUFFICIENT_BUFFER);
  BYTE* const sid_in_buffer = static_cast<BYTE*>(buffer) + sizeof(TOKEN_USER);
  const TOKEN_USER user = {{sid_in_buffer, 0}};
  std::memcpy(buffer, &user, sizeof(user));
  std::copy(sid.begin(), sid.end(), sid_in_buffer);
  return TRUE;
}

BOOL WINAPI LookupAccountSidA(LPCSTR system, PSID sid, LPSTR name, LPDWORD name_size, LPSTR domain,
                              LPDWORD domain_size, PSID_NAME_USE use) {
  if (host::TokenCallFails("LookupAccountSidA")) return FALSE;
  if (sid == nullptr || name_size == nullptr || domain_size == nullptr || use == nullptr) {
    return host::Fail(ERROR_INVALID_PARAMETER);
  }
  // Other computers cannot be asked.
  if (system != nullptr && *system != '\0' &&
      !host::EqualNoCase(system, host::CurrentMachine().computer_name)) {
    return host::Fail(RPC_S_SERVER_UNAVAILABLE);
  }
  const std::optional<std::string> sid_bytes = host::SecurityIdAt(sid);
  if (!sid_bytes) return host::Fail(ERROR_INVALID_SID);
  const auto account = host::AccountOfSid(host::CurrentMachine().user, *sid_bytes);
  if (!account) return host::Fail(ERROR_NONE_MAPPED);
  if (!host::Fits(account->name, name, *name_size) ||
      !host::Fits(account->domain, domain, *domain_size)) {
    *name_size = static_cast<DWORD>(account->name.size() + 1);
    *domain_size = static_cast<DWORD>(account->domain.size() + 1);
    return host::Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  host::GiveText(account->name, name, name_size);
  host::GiveText(account->domain, domain, domain_size);
  *use = SidTypeUser;
  return TRUE;
}

BOOL WINAPI GetUserNameA(LPSTR buffer, LPDWORD size) {
  if (host::CallFails("GetUserNameA")) return FALSE;
  if (size == nullptr) return host::Fail(ERROR_INVALID_PARAMETER);
  const host::Machine& machine = host::CurrentMachine();
  const std::string& name = machine.user.name;
  if (name.empty()) return host::Fail(ERROR_NOT_LOGGED_ON);
  const DWORD needed = static_cast<DWORD>(name.size() + 1);
  if (!host::Fits(name, buffer, *size)) {
    *size = needed;
    return host::Fail(machine.IsNt() ? ERROR_INSUFFICIENT_BUFFER : ERROR_MORE_DATA);
  }
  host::GiveText(name, buffer, size);
  *size = needed;  // unlike the other functions this one counts the zero
  return TRUE;
}
