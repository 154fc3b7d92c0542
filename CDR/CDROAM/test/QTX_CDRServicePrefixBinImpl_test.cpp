// The prefix rows against the registry entry "CDR"/"CDRService"/"PREFIX BIN".
#include <memory>
#include <string>
#include <vector>

#include "CDRTestSupport.hpp"
#include "QTX_CDRServicePrefixBinImpl.h"

namespace {

typedef std::vector<uint8_t> Bytes;
const uint32_t kStorageFailure = 0x200011;

class PrefixBinImplTest : public cdrtest::ModuleTest {
 protected:
  PrefixBinImplTest() {
    QTX_CDRServicePrefixBin::SetInstanceManager(&manager);
    for (int row = 0; row < QTX_CDRServicePrefixBinImpl::MAX_PREFIX_ENTRIES_VALUE; ++row) {
      rows.emplace_back(new QTX_CDRServicePrefixBinImpl("CDRServicePrefixBin_" + std::to_string(row), row));
    }
    // Row r holds the digits r, r+1, so every row differs.
    for (int row = 0; row < 8; ++row) std::copy_n(Bytes{uint8_t(row), uint8_t(row + 1)}.begin(), 2, seed.begin() + 8 * row);
    ZpoSetRegEntryBinary("CDR", "CDRService", "PREFIX BIN", seed.data(), 64);
  }
  ~PrefixBinImplTest() override {
    rows.clear();
    QTX_CDRServicePrefixBin::ClearInstanceManager();
  }
  Bytes stored() const { return entry("CDRService", "PREFIX BIN"); }
  // Log lines without their time stamp and module name.
  std::vector<std::string> logged() const {
    std::vector<std::string> entries;
    for (const std::string& line : log()) entries.push_back(line.substr(line.find("cat=")));
    return entries;
  }
  int get(int row, std::string& value) {
    OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier> qualifiers;
    return rows[row]->getPrefixBin(value, qualifiers);
  }
  void fail(const char* op) { root.setFault(op, "CDR", "CDRService", "PREFIX BIN", kStorageFailure); }

  QTX_CDRServicePrefixBinImplInstanceManager manager;
  std::vector<std::unique_ptr<QTX_CDRServicePrefixBinImpl>> rows;
  Bytes seed = Bytes(64, 12);
};

TEST_F(PrefixBinImplTest, SetsChangeOnlyTheirOwnRowOfTheStoredEntry) {
  Bytes expected = seed;
  ASSERT_EQ(0, rows[3]->setPrefixBin("123"));
  std::copy_n(Bytes{1, 2, 3, 12, 12, 12, 12, 12}.begin(), 8, expected.begin() + 24);
  EXPECT_EQ(expected, stored());
  ASSERT_EQ(0, rows[7]->setPrefixBin("123456789"));  // cut to 8 digits
  std::copy_n(Bytes{1, 2, 3, 4, 5, 6, 7, 8}.begin(), 8, expected.begin() + 56);
  EXPECT_EQ(expected, stored());
  ASSERT_EQ(0, rows[0]->setPrefixBin(""));
  std::fill_n(expected.begin(), 8, 12);
  EXPECT_EQ(expected, stored());
  std::string value;
  EXPECT_EQ(0, get(7, value));
  EXPECT_EQ("12345678", value);
  EXPECT_TRUE(log().empty());
}

TEST_F(PrefixBinImplTest, ANonDigitIsRefusedWith301AndNothingIsWritten) {
  EXPECT_EQ(301, rows[2]->setPrefixBin("12a"));
  EXPECT_EQ(seed, stored());
  EXPECT_EQ(std::vector<std::string>{"cat=2 level=4 id=-1 CheckAllDigits error"}, logged());
}

TEST_F(PrefixBinImplTest, ASetAfterAFailedReadRebuildsTheEntryFromEmpty) {
  std::string value;
  ASSERT_EQ(0, get(6, value));  // the row has seen the whole entry
  fail("reg-read");
  ASSERT_EQ(0, rows[6]->setPrefixBin("42"));
  Bytes expected(64, 12);
  expected[48] = 4;
  expected[49] = 2;
  EXPECT_EQ(expected, stored());
  EXPECT_TRUE(log().empty());
}

TEST_F(PrefixBinImplTest, FailedReadsAndWritesReportAndLogTheRegistryStatus) {
  fail("reg-write");
  EXPECT_EQ(101, rows[1]->setPrefixBin("5"));
  EXPECT_EQ(seed, stored());
  fail("reg-read");
  std::string value = "unchanged";
  EXPECT_EQ(100, get(1, value));
  EXPECT_EQ(std::string(1, '\0'), value);
  EXPECT_EQ((std::vector<std::string>{"cat=2 level=4 id=-1 setPrefixBin error = 2097169",
                                      "cat=2 level=4 id=-1 getPrefixBin error = 2097169"}),
            logged());
}

}  // namespace
