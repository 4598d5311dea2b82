// The way to controller ports where there is none: it ends in a refusal, and in no fault.

#include "tests/windows/driver.h"
#include "tests/windows/every_release.h"

namespace drive {
namespace {

class PortsOnEveryRelease : public EveryRelease {};

TEST_P(PortsOnEveryRelease, AreRefusedWithoutAFault) {
  const Folder folder;
  folder.Write("hscope.exe", ReadFileBytes(BuiltFile("ports_attempt.exe")).value());
  EXPECT_EQ(Program(folder).WaitForExit(), 42u);
}

INSTANTIATE_TEST_SUITE_P(Ports, PortsOnEveryRelease, testing::ValuesIn(kReleases),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace drive
