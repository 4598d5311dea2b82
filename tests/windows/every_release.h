// A test that runs once in each of the seven releases.
#pragma once

#include <gtest/gtest.h>

#include "tests/windows/expected.h"
#include "tests/windows/surroundings.h"

namespace drive {

class EveryRelease : public testing::TestWithParam<ReleaseCase> {
 private:
  const Release release_{GetParam().release};
};

}  // namespace drive
