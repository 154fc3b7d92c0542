// The time of the last push transfer served through CIM, against the real
// platform.
#include "CDRTestSupport.hpp"
#include "OW_CIMDateTime.hpp"
#include "QTX_CDRPushStatisticsProvider.h"

namespace {

namespace OW = OW_NAMESPACE;
using namespace cdrtest;

const char* const kSource = "CDR/CDROAM/src/QTX_CDRPushStatisticsProvider";
const char* const kZeroDateTime = "00000000000000.000000:000";

class PushStatisticsTest : public cdrtest::ProviderTest<QTX_CDRPushStatisticsProvider, QTX_CDRPushStatistics> {
 protected:
  PushStatisticsTest() {
    statistics = new QTX_CDRPushStatisticsImpl("CDRPushStatistic");
  }
  ~PushStatisticsTest() override {
    delete statistics;
  }

  OW::CIMObjectPath path() const {
    return makePath("QTX_CDRPushStatistics", {{"Name", "CDRPushStatistic"}});
  }
  OW::CIMInstance get() { return getInstance(path()); }
  OW::CIMValue invoke(const char* method) { return invokeMethod(path(), method); }
  void setType(uint8_t type) { ZpoSetRegEntryBinary("CDR", "CDRPush", "TransferType", &type, 1); }
  void setTime(const char* text) { ZpoSetRegEntryString("CDR", "CDRPush", "LastTransferTime", text); }
  std::string storedTime() {
    char buffer[512] = {0};
    ZpoGetRegEntryString("CDR", "CDRPush", "LastTransferTime", buffer, sizeof buffer);
    return buffer;
  }

  QTX_CDRPushStatisticsImpl* statistics;
};

TEST_F(PushStatisticsTest, LastTransferTimeIsTheStoredTextAsADateTime) {
  setType(1);
  setTime("20240102030405.000000+060");
  OW::CIMInstance instance = get();
  OW::CIMPropertyArray properties = instance.getProperties();
  ASSERT_EQ(2u, properties.size());
  EXPECT_EQ("Name", std::string(properties[0].getName().c_str()));
  EXPECT_EQ("string", std::string(properties[0].getDataType().toString().c_str()));
  EXPECT_EQ("LastTransferTime", std::string(properties[1].getName().c_str()));
  EXPECT_EQ("datetime", std::string(properties[1].getDataType().toString().c_str()));
  EXPECT_EQ("CDRPushStatistic", propertyText(instance, "Name"));
  EXPECT_EQ("20240102030405.000000+060", propertyText(instance, "LastTransferTime"));
  EXPECT_EQ("true", qualifierText(instance, "LastTransferTime", "Applicable"));
  EXPECT_EQ("<absent>", qualifierText(instance, "Name", "Applicable"));
  EXPECT_TRUE(log().empty());
}

// Types 3 (pull) and 4 (none) run no push; the entry is then not even read,
// which a read fault on it would otherwise reveal. An unreadable type counts
// as a push.
TEST_F(PushStatisticsTest, ApplicabilityFollowsTheStoredTransferType) {
  struct Row { int type; bool typeFault; bool applicable; } rows[] = {
      {-1, false, true}, {0, false, true}, {2, false, true}, {3, false, false},
      {4, false, false}, {5, false, true}, {3, true, true}};
  setTime("20240102030405.000000+000");
  for (const Row& row : rows) {
    if (row.type >= 0) setType(static_cast<uint8_t>(row.type));
    if (row.typeFault) root.setFault("reg-read", "CDR", "CDRPush", "TransferType", 0x200011);
    EXPECT_EQ(row.applicable ? "true" : "false",
              qualifierText(get(), "LastTransferTime", "Applicable")) << row.type;
    root.setFault("reg-read", "CDR", "CDRPush", "LastTransferTime", 0x200011);
    EXPECT_EQ(row.applicable ? "<absent>" : kZeroDateTime,
              propertyText(get(), "LastTransferTime")) << row.type;
    root.clearFaults();
  }
}

TEST_F(PushStatisticsTest, MissingEntryReadsAsOneNulAndIsNotCreated) {
  setType(0);
  std::string value = "untouched";
  OW::Array<OW::CIMQualifier> qualifiers;
  EXPECT_EQ(0, statistics->getLastTransferTime(value, qualifiers));
  EXPECT_EQ(std::string(1, '\0'), value);
  EXPECT_EQ(kZeroDateTime, propertyText(get(), "LastTransferTime"));
  EXPECT_FALSE(root.hasEntry("CDR", "CDRPush", "LastTransferTime"));
  EXPECT_TRUE(log().empty());
}

TEST_F(PushStatisticsTest, FailedReadIsLoggedAndLeavesThePropertyOut) {
  setType(0);
  setTime("20240102030405.000000+000");
  root.setFault("reg-read", "CDR", "CDRPush", "LastTransferTime", 0x1234);
  std::string value;
  OW::Array<OW::CIMQualifier> qualifiers;
  EXPECT_EQ(100, statistics->getLastTransferTime(value, qualifiers));
  EXPECT_EQ(std::string(1, '\0'), value);
  OW::CIMInstance instance = get();
  EXPECT_EQ("<absent>", propertyText(instance, "LastTransferTime"));
  EXPECT_EQ("CDRPushStatistic", propertyText(instance, "Name"));
  std::vector<std::string> lines = log();
  ASSERT_EQ(2u, lines.size());
  EXPECT_NE(std::string::npos, lines[0].find("cat=2 level=4 id=-1 getLastTransferTime error = 4660"));
}

TEST_F(PushStatisticsTest, ControlCharactersOrAnEmptyTextAreWarnedAboutAndShownEmpty) {
  setType(2);
  for (const char* stored : {"20240102\t030405.000000+000", ""}) {
    setTime(stored);
    std::string value = "untouched";
    OW::Array<OW::CIMQualifier> qualifiers;
    EXPECT_EQ(0, statistics->getLastTransferTime(value, qualifiers));
    EXPECT_EQ("", value);
    ASSERT_FALSE(log().empty());
    EXPECT_NE(std::string::npos,
              log().back().find("cat=2 level=2 id=-1 ControlCharacters Found in PDR:Push-LastTransferTime"));
    EXPECT_EQ(stored, storedTime());
  }
}

// The parse belongs to OpenWBEM and is not guarded: the failure leaves the
// provider as it came, not as a CIM error.
TEST_F(PushStatisticsTest, TextThatIsNoDateTimeLeavesAsTheDateTimeParseFailure) {
  setType(0);
  setTime("yesterday at noon");
  EXPECT_THROW(get(), OW::CIMDateTimeException);
}

TEST_F(PushStatisticsTest, RefreshCountsAndOtherNamesAreNotFound) {
  OW::UInt32 first = invoke("Refresh").toUInt32();
  OW::UInt32 second = invoke("Refresh").toUInt32();
  EXPECT_GE(first, 1u);
  EXPECT_EQ(first + 1, second);
  for (const char* name : {"refresh", "REFRESH", "", "Refresh "}) {
    CIMError error = catchCIMError([&] { invoke(name); });
    EXPECT_EQ(17, error.code) << name;
    EXPECT_EQ(kSource, error.file);
    EXPECT_EQ(QTX_CDRPushStatisticsProviderLines.methodNotFound, error.line);
    EXPECT_FALSE(error.hasMessage);
  }
  EXPECT_EQ(second + 1, statistics->Refresh());
  EXPECT_FALSE(root.hasEntry("CDR", "CDRPush", "LastTransferTime"));
}

TEST_F(PushStatisticsTest, ModifySucceedsAndChangesNothing) {
  setType(0);
  setTime("20240102030405.000000+000");
  OW::CIMInstance instance = makeInstance(
      "QTX_CDRPushStatistics",
      {{"Name", OW::CIMValue(OW::String("CDRPushStatistic"))},
       {"LastTransferTime", OW::CIMValue(OW::CIMDateTime(OW::String("20991231235959.000000+000")))},
       {"TransferType", OW::CIMValue(OW::UInt8(3))}});
  CIMError error = catchCIMError([&] {
    modifyInstance(instance);
  });
  EXPECT_FALSE(error.thrown);
  EXPECT_EQ("20240102030405.000000+000", storedTime());
  EXPECT_EQ((std::vector<uint8_t>{0}), entry("CDRPush", "TransferType"));
}

}  // namespace
