#include "probes/system/user.h"

#include "platform/win32.h"
#include "util/handles.h"
#include "util/heap.h"
#include "util/text.h"

namespace hostscope {
namespace {

bool OpenToken(KernelHandle& token) {
  if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, token.Receive())) return true;
  if (GetLastError() != ERROR_NO_TOKEN) return false;
  return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive()) != 0;
}

// The token's user record, which holds the address of a security identifier behind it in the same
// block; absent when it cannot be read.
HeapBuffer ReadTokenUser(HANDLE token) {
  DWORD size = 0;
  if (!GetTokenInformation(token, TokenUser, nullptr, 0, &size) &&
      GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
    return {};
  }
  HeapBuffer user(size);
  if (!user.present() || size < sizeof(TOKEN_USER)) return {};
  if (!GetTokenInformation(token, TokenUser, user.data(), size, &size)) return {};
  return user;
}

}  // namespace

bool LookupTokenAccount(const ProbeContext& context, TokenAccount& account) {
  account = {};
  if (!context.is_nt()) return false;
  KernelHandle token;
  if (!OpenToken(token)) return false;
  const HeapBuffer user = ReadTokenUser(token.get());
  token.Close();
  if (!user.present()) return false;
  TokenAccount found;
  DWORD name_size = kAccountNameSize;
  DWORD domain_size = kAccountNameSize;
  SID_NAME_USE use = SidTypeUnknown;
  const auto* const record = reinterpret_cast<const TOKEN_USER*>(user.data());
  if (!LookupAccountSidA(nullptr, record->User.Sid, found.name, &name_size, found.domain,
                         &domain_size, &use)) {
    return false;
  }
  CopyText(account.name, found.name);
  CopyText(account.domain, found.domain);
  return true;
}

bool ReadComputerName(ProbeContext&, std::span<char> text) {
  char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
  DWORD size = sizeof name;
  text.front() = '\0';
  if (!GetComputerNameA(name, &size)) return false;
  name[MAX_COMPUTERNAME_LENGTH] = '\0';
  CopyText(text.data(), text.size(), name);
  return true;
}

bool ReadUserName(ProbeContext& context, std::span<char> text) {
  TokenAccount account;
  if (LookupTokenAccount(context, account)) {
    CopyText(text.data(), text.size(), account.name);
    return true;
  }
  char name[257] = {};
  DWORD size = sizeof name;
  text.front() = '\0';
  if (!GetUserNameA(name, &size)) return false;
  name[sizeof name - 1] = '\0';
  CopyText(text.data(), text.size(), name);
  return true;
}

bool ReadDomainName(ProbeContext& context, std::span<char> text) {
  TokenAccount account;
  const bool found = LookupTokenAccount(context, account);
  CopyText(text.data(), text.size(), account.domain);
  return found;
}

}  // namespace hostscope
