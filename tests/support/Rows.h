// Tables of texts.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tunadm {

// Each row is "<input> -> <what comes of it>".
inline void expectRows(const std::vector<std::string>& rows,
                       const std::function<std::string(const std::string&)>& result) {
  for (const std::string& row : rows) {
    const std::string input = row.substr(0, row.find(" -> "));
    EXPECT_EQ(input + " -> " + result(input), row);
  }
}

}  // namespace tunadm
