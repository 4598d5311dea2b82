#include "profile/read_profile.h"

#include "platform/win32.h"
#include "util/handles.h"
#include "util/paths.h"
#include "util/profile_text.h"

namespace hostscope {
namespace {

void ReadString(const CatalogueRow& row, const char* profile_path, std::span<char> field) {
  GetPrivateProfileStringA(row.section, row.key, row.default_text, field.data(),
                           static_cast<DWORD>(field.size()), profile_path);
  field.back() = '\0';
}

bool IsSigned(const char* path) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.moment != ReadMoment::kSearch) continue;
    char sign[kSignSize] = {};
    ReadString(row, path, sign);
    return SameText(sign, kProfileSign);
  }
  return false;
}

// One element for every entry of the section, up to the first empty one.
void ReadList(const CatalogueRow& row, const char* profile_path, StringList& list,
              std::span<char> work) {
  work.front() = '\0';
  DWORD length = GetPrivateProfileSectionA(row.section, work.data(),
                                           static_cast<DWORD>(work.size()), profile_path);
  // Whatever the system left at the end: the last entry is ended, and an empty one follows it.
  const auto last = static_cast<DWORD>(work.size() - 2);
  if (length > last) length = last;
  work[length] = '\0';
  work[length + 1] = '\0';
  for (const char* entry = work.data(); *entry != '\0'; entry += TextLength(entry) + 1)
    list.Append(entry);
}

void ReadRow(const CatalogueRow& row, const char* profile_path, ProfileSettings& settings,
             std::span<char> work) {
  switch (row.method) {
    case ReadMethod::kInteger:
      settings.*row.number = static_cast<std::int32_t>(
          GetPrivateProfileIntA(row.section, row.key, row.default_number, profile_path));
      return;
    case ReadMethod::kString: {
      if (row.text == nullptr) return;  // only the search for a profile looks at it
      const std::span<char> field = row.text(settings);
      if (!row.only_when_empty || field.front() == '\0') ReadString(row, profile_path, field);
      return;
    }
    case ReadMethod::kList:
      ReadList(row, profile_path, settings.*row.list, work);
      return;
    case ReadMethod::kFreeText: {
      const std::span<char> field = row.text(settings);
      const OwnedText body = ProfileText::Load(profile_path).SectionBody(row.section);
      CopyText(field.data(), field.size(), body.c_str());
      return;
    }
  }
}

}  // namespace

OwnedText FindProfile(const char* program_folder) {
  const OwnedText pattern = JoinPath(program_folder, "*.ini");
  if (!pattern.present()) return {};
  FileSearch search(pattern.c_str());
  if (!search.found()) return {};
  do {
    if ((search.entry().dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
    char name[MAX_PATH];
    CopyText(name, search.entry().cFileName);
    OwnedText path = JoinPath(program_folder, name);
    if (path.present() && IsSigned(path.c_str())) return path;
  } while (search.Next());
  return {};
}

void ReadProfile(const char* profile_path, ReadMoment moment, ProfileSettings& settings,
                 std::span<char> work) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.moment == moment) ReadRow(row, profile_path, settings, work);
  }
}

}  // namespace hostscope
