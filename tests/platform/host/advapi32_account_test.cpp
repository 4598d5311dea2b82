#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/host/advapi32.h"
#include "platform/host/kernel32.h"
#include "platform/host/machine.h"
#include "platform/host/security_id.h"

namespace {

using namespace std::string_literals;

class Accounts : public testing::Test {
 protected:
  Accounts() {
    machine_.version.platform_id = 2;
    machine_.computer_name = "BENCH";
    machine_.user = {.name = "anna",
                     .account = "Anna",
                     .domain = "OFFICE",
                     .imitated = std::nullopt,
                     .sid = "S-1-5-21-1-2-3-1003",
                     .registry_key = std::nullopt};
  }

  // Asks for the size first, as a program does.
  std::vector<BYTE> UserRecord(HANDLE token) {
    DWORD size = 0;
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, nullptr, 0, &size));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    std::vector<BYTE> record(size);
    EXPECT_FALSE(GetTokenInformation(token, TokenUser, record.data(), size - 1, &size));
    EXPECT_TRUE(GetTokenInformation(token, TokenUser, record.data(), size, &size));
    return record;
  }
  static PSID SidOf(std::vector<BYTE>& record) {
    TOKEN_USER user;
    std::memcpy(&user, record.data(), sizeof(user));
    return user.User.Sid;
  }
  // "DOMAIN\NAME", or the error.
  static std::string NameOf(PSID sid, const char* system = nullptr) {
    char name[512];
    char domain[512];
    DWORD name_size = sizeof(name);
    DWORD domain_size = sizeof(domain);
    SID_NAME_USE use = SidTypeUnknown;
    if (!LookupAccountSidA(system, sid, name, &name_size, domain, &domain_size, &use)) {
      return std::to_string(GetLastError());
    }
    EXPECT_EQ(name_size, std::strlen(name));
    EXPECT_EQ(domain_size, std::strlen(domain));
    EXPECT_EQ(use, SidTypeUser);
    return std::string(domain) + "\\" + name;
  }

  host::Machine machine_;
  host::UseMachine use_{machine_};
};

TEST_F(Accounts, AThreadThatImitates) {
  const struct {
    const char* imitated;
    const char* expected;
  } rows[] = {{"Bert", "OFFICE\\Bert"}, {"LAB\\Cora", "LAB\\Cora"}};
  for (const auto& row : rows) {
    machine_.user.imitated = row.imitated;
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token));
    std::vector<BYTE> record = UserRecord(token);
    EXPECT_EQ(NameOf(SidOf(record)), row.expected);
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    record = UserRecord(token);
    EXPECT_EQ(SidOf(record), record.data() + sizeof(TOKEN_USER));
    EXPECT_EQ(NameOf(SidOf(record)), "OFFICE\\Anna");
  }
}

TEST_F(Accounts, Windows95HasNoTokens) {
  machine_.version.platform_id = 1;
  machine_.user.imitated = "Bert";
  HANDLE token = nullptr;
  DWORD size = 0;
  const BOOL results[] = {OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token),
                          OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token),
                          GetTokenInformation(nullptr, TokenUser, nullptr, 0, &size)};
  for (const BOOL result : results)
    EXPECT_FALSE(result);
  EXPECT_EQ(GetLastError(), ERROR_CALL_NOT_IMPLEMENTED);
  std::string sid = *host::SecurityIdBytes(machine_.user.sid);
  EXPECT_EQ(NameOf(sid.data()), "120");
}

TEST_F(Accounts, UserName) {
  const struct {
    DWORD platform_id;
    const char* user;
    DWORD room;
    DWORD error;  // 0: success
    DWORD size;
  } rows[] = {{2, "anna", 257, 0, 5},  {2, "anna", 5, 0, 5},   {2, "anna", 4, 122, 5},
              {1, "anna", 4, 234, 5},  {2, "anna", 0, 122, 5}, {1, "", 257, 1245, 257},
              {2, "", 257, 1245, 257}, {1, "anna", 257, 0, 5}};
  for (const auto& row : rows) {
    machine_.version.platform_id = row.platform_id;
    machine_.user.name = row.user;
    char buffer[257] = "#";
    DWORD size = row.room;
    SetLastError(0);
    EXPECT_EQ(GetUserNameA(buffer, &size), row.error == 0) << row.user << row.room;
    EXPECT_EQ(GetLastError(), row.error) << row.user << row.room;
    EXPECT_EQ(size, row.size) << row.user << row.room;
    EXPECT_STREQ(buffer, row.error == 0 ? row.user : "#");
  }
  DWORD size = 257;
  EXPECT_FALSE(GetUserNameA(nullptr, &size));
  EXPECT_EQ(size, 5u);
}

TEST(SecurityId, Texts) {
  const struct {
    const char* text;
    std::optional<std::string> record;
  } rows[] = {
      {"S-1-5-18", "\1\1\0\0\0\0\0\5\x12\0\0\0"s},
      {"S-1-281474976710655-4294967295", "\1\1\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s},
      {"S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16", std::nullopt},
      {"S-1-5-4294967296", std::nullopt},
      {"S-1-281474976710656-1", std::nullopt},
      {"S-1-5", std::nullopt},
      {"S-1-5-", std::nullopt},
      {"S-1-5-18-", std::nullopt},
      {"S-1-5--18", std::nullopt},
      {"S-2-5-18", std::nullopt},
      {"S-1-5-18x", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& row : rows)
    EXPECT_EQ(host::SecurityIdBytes(row.text), row.record) << row.text;
  EXPECT_EQ(host::NextSecurityId(*host::SecurityIdBytes("S-1-5-255")),
            host::SecurityIdBytes("S-1-5-256"));
}

}  // namespace
