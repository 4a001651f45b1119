#include "status/printer_state.h"

#include <gtest/gtest.h>

TEST(PrinterStateTest, GoodRendersAsGood) {
  EXPECT_EQ("GOOD", PrinterState::Good().to_string());
}
