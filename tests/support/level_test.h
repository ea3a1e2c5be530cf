/* Tests that run once at each kernel level. One that this processor or this build lacks is a skipped test with the level's name.
 */
#pragma once

#include "support/levels.h"

#include <gtest/gtest.h>

/** By its name, in failures and in the tests' names. */
inline void PrintTo(const NamedKernelLevel& level, std::ostream* out) { *out << level.name; }

template <typename Base>
struct LevelTest : Base, testing::WithParamInterface<NamedKernelLevel> {
  const Kernels record = Kernels_Select(GetParam().mask);
  void SetUp() override {
    if (!Has_Level(GetParam())) GTEST_SKIP() << "no " << GetParam().name << " here";
  }
};

/* A suite's tests at every level; at vector levels, for kernels that the plain level lacks or that are compared with its own. */
#define TEST_AT_EVERY_LEVEL(Suite) INSTANTIATE_TEST_SUITE_P(Level, Suite, testing::ValuesIn(kernelLevels))
#define TEST_AT_VECTOR_LEVELS(Suite) \
  INSTANTIATE_TEST_SUITE_P(Level, Suite, testing::ValuesIn(std::begin(kernelLevels) + 1, std::end(kernelLevels)))
