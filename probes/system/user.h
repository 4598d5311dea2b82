// The computer's name and the account that the program runs in.
#pragma once

#include <cstddef>
#include <span>

#include "report/probe_context.h"

namespace hostscope {

// Characters of an account name and of a domain, terminator included.
inline constexpr std::size_t kAccountNameSize = 512;

struct TokenAccount {
  char name[kAccountNameSize] = {};
  char domain[kAccountNameSize] = {};
};

// Account and domain of the calling thread's access token, or of the process when the thread has
// none. False, both empty, on Windows 95/98/Me, which have no tokens, and whenever the token, its
// user or the name of that account cannot be had.
bool LookupTokenAccount(const ProbeContext& context, TokenAccount& account);

// The NetBIOS name, at most 15 characters; false, the text empty, when the system does not give
// one.
bool ReadComputerName(ProbeContext& context, std::span<char> text);

// The token's account name, else the name the user logged on with; false when there is neither.
bool ReadUserName(ProbeContext& context, std::span<char> text);

// The domain of the token's account; false, the text empty, when there is none.
bool ReadDomainName(ProbeContext& context, std::span<char> text);

}  // namespace hostscope
