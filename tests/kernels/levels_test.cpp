// The levels themselves.
#include "support/level_test.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace {

struct KernelLevels : LevelTest<testing::Test> {};
TEST_AT_VECTOR_LEVELS(KernelLevels);

TEST_P(KernelLevels, ReplaceKernelsOfTheLevelBelow) {
  const auto* const level = std::find_if(std::begin(kernelLevels), std::end(kernelLevels),
                                         [](const NamedKernelLevel& one) { return one.mask == GetParam().mask; });
  const Kernels below = Kernels_Select(level[-1].mask);
  EXPECT_NE(std::memcmp(&record, &below, sizeof record), 0);
}

// Whoever knows the processor says which levels a build must have there: "plain,sse2,avx2".
TEST(ExpectedKernelLevels, AreThere) {
  const char* const expected = std::getenv("VELARTO_EXPECT_LEVELS");
  if (!expected) GTEST_SKIP() << "VELARTO_EXPECT_LEVELS is not set";
  const std::vector<NamedKernelLevel> levels = Test_Levels();
  std::istringstream names(expected);
  for (std::string name; std::getline(names, name, ',');) {
    EXPECT_TRUE(std::any_of(levels.begin(), levels.end(), [&](const NamedKernelLevel& level) { return level.name == name; }))
        << "no " << name << " here";
  }
}

}  // namespace
