// The page for those who write profiles, docs/profile.md, and the catalogue of the program.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <set>
#include <string>

#include "profile/catalogue.h"

namespace hostscope {
namespace {

std::string DefaultOf(const CatalogueRow& row) {
  if (row.key == nullptr) return "";
  if (row.method == ReadMethod::kInteger) return std::to_string(row.default_number);
  return *row.default_text == '\0' ? "empty" : row.default_text;
}

// The page has a heading "[SECTION]" for each section, and below it, in the table "| Key | Default
// |", a row for each key.
TEST(Handbook, HoldsTheCatalogueAndNothingElse) {
  using Row = std::array<std::string, 3>;  // section, key, default
  std::set<Row> expected;
  for (const CatalogueRow& row : Catalogue())
    expected.insert({row.section, row.key == nullptr ? "" : row.key, DefaultOf(row)});
  std::ifstream page(HOSTSCOPE_SOURCE_FOLDER "/docs/profile.md");
  ASSERT_TRUE(page.is_open());
  std::set<Row> described;
  std::string section;
  bool has_keys = false;  // the lines are those of a table of keys
  for (std::string line; std::getline(page, line);) {
    const bool heading = line.starts_with("## ") || line.starts_with("### ");
    const std::size_t bracket = line.find('[');
    if (heading) section.clear();
    if (heading && bracket != std::string::npos) {
      section = line.substr(bracket + 1, line.find(']') - bracket - 1);
      described.insert({section, "", ""});
    }
    if (!line.starts_with("|")) has_keys = false;
    if (has_keys && line.starts_with("| `")) {
      const std::size_t key_end = line.find('`', 3);
      const std::size_t default_end = line.find(" | ", key_end + 4);
      described.insert({section, line.substr(3, key_end - 3),
                        line.substr(key_end + 4, default_end - key_end - 4)});
      described.erase({section, "", ""});
    }
    if (line == "| Key | Default | Meaning |") has_keys = true;
  }
  for (const Row& row : expected)
    EXPECT_TRUE(described.contains(row)) << "not in the page: " << row[0] << " / " << row[1];
  for (const Row& row : described)
    EXPECT_TRUE(expected.contains(row)) << "only in the page: " << row[0] << " / " << row[1];
}

}  // namespace
}  // namespace hostscope
