// What a profile makes the program do, in words.
#pragma once

#include <string>

namespace host {

// Lines of at most 78 characters, in UTF-8: the report's name and folder, the message before the
// run, what is reported in report order, and what happens to the report afterwards. The path is one
// of this computer, in UTF-8. Of a file that can't be read the summary says just that.
std::string ProfileSummary(const std::string& profile_path);

}  // namespace host
