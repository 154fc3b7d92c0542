// The access rows and their suppress counts against the registry entry
// "CDR"/"CDRService"/"ACCESS BIN".
#include <memory>
#include <string>
#include <vector>

#include "CDRTestSupport.hpp"
#include "QTX_CDRServiceAccessBinImpl.h"

namespace {

typedef std::vector<uint8_t> Bytes;
const uint32_t kStorageFailure = 0x200011;

class AccessBinImplTest : public cdrtest::ModuleTest {
 protected:
  AccessBinImplTest() {
    QTX_CDRServiceAccessBin::SetInstanceManager(&manager);
    for (int row = 0; row < QTX_CDRServiceAccessBinImpl::MAX_ACCESS_BIN_ENTRIES_VALUE; ++row) {
      rows.emplace_back(new QTX_CDRServiceAccessBinImpl("CDRServiceAccessBin_" + std::to_string(row), row));
    }
    // Row r holds the digits r, r+1 and the suppress count 10+r.
    for (uint8_t row = 0; row < 5; ++row) seed.insert(seed.end(), {row, uint8_t(row + 1), 12, 12, 12, uint8_t(10 + row)});
    ZpoSetRegEntryBinary("CDR", "CDRService", "ACCESS BIN", seed.data(), 30);
  }
  ~AccessBinImplTest() override {
    rows.clear();
    QTX_CDRServiceAccessBin::ClearInstanceManager();
  }
  Bytes stored() const { return entry("CDRService", "ACCESS BIN"); }
  std::vector<std::string> logged() const {
    std::vector<std::string> entries;
    for (const std::string& line : log()) entries.push_back(line.substr(line.find("cat=")));
    return entries;
  }
  std::string digits(int row, int expectedStatus = 0) {
    OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier> qualifiers;
    std::string value = "unchanged";
    EXPECT_EQ(expectedStatus, rows[row]->getAccessBin(value, qualifiers));
    return value;
  }
  std::string count(int row, int expectedStatus = 0) {
    OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier> qualifiers;
    std::string value = "unchanged";
    EXPECT_EQ(expectedStatus, rows[row]->getSuppressBin(value, qualifiers));
    return value;
  }
  void fail(const char* op) { root.setFault(op, "CDR", "CDRService", "ACCESS BIN", kStorageFailure); }

  QTX_CDRServiceAccessBinImplInstanceManager manager;
  std::vector<std::unique_ptr<QTX_CDRServiceAccessBinImpl>> rows;
  Bytes seed;
};

TEST_F(AccessBinImplTest, SettingDigitsKeepsTheSuppressCountAndTheOtherRows) {
  ASSERT_EQ(0, rows[2]->setAccessBin("123"));
  Bytes expected = seed;
  std::copy_n(Bytes{1, 2, 3, 12, 12}.begin(), 5, expected.begin() + 12);  // byte 17 keeps 12
  EXPECT_EQ(expected, stored());
  EXPECT_EQ("123", digits(2));
  EXPECT_EQ("12", count(2));
}

TEST_F(AccessBinImplTest, SuppressCountsFollowTheirRule) {
  const struct { const char* value; int status; uint8_t stored; const char* read; } cases[] = {
      {"16", 0, 16, "16"}, {"", 0, 0, "0"}, {"272", 0, 16, "16"},  // 272 keeps its low 8 bits
      {"17", 301, 13, "13"}, {"1a", 301, 13, "13"},
  };
  for (const auto& c : cases) {
    ZpoSetRegEntryBinary("CDR", "CDRService", "ACCESS BIN", seed.data(), 30);
    EXPECT_EQ(c.status, rows[3]->setSuppressBin(c.value)) << c.value;
    Bytes expected = seed;
    expected[23] = c.stored;
    EXPECT_EQ(expected, stored()) << c.value;
    EXPECT_EQ(c.read, count(3)) << c.value;
  }
  EXPECT_EQ(std::vector<std::string>(2, "cat=2 level=4 id=-1 AssignDigits error"), logged());
}

TEST_F(AccessBinImplTest, FailedReadsGiveOneNulInGettersAndAnEmptyEntryInSetters) {
  EXPECT_EQ("11", count(1));  // rows 1 and 4 have seen the whole entry
  EXPECT_EQ("45", digits(4));
  fail("reg-read");
  EXPECT_EQ(std::string(1, '\0'), digits(0, 100));
  EXPECT_EQ(std::string(1, '\0'), count(0, 100));
  ASSERT_EQ(0, rows[1]->setSuppressBin("5"));
  ASSERT_EQ(0, rows[4]->setAccessBin("4"));
  Bytes expected;
  for (int row = 0; row < 5; ++row) expected.insert(expected.end(), {12, 12, 12, 12, 12, 0});
  expected[24] = 4;  // the second rebuild lost the count set by the first
  EXPECT_EQ(expected, stored());
  EXPECT_EQ((std::vector<std::string>{"cat=2 level=4 id=-1 getAccessBin error = 2097169",
                                      "cat=2 level=4 id=-1 getSuppressBin error = 2097169"}),
            logged());
}

TEST_F(AccessBinImplTest, FailedWritesReturn101AndAreLogged) {
  fail("reg-write");
  EXPECT_EQ(101, rows[0]->setAccessBin("1"));
  EXPECT_EQ(101, rows[0]->setSuppressBin("1"));
  EXPECT_EQ(seed, stored());
  EXPECT_EQ((std::vector<std::string>{"cat=2 level=4 id=-1 setAccessBin error = 2097169",
                                      "cat=2 level=4 id=-1 setSuppressBin error = 2097169"}),
            logged());
}

}  // namespace
