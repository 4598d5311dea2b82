#include "platform/host/reg_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace host {
namespace {

using namespace std::string_literals;

const std::string kV4 = "REGEDIT4\r\n\r\n";
const std::string kV5 = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string kKey = "[HKEY_LOCAL_MACHINE\\K]\r\n";

std::string Utf16(std::u16string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string Shown(std::string_view bytes) {
  std::string shown;
  for (const char byte : bytes) {
    char text[5];
    const bool plain = byte >= ' ' && byte < 0x7F;
    std::snprintf(text, sizeof(text), plain ? "%c" : "<%02x>", byte & 0xFF);
    shown += text;
  }
  return shown;
}

// "key{name:type=data; subkey{...}}", values before subkeys.
std::string Shown(const RegistryKey& key) {
  std::string shown = Shown(key.name) + "{";
  for (std::size_t i = 0; const auto value = key.values.At(i, false); ++i) {
    char type[12];
    std::snprintf(type, sizeof(type), ":%x=", value->type);
    shown += Shown(value->name) + type + Shown(value->data) + ";";
  }
  for (std::size_t i = 0; const auto subkey = key.subkeys.At(i, false); ++i) {
    shown += Shown(*subkey);
  }
  return shown + "}";
}

// What is in the local machine's hive afterwards, without the hive's own name, or the error.
std::string Read(std::string_view bytes, Registry& registry) {
  if (const auto error = ReadRegText(bytes, registry)) {
    return std::to_string(error->line) + ": " + error->reason;
  }
  const std::string shown = Shown(*registry.Root(Hive::kLocalMachine));
  return shown.substr(sizeof("HKEY_LOCAL_MACHINE{") - 1);
}
std::string Read(std::string_view bytes) {
  Registry registry;
  return Read(bytes, registry);
}

TEST(RegFile, Values) {
  const struct {
    std::string line;
    std::string version_4;
    std::string version_5;
  } rows[] = {
      {R"("a"="text")", "a:1=text<00>;", "a:1=text<00>;"},
      {R"(@="")", ":1=<00>;", ":1=<00>;"},
      {R"(""="x")", ":1=x<00>;", ":1=x<00>;"},
      {R"("a\\b\"c"="\\\\s\\\"q\"\\")", "a\\b\"c:1=\\\\s\\\"q\"\\<00>;",
       "a\\b\"c:1=\\\\s\\\"q\"\\<00>;"},
      {R"("[x]=;"="[y]=;")", "[x]=;:1=[y]=;<00>;", "[x]=;:1=[y]=;<00>;"},
      {"\"@\"=\"C:\\\\\"", "@:1=C:\\<00>;", "@:1=C:\\<00>;"},
      {"\"a\x01\r\"=\"\t\r\x1A\"", "a<01><0d>:1=<09><0d><1a><00>;",
       "a<01><0d>:1=<09><0d><1a><00>;"},
      {"\"a\"=\"one\r\ntwo\n\"", "a:1=one<0d><0a>two<0a><00>;", "a:1=one<0d><0a>two<0a><00>;"},
      {R"("a"=dword:0000000a)", "a:4=<0a><00><00><00>;", "a:4=<0a><00><00><00>;"},
      {R"("a"=dword:FFFFfffe)", "a:4=<fe><ff><ff><ff>;", "a:4=<fe><ff><ff><ff>;"},
      {R"("a"=hex:01,FF,20)", "a:3=<01><ff> ;", "a:3=<01><ff> ;"},
      {R"("a"=hex:)", "a:3=;", "a:3=;"},
      {R"("a"=hex(0):)", "a:0=;", "a:0=;"},
      {R"("a"=hex(b):01,00,00,00,00,00,00,80)", "a:b=<01><00><00><00><00><00><00><80>;",
       "a:b=<01><00><00><00><00><00><00><80>;"},
      {R"("a"=hex(4):01,02)", "a:4=<01><02>;", "a:4=<01><02>;"},
      {R"("a"=hex(80000001):41,00)", "a:80000001=A<00>;", "a:80000001=A<00>;"},
      {R"("a"=hex(FFFF0007):41,00)", "a:ffff0007=A<00>;", "a:ffff0007=A<00>;"},
      {R"("a"=hex(2):25,61,00)", "a:2=%a<00>;", "a:2=?;"},
      {R"("a"=hex(2):25,00,AC,20,00,00)", "a:2=%<00><ac> <00><00>;", "a:2=%<80><00>;"},
      {R"("a"=hex(7):16,04,00,00,00,00)", "a:7=<16><04><00><00><00><00>;", "a:7=?<00><00>;"},
      {R"("a"=hex(1):41,00)", "a:1=A<00>;", "a:1=A;"},
      {"\"a\"=hex:01,02,\\\r\n  03,\\\n04", "a:3=<01><02><03><04>;", "a:3=<01><02><03><04>;"},
      {"\"a\"=hex(1):\\\r\n  41,00", "a:1=A<00>;", "a:1=A;"},
      {"\"a\"=hex:01\\\r\n,02", "a:3=<01><02>;", "a:3=<01><02>;"},
      {" \"a\" = dword:1 ; why", "a:4=<01><00><00><00>;", "a:4=<01><00><00><00>;"},
      {"\"a\"=hex:01 , 02 ; why", "a:3=<01><02>;", "a:3=<01><02>;"},
      {"\"a\"=\"x\"\r\n\"A\"=dword:2", "a:4=<02><00><00><00>;", "a:4=<02><00><00><00>;"},
      {"\"a\"=\"x\"\r\n\"b\"=\"y\"\r\n\"A\"=-", "b:1=y<00>;", "b:1=y<00>;"},
      {"@=\"x\"\r\n@=-\r\n\"none\"=-", "", ""},
  };
  for (const auto& row : rows) {
    for (const std::string end : {"", "\r\n", "\r\n \t\r\n", "\n", "\r\n\r\n; end"}) {
      EXPECT_EQ(Read(kV4 + kKey + row.line + end), "K{" + row.version_4 + "}}") << row.line;
      EXPECT_EQ(Read(kV5 + kKey + row.line + end), "K{" + row.version_5 + "}}") << row.line;
    }
  }
}

TEST(RegFile, Keys) {
  const struct {
    std::string lines;
    std::string expected;
  } rows[] = {
      {"[HKEY_LOCAL_MACHINE]\r\n@=\"x\"", ":1=x<00>;}"},
      {"[HKEY_LOCAL_MACHINE\\a\\b]\n[hkey_local_machine\\A\\c]", "a{b{}c{}}}"},
      {"[HKEY_LOCAL_MACHINE\\a]b[c]\n@=-", "a]b[c{}}"},
      {"[HKEY_LOCAL_MACHINE\\a] ; the first", "a{}}"},
      {"  [HKEY_LOCAL_MACHINE\\a b ]  ", "a b {}}"},
      {"[HKEY_LOCAL_MACHINE\\a\\b]\n[HKEY_LOCAL_MACHINE\\c]\n[-HKEY_LOCAL_MACHINE\\A]", "c{}}"},
      {"[-HKEY_LOCAL_MACHINE\\none\\x]\n[-HKEY_CURRENT_USER\\none]", "}"},
      {"[HKEY_CLASSES_ROOT\\.x]", "Software{Classes{.x{}}}}"},
      {"[HKEY_LOCAL_MACHINE\\-a]", "-a{}}"},
      {"; [HKEY_LOCAL_MACHINE\\a]\n \t; \"\n\n", "}"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(Read(kV4 + row.lines), row.expected) << row.lines;
}

TEST(RegFile, EncodingsOfText) {
  const std::string lines =
      "[HKEY_LOCAL_MACHINE\\\xC3\xA4]\n\"\xE2\x82\xAC\"=\"\xC3\xBC\xD0\x96\"\n";
  const std::string as_utf8 = "<e4>{<80>:1=<fc>?<00>;}}";
  const std::string as_bytes = "<c3><a4>{<e2><82><ac>:1=<c3><bc><d0><96><00>;}}";
  EXPECT_EQ(Read(kV5 + lines), as_utf8);
  EXPECT_EQ(Read("\xEF\xBB\xBF" + kV5 + lines), as_utf8);
  EXPECT_EQ(Read(kV4 + lines), as_bytes);
  EXPECT_EQ(Read("\xEF\xBB\xBF" + kV4 + lines), as_utf8);
  EXPECT_EQ(Read(kV5 + lines + ";\xFF"), as_bytes) << "no UTF-8 is 8-bit text";
  EXPECT_EQ(Read(Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n"
                       u"[HKEY_LOCAL_MACHINE\\ä]\r\n\"€\"=\"üЖ\"\r\n")),
            as_utf8);
  // Halves of pairs, a byte-order mark and what is no character, as real texts hold them.
  EXPECT_EQ(Read(Utf16(u"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\\xDC00]\r\n\"\xD800\"=\"\xFEFF\xFFFE"
                       u"\xDC00\xD83D\xDE00\xD83D\"\r\n")),
            "?<00>ONLAIA{?<00>ONKAIA:1=???"
            "??"
            "?<00>;}}");
}

// A name's limit counts characters, not the bytes that they take here.
TEST(RegFile, LongestNames) {
  for (const char16_t character : {u'n', u'\xE4', u'\x416'}) {
    const std::u16string name(255, character);
    const std::u16string key = u"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\" + name;
    EXPECT_EQ(Read(Utf16(key + u"\\" + name + u"]")).find("a key's name"), std::string::npos);
    EXPECT_EQ(Read(Utf16(key + character + u"]")), "2: a key's name has more than 255 characters");
  }
}

// Names that look alike once their characters are lost stay two, and differ only in what nobody
// sees.
TEST(RegFile, NamesOutsideTheCodePage) {
  Registry registry;
  Read(kV5 +
           "[HKEY_LOCAL_MACHINE\\a\xD0\x96]\n\"\xD0\x96\"=\"1\"\n[HKEY_LOCAL_MACHINE\\a\xD0\x97]\n"
           "[HKEY_LOCAL_MACHINE\\a\xD0\x96\\b]\n",
       registry);
  const auto root = registry.Root(Hive::kLocalMachine);
  ASSERT_EQ(root->subkeys.size(), 2u);
  // The last bytes of these letters are capital and small letter of the code page.
  EXPECT_EQ(Read(kV5 + "[HKEY_LOCAL_MACHINE\\K]\n\"\xD0\x9A\"=\"1\"\n\"\xD0\x8A\"=\"2\"\n"),
            "K{?<00>NAJK:1=1<00>;?<00>NAIK:1=2<00>;}}");
  EXPECT_EQ(VisibleName(root->subkeys.At(0, false)->name), "a?");
  EXPECT_EQ(VisibleName(root->subkeys.At(1, false)->name), "a?");
  EXPECT_EQ(root->subkeys.At(0, false)->subkeys.size(), 1u);
  EXPECT_EQ(VisibleName(root->subkeys.At(0, false)->values.At(0, false)->name), "?");
  EXPECT_EQ(Registry::FindBelow(root, "a?"), nullptr);
}

TEST(RegFile, WhatIsWrongIsSaidWithItsLine) {
  const std::string long_name(256, 'n');
  const struct {
    std::string bytes;
    std::string error;  // its beginning
  } rows[] = {
      {"", "1: the first line is neither"},
      {"REGEDIT\r\n", "1: the first line is neither"},
      {"Windows Registry Editor Version 4.00\n", "1: the first line is neither"},
      {"\n" + kV4, "1: the first line is neither"},
      {"\xFE\xFF\0R"s, "1: 16-bit text with the high byte first"},
      {Utf16(u"REGEDIT4\n;") + "x", "2: 16-bit text that ends in half"},
      {"\xEF\xBB\xBF" + kV4 + ";\xFF", "3: the file is marked as UTF-8"},
      {kV4 + "\r\n;\0"s, "4: a zero character"},
      {Utf16(u"REGEDIT4\n\n\0"s), "3: a zero character"},
      {kV4 + kKey + "\r\n" + kV4, "5: another export begins here"},
      {kV5 + kKey + kV5, "4: another export begins here"},
      {Utf16(u"REGEDIT4\n\xFEFFREGEDIT4"), "2: another export begins here"},
      {kV4 + "nonsense", "3: this is no key, value or comment"},
      {kV4 + "[HKEY_LOCAL_MACHINE\\K", "3: the key has no closing bracket"},
      {kV4 + "[HKEY_LOCAL_MACHINE\\K]x", "3: this is no key, value or comment, or has"},
      {kV4 + "[HKEY_LOCALMACHINE\\\xC4]", "3: \"HKEY_LOCALMACHINE\" is no hive"},
      {kV4 + "[\xC4]", "3: \"\xC3\x84\" is no hive"},
      {kV4 + "[]", "3: \"\" is no hive"},
      {kV4 + "[HKEY_LOCAL_MACHINE\\a\\\\b]", "3: a key without a name"},
      {kV4 + "[-HKEY_LOCAL_MACHINE\\a\\]", "3: a key without a name"},
      {kV4 + "[-HKEY_LOCAL_MACHINE]", "3: a hive cannot be deleted"},
      {kV4 + "[HKEY_LOCAL_MACHINE\\a\\" + long_name + "]", "3: a key's name has more than 255"},
      {kV4 + "\"a\"=\"x\"", "3: a value without a key"},
      {kV4 + kKey + "[-HKEY_LOCAL_MACHINE\\K]\n@=\"x\"", "5: a value without a key"},
      {kV4 + kKey + "\"a\"", "4: \"=\" is missing"},
      {kV4 + kKey + "\"a\"=", "4: the data is no text"},
      {kV4 + kKey + "\"a\"=text", "4: the data is no text"},
      {kV4 + kKey + "\"a\"=\"x\" y", "4: this is no key, value or comment, or has"},
      {kV4 + kKey + "@=\"one\n\ntwo", "4: the text that begins here has no closing quote"},
      {kV4 + kKey + "@=\"\n\\n\"", "5: \"\\\" in a text stands for nothing"},
      {kV4 + kKey + "\n@=\"\\", "5: \"\\\" in a text stands for nothing"},
      {kV4 + kKey + "@=\"C:\\x\"", "4: \"\\\" in a text stands for nothing"},
      {kV4 + kKey + "@=DWORD:1", "4: the data is no text"},
      {kV4 + kKey + "@=Hex:01", "4: the data is no text"},
      {kV4 + kKey + "@=dword:", "4: \"dword:\" takes 1 to 8"},
      {kV4 + kKey + "@=dword:123456789", "4: \"dword:\" takes 1 to 8"},
      {kV4 + kKey + "@=dword:12g", "4: this is no key, value or comment, or has"},
      {kV4 + kKey + "@=hex(:01", "4: \"hex(\" takes 1 to 8"},
      {kV4 + kKey + "@=hex():01", "4: \"hex(\" takes 1 to 8"},
      {kV4 + kKey + "@=hex(123456789):01", "4: \"hex(\" takes 1 to 8"},
      {kV4 + kKey + "@=hex 01", "4: \":\" is missing"},
      {kV4 + kKey + "@=hex:01,", "4: a byte is missing or malformed"},
      {kV4 + kKey + "@=hex:01,,02", "4: a byte is missing or malformed"},
      {kV4 + kKey + "@=hex:01,\\\n0g", "5: \",\" is missing between bytes"},
      {kV4 + kKey + "@=hex:001", "4: \",\" is missing between bytes"},
      {kV4 + kKey + "@=hex:01,\\", "4: no line follows the \"\\\""},
      {kV4 + kKey + "@=hex:01,\\\n\n02", "5: a byte is missing or malformed"},
      {kV4 + kKey + "@=hex:01,\\ x\n02", "4: no line follows the \"\\\""},
      {kV4 + kKey + "@=- x", "4: this is no key, value or comment, or has"},
      {kV4 + kKey + "@=\"x\"\r\"b\"=\"y\"", "4: this is no key, value or comment, or has"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Read(row.bytes).substr(0, row.error.size()), row.error) << row.bytes;
  }
}

// Whatever a file is cut or damaged to, reading ends with an answer and touches nothing outside.
TEST(RegFile, DamagedFiles) {
  const std::string whole = kV5 + kKey +
                            "\"a\\\\\"=\"\\\"t\xC3\xBC\n\"\r\n@=hex(7):41,00,\\\r\n  00,00\r\n"
                            "\"d\"=dword:10 ; c\r\n\"a\\\\\"=-\r\n[-HKEY_LOCAL_MACHINE\\K]\r\n";
  for (std::size_t i = 0; i <= whole.size(); ++i) {
    Read(std::string(whole.data(), i));
    Read(Utf16(std::u16string(whole.begin(), whole.end())).substr(0, i));
    for (const char damage : "\\\"[]\n\xC3,(:"s) {
      std::string bytes = whole;
      bytes.insert(i, 1, damage);
      Read(bytes);
      if (i < whole.size()) bytes.erase(i + 1, 1);
      Read(bytes);
    }
  }
}

TEST(RegFile, DeepKeysAndLongLists) {
  std::string bytes = kV4 + "[HKEY_LOCAL_MACHINE";
  for (int i = 0; i < 50000; ++i)
    bytes += "\\d";
  bytes += "]\n@=hex:00";
  for (int i = 1; i < 100000; ++i)
    bytes += i % 25 == 0 ? ",\\\r\n  00" : ",00";
  Registry registry;
  EXPECT_EQ(ReadRegText(bytes, registry), std::nullopt);
  std::shared_ptr<RegistryKey> key = registry.Root(Hive::kLocalMachine);
  while (const auto below = key->subkeys.At(0, false))
    key = below;
  ASSERT_EQ(key->values.size(), 1u);
  EXPECT_EQ(key->values.Find("")->data, std::string(100000, '\0'));
}

TEST(RegFile, FromDisk) {
  const std::filesystem::path file =
      std::filesystem::path(testing::TempDir()) / "reg_file_test_from_disk.reg";
  Registry registry;
  std::filesystem::remove(file);
  EXPECT_EQ(ReadRegFile(file, registry)->Text(), "reg_file_test_from_disk.reg: it cannot be read");
  for (const auto& bytes : {kV4 + kKey + "@=1", Utf16(u"REGEDIT4\n\n[HKEY_USERS]\n@=1")}) {
    std::ofstream(file, std::ios::binary) << bytes;
    EXPECT_EQ(ReadRegFile(file, registry)->Text(),
              "reg_file_test_from_disk.reg:4: the data is no text, \"dword:\", \"hex:\", "
              "\"hex(...):\" or \"-\"");
  }
  std::ofstream(file, std::ios::binary) << Utf16(u"REGEDIT4\n[HKEY_USERS\\x]");
  EXPECT_EQ(ReadRegFile(file, registry), std::nullopt);
  EXPECT_NE(Registry::FindBelow(registry.Root(Hive::kUsers), "X"), nullptr);
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace host
