// The statistics of pulled transfers served through CIM, against the real
// platform.
#include <string.h>

#include "CDRTestSupport.hpp"
#include "QTX_CDRPullStatisticsProvider.h"

namespace {

namespace OW = OW_NAMESPACE;
using namespace cdrtest;

const char* const kSource = "CDR/CDROAM/src/QTX_CDRPullStatisticsProvider";

// Each statistic as the transfer side stores it and a client sees it.
struct Statistic {
  const char* property;
  const char* key;
  const char* getter;
  bool text;
};
const Statistic kStatistics[] = {
    {"MostRecentSuccessfulTransfer", "Pull-MostRecentSuccess", "getMostRecentSuccessfulTransfer", true},
    {"NumberOfSuccessfulTransfers", "Pull-NumSuccesses", "getNumberOfSuccessfulTransfers", false},
    {"MostRecentFailedTransfer", "Pull-MostRecentFailure", "getMostRecentFailedTransfer", true},
    {"ReasonForFailure", "Pull-MostRecentFailureReason", "getReasonForFailure", true},
    {"NumberOfFailedTransfers", "Pull-NumFailures", "getNumberOfFailedTransfers", false},
    {"LargestFileTransferred", "Pull-LargestFile", "getLargestFileTransferred", false},
    {"SmallestFileTransferred", "Pull-SmallestFile", "getSmallestFileTransferred", false},
    {"TotalNumberOfBytesTransferred", "Pull-NumberOfBytes", "getTotalNumberOfBytesTransferred", false},
    {"TotalNumberOfFileTransferred", "Pull-NumberOfFiles", "getTotalNumberOfFileTransferred", false},
    {"IncludeMetricsFlag", "Pull-IncludeMetricsFlag", "getIncludeMetricsFlag", false},
};

std::vector<uint8_t> counterBytes(uint32_t value) {
  std::vector<uint8_t> bytes(4);
  memcpy(bytes.data(), &value, 4);  // native order, as the transfer side writes it
  return bytes;
}

class PullStatisticsTest : public cdrtest::ProviderTest<QTX_CDRPullStatisticsProvider, QTX_CDRPullStatistics> {
 protected:
  PullStatisticsTest() {
    statistics = new QTX_CDRPullStatisticsImpl("CDRPullStatistic");
    setType(3);
  }
  ~PullStatisticsTest() override {
    delete statistics;
  }

  OW::CIMObjectPath path() const {
    return makePath("QTX_CDRPullStatistics", {{"Name", "CDRPullStatistic"}});
  }
  OW::CIMInstance get() { return getInstance(path()); }
  OW::CIMValue invoke(const char* method) { return invokeMethod(path(), method); }
  CIMError modify(const std::vector<std::pair<const char*, OW::CIMValue>>& properties) {
    OW::CIMInstance instance = makeInstance("QTX_CDRPullStatistics", properties);
    instance.setProperty("Name", OW::CIMValue(OW::String("CDRPullStatistic")));
    return catchCIMError([&] { modifyInstance(instance); });
  }
  void setType(uint8_t type) { ZpoSetRegEntryBinary("CDR", "CDRPush", "TransferType", &type, 1); }
  void setText(const char* key, const char* text) { ZpoSetRegEntryString("CDR", "CDRPull", key, text); }
  void setCounter(const char* key, uint32_t value) {
    ZpoSetRegEntryBinary("CDR", "CDRPull", key, counterBytes(value).data(), 4);
  }
  void setFlag(uint8_t value) { ZpoSetRegEntryBinary("CDR", "CDRPull", "Pull-IncludeMetricsFlag", &value, 1); }
  std::string storedText(const char* key) {
    char buffer[512] = {0};
    uint32_t status = ZpoGetRegEntryString("CDR", "CDRPull", key, buffer, sizeof buffer);
    return status == 0 ? buffer : "<unreadable>";
  }
  void seedAll() {
    setText("Pull-MostRecentSuccess", "2024-01-02 03:04");
    setCounter("Pull-NumSuccesses", 7);
    setText("Pull-MostRecentFailure", "2024-01-01 23:00");
    setText("Pull-MostRecentFailureReason", "Connection refused");
    setCounter("Pull-NumFailures", 2);
    setCounter("Pull-LargestFile", 4000000000u);
    setCounter("Pull-SmallestFile", 512);
    setCounter("Pull-NumberOfBytes", 123456);
    setCounter("Pull-NumberOfFiles", 9);
    setFlag(1);
  }

  QTX_CDRPullStatisticsImpl* statistics;
};

TEST_F(PullStatisticsTest, InstanceShowsWhatTheTransferSideStoredInItsOwnOrder) {
  seedAll();
  OW::CIMInstance instance = get();
  const char* expected[][3] = {
      {"Name", "string", "CDRPullStatistic"},
      {"MostRecentSuccessfulTransfer", "string", "2024-01-02 03:04"},
      {"IncludeMetricsFlag", "boolean", "true"},
      {"NumberOfSuccessfulTransfers", "uint32", "7"},
      {"MostRecentFailedTransfer", "string", "2024-01-01 23:00"},
      {"ReasonForFailure", "string", "Connection refused"},
      {"NumberOfFailedTransfers", "uint32", "2"},
      {"LargestFileTransferred", "uint32", "4000000000"},
      {"SmallestFileTransferred", "uint32", "512"},
      {"TotalNumberOfBytesTransferred", "uint32", "123456"},
      {"TotalNumberOfFileTransferred", "uint32", "9"}};
  OW::CIMPropertyArray properties = instance.getProperties();
  ASSERT_EQ(11u, properties.size());
  for (size_t i = 0; i < properties.size(); ++i) {
    EXPECT_EQ(expected[i][0], std::string(properties[i].getName().c_str()));
    EXPECT_EQ(expected[i][1], std::string(properties[i].getDataType().toString().c_str()));
    EXPECT_EQ(expected[i][2], propertyText(instance, expected[i][0]));
    EXPECT_EQ(i == 0 ? "<absent>" : "true", qualifierText(instance, expected[i][0], "Applicable"))
        << expected[i][0];
  }
  EXPECT_TRUE(log().empty());
}

// Only a pulled device (type 3) has pull statistics; an unreadable type
// counts as pulled. Otherwise nothing is read and the flag is not created.
TEST_F(PullStatisticsTest, ApplicableOnlyForPullOrAnUnreadableType) {
  setCounter("Pull-NumSuccesses", 7);
  struct Row { uint8_t type; bool typeFault; bool applicable; } rows[] = {
      {0, false, false}, {1, false, false}, {2, false, false}, {4, false, false},
      {3, false, true}, {0, true, true}};
  for (const Row& row : rows) {
    setType(row.type);
    if (row.typeFault) root.setFault("reg-read", "CDR", "CDRPush", "TransferType", 0x200011);
    OW::CIMInstance instance = get();
    root.clearFaults();
    for (const Statistic& s : kStatistics) {
      EXPECT_EQ(row.applicable ? "true" : "false", qualifierText(instance, s.property, "Applicable"))
          << s.property << " type " << int(row.type);
    }
    EXPECT_EQ(row.applicable ? "7" : "0", propertyText(instance, "NumberOfSuccessfulTransfers"));
    EXPECT_EQ(row.applicable, root.hasEntry("CDR", "CDRPull", "Pull-IncludeMetricsFlag"));
  }
}

TEST_F(PullStatisticsTest, MissingEntriesReadAsZeroOrEmptyAndOnlyTheFlagIsCreated) {
  OW::CIMInstance instance = get();
  for (const Statistic& s : kStatistics) {
    const char* expected = s.text ? "" : (std::string(s.key) == "Pull-IncludeMetricsFlag" ? "false" : "0");
    EXPECT_EQ(expected, propertyText(instance, s.property)) << s.property;
    if (std::string(s.key) != "Pull-IncludeMetricsFlag") {
      EXPECT_FALSE(root.hasEntry("CDR", "CDRPull", s.key)) << s.key;
    }
  }
  EXPECT_EQ((std::vector<uint8_t>{0}), entry("CDRPull", "Pull-IncludeMetricsFlag"));
  EXPECT_TRUE(log().empty());
  // A flag that went away again is created as 0, whatever was read before.
  setFlag(1);
  EXPECT_EQ("true", propertyText(get(), "IncludeMetricsFlag"));
  root.removeEntry("CDR", "CDRPull", "Pull-IncludeMetricsFlag");
  EXPECT_EQ("false", propertyText(get(), "IncludeMetricsFlag"));
  EXPECT_EQ((std::vector<uint8_t>{0}), entry("CDRPull", "Pull-IncludeMetricsFlag"));
}

TEST_F(PullStatisticsTest, FailedReadLeavesOnlyThatPropertyOutAndIsLogged) {
  seedAll();
  for (const Statistic& s : kStatistics) {
    root.setFault("reg-read", "CDR", "CDRPull", s.key, 0x4321);
    size_t before = log().size();
    OW::CIMInstance instance = get();
    root.clearFaults();
    EXPECT_EQ("<absent>", propertyText(instance, s.property)) << s.property;
    EXPECT_EQ(10u, instance.getProperties().size()) << s.property;
    std::vector<std::string> lines = log();
    ASSERT_EQ(before + 1, lines.size()) << s.property;
    EXPECT_NE(std::string::npos,
              lines.back().find(std::string("cat=2 level=4 id=-1 ") + s.getter + " error = 17185"))
        << lines.back();
  }
  EXPECT_EQ((std::vector<uint8_t>{1}), entry("CDRPull", "Pull-IncludeMetricsFlag"));

  // The failing getter itself returns 100, whatever the kind of statistic.
  root.setFault("reg-read", "CDR", "CDRPull", "", 0x4321);
  OW::Array<OW::CIMQualifier> q;
  unsigned int count = 0;
  std::string text;
  bool flag = true;
  EXPECT_EQ(100, statistics->getNumberOfSuccessfulTransfers(count, q));
  EXPECT_EQ(100, statistics->getReasonForFailure(text, q));
  EXPECT_EQ(100, statistics->getIncludeMetricsFlag(flag, q));
}

TEST_F(PullStatisticsTest, ControlCharactersOrAnEmptyTextAreWarnedAboutAndShownEmpty) {
  setText("Pull-MostRecentSuccess", "");
  setText("Pull-MostRecentFailure", "2024-01-01\n23:00");
  setText("Pull-MostRecentFailureReason", "timeout");
  OW::CIMInstance instance = get();
  EXPECT_EQ("", propertyText(instance, "MostRecentSuccessfulTransfer"));
  EXPECT_EQ("", propertyText(instance, "MostRecentFailedTransfer"));
  EXPECT_EQ("timeout", propertyText(instance, "ReasonForFailure"));
  std::vector<std::string> lines = log();
  ASSERT_EQ(2u, lines.size());
  EXPECT_NE(std::string::npos,
            lines[0].find("cat=2 level=2 id=-1 ControlCharacters Found in PDR:Pull-MostRecentSuccess"));
  EXPECT_NE(std::string::npos,
            lines[1].find("cat=2 level=2 id=-1 ControlCharacters Found in PDR:Pull-MostRecentFailure"));
}

// The flag is written whatever the transfer type.
TEST_F(PullStatisticsTest, ModifyWritesOnlyTheMetricsFlag) {
  seedAll();
  setType(0);
  struct Row { OW::CIMValue value; std::vector<uint8_t> stored; } rows[] = {
      {OW::CIMValue(false), {0}}, {OW::CIMValue(true), {1}}, {OW::CIMValue(OW::CIMNULL), {1}}};
  for (const Row& row : rows) {
    CIMError error = modify({{"NumberOfFailedTransfers", OW::CIMValue(OW::UInt32(0))},
                             {"ReasonForFailure", OW::CIMValue(OW::String("none"))},
                             {"IncludeMetricsFlag", row.value}});
    EXPECT_FALSE(error.thrown);
    EXPECT_EQ(row.stored, entry("CDRPull", "Pull-IncludeMetricsFlag"));
  }
  // The name is compared exactly.
  EXPECT_FALSE(modify({{"includemetricsflag", OW::CIMValue(false)}}).thrown);
  EXPECT_EQ((std::vector<uint8_t>{1}), entry("CDRPull", "Pull-IncludeMetricsFlag"));
  EXPECT_EQ(counterBytes(2), entry("CDRPull", "Pull-NumFailures"));
  EXPECT_EQ("Connection refused", storedText("Pull-MostRecentFailureReason"));
}

TEST_F(PullStatisticsTest, FailedFlagWriteIsCIMFailed101AtItsFixedLine) {
  root.setFault("reg-write", "CDR", "CDRPull", "Pull-IncludeMetricsFlag", 55);
  CIMError error = modify({{"IncludeMetricsFlag", OW::CIMValue(true)}});
  EXPECT_EQ(1, error.code);
  EXPECT_EQ("101", error.message);
  EXPECT_EQ(kSource, error.file);
  EXPECT_EQ(304, error.line);
  ASSERT_FALSE(log().empty());
  EXPECT_NE(std::string::npos, log().back().find("cat=2 level=4 id=-1 setIncludeMetricsFlag error = 55"));
  EXPECT_FALSE(root.hasEntry("CDR", "CDRPull", "Pull-IncludeMetricsFlag"));
}

TEST_F(PullStatisticsTest, RefreshClearsTheStatisticsKeepsTheFlagAndCounts) {
  seedAll();
  get();  // a client looks first; nothing read may survive the refresh
  OW::UInt32 first = invoke("Refresh").toUInt32();
  OW::UInt32 second = invoke("Refresh").toUInt32();
  EXPECT_GE(first, 1u);
  EXPECT_EQ(first + 1, second);
  for (const Statistic& s : kStatistics) {
    if (s.text) {
      EXPECT_EQ("", storedText(s.key)) << s.key;
    } else if (std::string(s.key) != "Pull-IncludeMetricsFlag") {
      EXPECT_EQ(counterBytes(0), entry("CDRPull", s.key)) << s.key;
    }
  }
  EXPECT_EQ((std::vector<uint8_t>{1}), entry("CDRPull", "Pull-IncludeMetricsFlag"));

  OW::CIMInstance instance = get();
  EXPECT_EQ("0", propertyText(instance, "NumberOfSuccessfulTransfers"));
  EXPECT_EQ("0", propertyText(instance, "LargestFileTransferred"));
  EXPECT_EQ("", propertyText(instance, "ReasonForFailure"));
  EXPECT_EQ("true", propertyText(instance, "IncludeMetricsFlag"));
  std::vector<std::string> lines = log();
  ASSERT_EQ(3u, lines.size());
  EXPECT_NE(std::string::npos, lines[0].find("ControlCharacters Found in PDR:Pull-MostRecentSuccess"));
  EXPECT_NE(std::string::npos, lines[1].find("ControlCharacters Found in PDR:Pull-MostRecentFailure"));
  EXPECT_NE(std::string::npos, lines[2].find("ControlCharacters Found in PDR:Pull-MostRecentFailureReason"));
}

TEST_F(PullStatisticsTest, RefreshCarriesOnPastFailedWrites) {
  seedAll();
  root.setFault("reg-write", "CDR", "CDRPull", "Pull-MostRecentSuccess", 55);
  root.setFault("reg-write", "CDR", "CDRPull", "Pull-NumFailures", 55);
  invoke("Refresh");
  EXPECT_EQ("2024-01-02 03:04", storedText("Pull-MostRecentSuccess"));
  EXPECT_EQ(counterBytes(2), entry("CDRPull", "Pull-NumFailures"));
  EXPECT_EQ(counterBytes(0), entry("CDRPull", "Pull-NumberOfFiles"));
  EXPECT_EQ("", storedText("Pull-MostRecentFailureReason"));
  EXPECT_TRUE(log().empty());
}

TEST_F(PullStatisticsTest, OnlyTheExactMethodNameIsServed) {
  for (const char* name : {"refresh", "REFRESH", "", "Refresh2"}) {
    CIMError error = catchCIMError([&] { invoke(name); });
    EXPECT_EQ(17, error.code) << name;
    EXPECT_EQ(kSource, error.file);
    EXPECT_EQ(352, error.line);
    EXPECT_FALSE(error.hasMessage);
  }
}

}  // namespace
