// A full access row: five digits, then the suppress count in the byte after
// them, which is not a digit of the row.
#include <algorithm>
#include <string>
#include <vector>

#include "CDRTestSupport.hpp"
#include "QTX_CDRServiceAccessBinImpl.h"

namespace {

class FullAccessRowTest : public cdrtest::ModuleTest {
 protected:
  FullAccessRowTest() { QTX_CDRServiceAccessBin::SetInstanceManager(&manager); }
  ~FullAccessRowTest() override { QTX_CDRServiceAccessBin::ClearInstanceManager(); }

  QTX_CDRServiceAccessBinImplInstanceManager manager;
};

TEST_F(FullAccessRowTest, ReadsItsFiveDigitsWithoutTheSuppressCount) {
  std::vector<uint8_t> entry(30, 12);
  const uint8_t fullRow[] = {1, 2, 3, 4, 5, 3};
  std::copy(fullRow, fullRow + 6, entry.begin() + 6);
  ZpoSetRegEntryBinary("CDR", "CDRService", "ACCESS BIN", entry.data(), 30);
  QTX_CDRServiceAccessBinImpl row("CDRServiceAccessBin_1", 1);
  OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier> qualifiers;
  std::string digits, count;
  EXPECT_EQ(0, row.getAccessBin(digits, qualifiers));
  EXPECT_EQ(0, row.getSuppressBin(count, qualifiers));
  EXPECT_EQ("12345", digits);
  EXPECT_EQ("3", count);
}

}  // namespace
