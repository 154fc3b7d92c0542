// The digit encoding of the bins: one byte per digit value, 12 for an empty
// position; the all-digit check that cuts its text; the suppress count rule.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CDRDigitBin.hpp"

namespace {

typedef std::vector<unsigned char> Bytes;

TEST(DigitBinEncodingTest, RowsDecodeUpToTheFirstByteOfTwelveOrMore) {
  const struct { Bytes row; const char* text; } cases[] = {
      {{1, 2, 3, 12, 12}, "123"},
      {{12, 1, 2, 3, 4}, ""},       // an empty first position hides the rest
      {{10, 11, 12, 1, 2}, ":;"},   // 10 and 11 are no digits but pass
      {{4, 0x80, 5, 12, 12}, "4"},  // garbage stops like 12
      {{13, 1, 12, 12, 12}, ""},
      {{9, 8, 7, 6, 5, 4}, "98765"},  // never beyond the length
  };
  for (const auto& c : cases) {
    char text[CDR_BIN_TEXT_SIZE];
    EXPECT_STREQ(c.text, cdrGetBinDigit(text, reinterpret_cast<const char*>(c.row.data()), 5));
  }
}

TEST(DigitBinEncodingTest, TextsEncodeLeftAlignedUpToTheFirstNonDigit) {
  const struct { const char* text; Bytes row; int returned; } cases[] = {
      {"123", {1, 2, 3, 12, 12, 0xAA}, 3},
      {"1090", {1, 0, 9, 0, 12, 0xAA}, 4},
      {"", {12, 12, 12, 12, 12, 0xAA}, 0},
      {"12a4", {1, 2, 12, 12, 12, 0xAA}, 4},
      {"1234567", {1, 2, 3, 4, 5, 0xAA}, 7},  // the byte after the row stays
  };
  for (const auto& c : cases) {
    Bytes row(6, 0x55);
    row[5] = 0xAA;
    EXPECT_EQ(c.returned, cdrSetBinDigit(reinterpret_cast<char*>(row.data()), c.text, 5)) << c.text;
    EXPECT_EQ(c.row, row) << c.text;
  }
}

TEST(DigitBinEncodingTest, CheckAllDigitsCutsTheTextAtTheMaximumBeforeLooking) {
  const struct { const char* text; int result; const char* after; } cases[] = {
      {"", 1, ""},
      {"12345678", 1, "12345678"},
      {"12345678x", 1, "12345678"},  // the x lies beyond the cut
      {"1234567x9", 0, "1234567x"},
      {"12 4", 0, "12 4"},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    EXPECT_EQ(c.result, cdrCheckAllDigits(&text[0], 8)) << c.text;
    EXPECT_STREQ(c.after, text.c_str()) << c.text;
  }
}

TEST(DigitBinEncodingTest, AssignDigitsRangeChecksTheLowByteOfTheNumber) {
  const struct { const char* text; int result; unsigned char stored; } cases[] = {
      {"16", 0, 16}, {"", 0, 0}, {"272", 0, 16}, {"256", 0, 0},
      {"17", -1, 0xEE}, {"1a", -1, 0xEE}, {"-1", -1, 0xEE}, {" 5", -1, 0xEE},
  };
  for (const auto& c : cases) {
    std::string text = c.text;
    unsigned char destination = 0xEE;
    EXPECT_EQ(c.result, cdrAssignDigits(&text[0], 0, 16, &destination)) << c.text;
    EXPECT_EQ(c.stored, destination) << c.text;
  }
  unsigned char destination = 0;
  EXPECT_EQ(-1, cdrAssignDigits(nullptr, 0, 16, &destination));
  EXPECT_EQ(-1, cdrAssignDigits(const_cast<char*>("5"), 0, 16, nullptr));
}

}  // namespace
