#include "platform/host/registry.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using namespace std::string_literals;

std::vector<std::string> SubkeyNames(const RegistryKey& key, bool sorted) {
  std::vector<std::string> names;
  for (std::size_t i = 0; const auto subkey = key.subkeys.At(i, sorted); ++i) {
    names.push_back(subkey->name);
  }
  return names;
}

std::shared_ptr<RegistryKey> Find(const Registry& registry, Hive hive, std::string_view path) {
  return Registry::FindBelow(registry.Root(hive), path);
}

TEST(Registry, SomeHivesAreViewsOnOthers) {
  Registry registry;
  registry.SetCurrentUser("S-1-5-21-1");
  registry.SetText("HKCR\\.txt", "", "txtfile");
  registry.SetText("HKEY_CURRENT_USER\\Software", "a", "b");
  EXPECT_NE(Find(registry, Hive::kLocalMachine, "Software\\Classes\\.TXT"), nullptr);
  EXPECT_NE(Find(registry, Hive::kUsers, "S-1-5-21-1\\Software"), nullptr);
  EXPECT_EQ(Find(registry, Hive::kUsers, ".DEFAULT"), nullptr);
  registry.MakeKey("HKCC\\a");
  registry.MakeKey("HKEY_DYN_DATA\\b");
  EXPECT_EQ(SubkeyNames(*registry.Root(Hive::kCurrentConfig), false),
            std::vector<std::string>{"a"});
  EXPECT_EQ(SubkeyNames(*registry.Root(Hive::kDynData), false), std::vector<std::string>{"b"});
}

TEST(Registry, OrderOfSubkeys) {
  Registry registry;
  for (const char* name : {"zeta", "Alpha", "_x", "beta", "ALPHA"}) {
    registry.MakeKey("HKLM\\"s + name);
  }
  const auto root = registry.Root(Hive::kLocalMachine);
  using Names = std::vector<std::string>;
  EXPECT_EQ(SubkeyNames(*root, false), (Names{"zeta", "Alpha", "_x", "beta"}));
  EXPECT_EQ(SubkeyNames(*root, true), (Names{"Alpha", "beta", "zeta", "_x"}));
  registry.RemoveKey("HKLM\\ZETA");
  registry.MakeKey("HKLM\\Aachen");
  registry.MakeKey("HKLM\\zeta");
  EXPECT_EQ(SubkeyNames(*root, false), (Names{"Alpha", "_x", "beta", "Aachen", "zeta"}));
  EXPECT_EQ(SubkeyNames(*root, true), (Names{"Aachen", "Alpha", "beta", "zeta", "_x"}));
}

// Few items are searched one by one and many by their hashes: removing and adding again must leave
// both ways right, on either side of the limit.
TEST(Registry, RemovingAndAddingAmongFewAndMany) {
  for (const int count : {1, 7, 8, 9, 10, 300}) {
    Registry registry;
    const auto path = [](int i) { return "HKLM\\Key" + std::to_string(i); };
    for (int i = 0; i < count; ++i)
      registry.MakeKey(path(i));
    for (int i = 0; i < count; i += 2)
      EXPECT_TRUE(registry.RemoveKey(path(i))) << count;
    const auto root = registry.Root(Hive::kLocalMachine);
    EXPECT_EQ(root->subkeys.size(), static_cast<std::size_t>(count / 2));
    for (int i = 0; i < count; ++i) {
      EXPECT_EQ(root->subkeys.Find("KEY" + std::to_string(i)) != nullptr, i % 2 == 1) << count;
    }
    for (int i = 0; i < 1000; ++i) {
      registry.MakeKey("HKLM\\Other");
      EXPECT_TRUE(registry.RemoveKey("HKLM\\other")) << count;
    }
    for (int i = 0; i < count; ++i)
      registry.MakeKey(path(i));
    EXPECT_EQ(root->subkeys.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(SubkeyNames(*root, true).size(), static_cast<std::size_t>(count));
    EXPECT_EQ(root->subkeys.At(static_cast<std::size_t>(count), false), nullptr);
  }
}

TEST(Registry, RemovedKeysAreMarkedWithAllBelow) {
  Registry registry;
  registry.MakeKey("HKLM\\a\\b\\c");
  const auto deep = Find(registry, Hive::kLocalMachine, "a\\b\\c");
  EXPECT_TRUE(registry.RemoveKey("HKLM\\a\\b\\"));
  EXPECT_TRUE(deep->removed);
  EXPECT_NE(Find(registry, Hive::kLocalMachine, "a"), nullptr);
  EXPECT_FALSE(registry.RemoveKey("HKLM\\a\\b\\c"));
  EXPECT_FALSE(registry.RemoveKey("HKLM"));
}

TEST(Registry, ADeepTreeEndsWithoutRecursion) {
  Registry registry;
  std::string path = "HKLM";
  for (int i = 0; i < 100000; ++i)
    path += "\\k";
  registry.MakeKey(path);
  EXPECT_TRUE(registry.RemoveKey("HKLM\\k\\k"));
  registry.MakeKey(path);
}

TEST(RegistryDeathTest, APathWithoutHive) {
  Registry registry;
  EXPECT_DEATH(registry.MakeKey("Software\\x"), "\"Software\" is no hive");
}

}  // namespace
}  // namespace host
