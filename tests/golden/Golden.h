// Golden files: fixed-format outputs kept byte for byte in tests/golden/.
// Run a test with KORVEL_UPDATE_GOLDEN=1 in the environment to write its
// golden files anew from the code, then review the diff before committing.
#pragma once

#include "TestFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace korvel::test {

inline void ExpectGolden(const std::string& name, const std::string& bytes) {
    const std::filesystem::path file =
        std::filesystem::path(KORVEL_SOURCE_DIR) / "tests" / "golden" / name;
    if (std::getenv("KORVEL_UPDATE_GOLDEN") != nullptr) {
        WriteBytes(file, bytes);
    }
    ASSERT_TRUE(std::filesystem::exists(file)) << file;
    EXPECT_EQ(ReadBytes(file), bytes) << "differs from " << file;
}

} // namespace korvel::test
