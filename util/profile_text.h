#pragma once

#include "util/text.h"

namespace hostscope {

// The whole profile file as one text, for the free-text sections that the platform's profile reader
// would cut into keys.
class ProfileText {
 public:
  // Places in a text.
  struct Body {
    const char* header = nullptr;  // its "["; null when there is no such header
    const char* start = nullptr;
    const char* end = nullptr;       // without the final line break
    const char* boundary = nullptr;  // the next "[" or the end of the text
  };

  // Where the body of the section [name] stands in the text of a file, as SectionBody finds it.
  static Body FindBody(const char* text, const char* name);

  // Opens the file for reading, shared with other readers. A file that cannot be opened or read
  // gives a text of nothing, in which no section is found.
  static ProfileText Load(const char* path);

  bool present() const { return text_.present(); }
  // The body of the section [name], matched letter for letter at its first occurrence anywhere in
  // the file: from the line after the header to the next "[" or the end of the file, without its
  // final line break. None when there is no such header or no memory.
  OwnedText SectionBody(const char* name) const;

 private:
  OwnedText text_;
};

}  // namespace hostscope
