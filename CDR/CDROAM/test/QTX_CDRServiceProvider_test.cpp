// The CDR report settings served through CIM, against the real platform.
#include <algorithm>

#include "CDRTestSupport.hpp"
#include "OW_CIMQualifierType.hpp"
#include "QTX_CDRServiceProvider.h"

namespace {

namespace OW = OW_NAMESPACE;
using namespace cdrtest;

const char* const kSource = "CDR/CDROAM/src/QTX_CDRServiceProvider";

class ServiceProviderTest : public cdrtest::ProviderTest<QTX_CDRServiceProvider, QTX_CDRService> {
 protected:
  ServiceProviderTest() {
    service = new QTX_CDRServiceImpl("QTX_System", "QTX", "QTX_CDRService", "CDRService");
  }
  ~ServiceProviderTest() override {
    delete service;
  }

  OW::CIMObjectPath path() const {
    return makePath("QTX_CDRService", {{"SystemCreationClassName", "QTX_System"},
                                       {"SystemName", "QTX"},
                                       {"CreationClassName", "QTX_CDRService"},
                                       {"Name", "CDRService"}});
  }
  OW::CIMInstance get() { return getInstance(path()); }
  CIMError modify(const std::vector<std::pair<const char*, OW::CIMValue>>& properties) {
    OW::CIMInstance instance = makeInstance("QTX_CDRService", properties);
    instance.setProperty("SystemCreationClassName", OW::CIMValue(OW::String("QTX_System")));
    instance.setProperty("SystemName", OW::CIMValue(OW::String("QTX")));
    instance.setProperty("CreationClassName", OW::CIMValue(OW::String("QTX_CDRService")));
    instance.setProperty("Name", OW::CIMValue(OW::String("CDRService")));
    return catchCIMError([&] { modifyInstance(instance); });
  }
  void setByte(const char* key, uint8_t value) {
    ZpoSetRegEntryBinary("CDR", "CDRService", key, &value, 1);
  }

  QTX_CDRServiceImpl* service;
};

TEST_F(ServiceProviderTest, InstanceHoldsTheStoredValuesInOrderWithTheirCIMTypes) {
  setByte("FORMAT", 2);
  setByte("FILESIZE", 0xFF);
  uint8_t limit[2] = {0x01, 0x18};
  ZpoSetRegEntryBinary("CDR", "CDRService", "DIGITSLIMIT", limit, 2);
  uint8_t code[2] = {0xF9, 0x42};
  ZpoSetRegEntryBinary("CDR", "CDRService", "FEATURE CODE", code, 2);
  ZpoSetRegEntryInt("CDR", "CDRService", "DISKLIMIT", 4000000000u);
  setByte("DNIS", 2);
  const char* byteKeys[] = {"TYPE", "LANG", "FILTER", "DATE", "HEADER", "CONNECT", "DIGITSSUPP",
                            "SCHEDULE", "NAME", "LONGID", "CALLTYPE", "CHARGE", "SUPERVISE",
                            "TIME", "HOSPITAL"};
  for (const char* key : byteKeys) setByte(key, 1);

  OW::CIMInstance instance = get();
  OW::CIMPropertyArray properties = instance.getProperties();
  const char* expected[][2] = {
      {"Format", "uint8"}, {"ReportType", "uint8"}, {"Language", "uint8"},
      {"ReportFilter", "uint8"}, {"FeatureCode", "string"}, {"DateFormat", "uint8"},
      {"HeaderFormat", "uint8"}, {"DNISInfo", "boolean"}, {"ConnectChar", "uint8"},
      {"DigitsSuppress", "uint8"}, {"DigitsLimit", "uint16"}, {"ClipFileSchedule", "uint8"},
      {"ClipFileSize_100K", "uint32"}, {"CDRDiskSpaceLimit_MB", "uint32"},
      {"CLIDWithName", "boolean"}, {"LongCLIDSupport", "boolean"},
      {"CLIDWithCallType", "boolean"}, {"SupportCallCharge", "boolean"},
      {"AnswerSupervision", "boolean"}, {"CallFilterDuration", "uint32"},
      {"HospitalityRecords", "boolean"}, {"SystemCreationClassName", "string"},
      {"SystemName", "string"}, {"CreationClassName", "string"}, {"Name", "string"}};
  ASSERT_EQ(25u, properties.size());
  for (size_t i = 0; i < properties.size(); ++i) {
    EXPECT_EQ(expected[i][0], std::string(properties[i].getName().c_str()));
    EXPECT_EQ(expected[i][1], std::string(properties[i].getDataType().toString().c_str()));
  }
  EXPECT_EQ("2", propertyText(instance, "Format"));
  EXPECT_EQ("255", propertyText(instance, "ClipFileSize_100K"));  // widened, never sign-extended
  EXPECT_EQ("280", propertyText(instance, "DigitsLimit"));        // most significant byte first
  EXPECT_EQ("42", propertyText(instance, "FeatureCode"));
  EXPECT_EQ("4000000000", propertyText(instance, "CDRDiskSpaceLimit_MB"));
  EXPECT_EQ("true", propertyText(instance, "DNISInfo"));          // any non-zero byte is true
  EXPECT_EQ("QTX_System", propertyText(instance, "SystemCreationClassName"));
  EXPECT_EQ("0,1,2,3", qualifierText(instance, "ReportType", "ValidValueMap"));
}

TEST_F(ServiceProviderTest, ReportTypeValidValuesFollowTheFormatReadBeforeIt) {
  setByte("TYPE", 1);
  setByte("FORMAT", 2);
  root.setFault("reg-read", "CDR", "CDRService", "FORMAT", 5);
  EXPECT_EQ("0,1", qualifierText(get(), "ReportType", "ValidValueMap"));  // none read yet: format 0
  root.clearFaults();
  setByte("FORMAT", 0);
  OW::CIMInstance instance = get();
  EXPECT_EQ("0,1", qualifierText(instance, "ReportType", "ValidValueMap"));
  OW::CIMQualifier q = instance.getProperty("ReportType").getQualifier("ValidValueMap");
  EXPECT_EQ("string", std::string(q.getDefaults().getName().c_str()));
  EXPECT_EQ(OW::CIMDataType::STRING, q.getDefaults().getDataType().getType());
  EXPECT_EQ(OW::CIMDataType::UINT32, q.getValue().getType());
  EXPECT_TRUE(q.getValue().isArray());
}

TEST_F(ServiceProviderTest, FailedReadLeavesThePropertyOutAndIsLogged) {
  setByte("FORMAT", 1);
  root.setFault("reg-read", "CDR", "CDRService", "LANG", 0x1234);
  OW::CIMInstance instance = get();
  EXPECT_EQ("<absent>", propertyText(instance, "Language"));
  EXPECT_EQ("1", propertyText(instance, "Format"));
  EXPECT_EQ("CDRService", propertyText(instance, "Name"));
  std::vector<std::string> lines = log();
  EXPECT_EQ(1, std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
              return line.find(" CDROAM cat=2 level=4 id=-1 getLanguage error = 4660") != std::string::npos;
            }));
}

TEST_F(ServiceProviderTest, FeatureCodeIsPackedIntoItsSecondByte) {
  struct Row { const char* text; uint8_t stored; const char* readBack; } rows[] = {
      {"9a", 0x90, "90"}, {"123", 0x12, "12"}, {"7", 0x70, "70"}, {"", 0x00, "00"}, {"x5", 0x05, "05"}};
  for (const Row& row : rows) {
    CIMError error = modify({{"FeatureCode", OW::CIMValue(OW::String(row.text))}});
    EXPECT_FALSE(error.thrown) << row.text;
    EXPECT_EQ((std::vector<uint8_t>{0xF9, row.stored}), entry("CDRService", "FEATURE CODE")) << row.text;
    EXPECT_EQ(row.readBack, propertyText(get(), "FeatureCode")) << row.text;
  }
  uint8_t wild[2] = {0x00, 0xAB};  // nibbles above 9 are not validated
  ZpoSetRegEntryBinary("CDR", "CDRService", "FEATURE CODE", wild, 2);
  EXPECT_EQ(":;", propertyText(get(), "FeatureCode"));
}

TEST_F(ServiceProviderTest, ValueChecksRaiseInvalidParameterWithTheirMessages) {
  struct Row { const char* name; OW::CIMValue value; const char* message; } rows[] = {
      {"FeatureCode", OW::CIMValue(OW::String("1234")), "FeatureCode length must be must be <= 3"},
      {"DigitsLimit", OW::CIMValue(OW::UInt16(25)), "DigitsLimit must be <= 24"},
      {"DigitsLimit", OW::CIMValue(OW::UInt16(2)), "DigitsLimit must be >= 3"},
  };
  for (const Row& row : rows) {
    CIMError error = modify({{row.name, row.value}});
    EXPECT_EQ(4, error.code) << row.message;
    EXPECT_EQ(row.message, error.message);
    EXPECT_EQ(kSource, error.file);
    EXPECT_EQ(QTX_CDRServiceProviderLines.invalidValue, error.line);
  }
  EXPECT_FALSE(root.hasEntry("CDR", "CDRService", "DIGITSLIMIT"));
  for (uint16_t accepted : {3, 24}) {
    EXPECT_FALSE(modify({{"DigitsLimit", OW::CIMValue(OW::UInt16(accepted))}}).thrown);
    EXPECT_EQ((std::vector<uint8_t>{0, uint8_t(accepted)}), entry("CDRService", "DIGITSLIMIT"));
  }
}

TEST_F(ServiceProviderTest, ModifyStopsAtTheFirstRefusalKeepingWhatCameBefore) {
  zpotest::TempZpoRoot::Queue queue = root.createQueue("CDRService");
  CIMError error = modify({{"Format", OW::CIMValue(OW::UInt8(3))},
                           {"DigitsLimit", OW::CIMValue(OW::UInt16(30))},
                           {"Language", OW::CIMValue(OW::UInt8(5))}});
  EXPECT_EQ(4, error.code);
  EXPECT_EQ((std::vector<uint8_t>{3}), entry("CDRService", "FORMAT"));
  EXPECT_FALSE(root.hasEntry("CDR", "CDRService", "LANG"));
  EXPECT_EQ((std::vector<std::string>{"0"}), queue.drain());
}

TEST_F(ServiceProviderTest, EverySuccessfulSetNotifiesAndNarrowsToItsEntry) {
  zpotest::TempZpoRoot::Queue queue = root.createQueue("CDRService");
  testing::internal::CaptureStdout();
  CIMError error = modify({{"ClipFileSize_100K", OW::CIMValue(OW::UInt32(300))},
                           {"CallFilterDuration", OW::CIMValue(OW::UInt32(256))},
                           {"AnswerSupervision", OW::CIMValue(true)},
                           {"Unknown", OW::CIMValue(OW::UInt8(1))},
                           {"Language", OW::CIMValue(OW::CIMNULL)},
                           {"Name", OW::CIMValue(OW::String("other"))}});
  testing::internal::GetCapturedStdout();
  EXPECT_FALSE(error.thrown);
  EXPECT_EQ((std::vector<uint8_t>{44}), entry("CDRService", "FILESIZE"));
  EXPECT_EQ((std::vector<uint8_t>{0}), entry("CDRService", "TIME"));
  EXPECT_EQ((std::vector<uint8_t>{1}), entry("CDRService", "SUPERVISE"));
  EXPECT_FALSE(root.hasEntry("CDR", "CDRService", "LANG"));
  EXPECT_EQ((std::vector<std::string>{"0", "0", "0"}), queue.drain());
  EXPECT_EQ("0", propertyText(get(), "CallFilterDuration"));
}

// Every setting: a value a client writes, the entry it lands in and the
// bytes stored there (DISKLIMIT is an integer entry).
struct Setting { const char* property; OW::CIMValue value; const char* key; std::vector<uint8_t> bytes; };
std::vector<Setting> settings() {
  return {{"Format", OW::CIMValue(OW::UInt8(2)), "FORMAT", {2}},
          {"ReportType", OW::CIMValue(OW::UInt8(3)), "TYPE", {3}},
          {"Language", OW::CIMValue(OW::UInt8(4)), "LANG", {4}},
          {"ReportFilter", OW::CIMValue(OW::UInt8(5)), "FILTER", {5}},
          {"FeatureCode", OW::CIMValue(OW::String("42")), "FEATURE CODE", {0xF9, 0x42}},
          {"DateFormat", OW::CIMValue(OW::UInt8(6)), "DATE", {6}},
          {"HeaderFormat", OW::CIMValue(OW::UInt8(7)), "HEADER", {7}},
          {"DNISInfo", OW::CIMValue(true), "DNIS", {1}},
          {"ConnectChar", OW::CIMValue(OW::UInt8(8)), "CONNECT", {8}},
          {"DigitsSuppress", OW::CIMValue(OW::UInt8(9)), "DIGITSSUPP", {9}},
          {"DigitsLimit", OW::CIMValue(OW::UInt16(20)), "DIGITSLIMIT", {0, 20}},
          {"ClipFileSchedule", OW::CIMValue(OW::UInt8(10)), "SCHEDULE", {10}},
          {"ClipFileSize_100K", OW::CIMValue(OW::UInt32(11)), "FILESIZE", {11}},
          {"CDRDiskSpaceLimit_MB", OW::CIMValue(OW::UInt32(70000)), "DISKLIMIT", {}},
          {"CLIDWithName", OW::CIMValue(true), "NAME", {1}},
          {"LongCLIDSupport", OW::CIMValue(true), "LONGID", {1}},
          {"CLIDWithCallType", OW::CIMValue(true), "CALLTYPE", {1}},
          {"SupportCallCharge", OW::CIMValue(true), "CHARGE", {1}},
          {"AnswerSupervision", OW::CIMValue(true), "SUPERVISE", {1}},
          {"CallFilterDuration", OW::CIMValue(OW::UInt32(12)), "TIME", {12}},
          {"HospitalityRecords", OW::CIMValue(true), "HOSPITAL", {1}}};
}

TEST_F(ServiceProviderTest, EverySettingIsWrittenToItsEntryAndReadBack) {
  zpotest::TempZpoRoot::Queue queue = root.createQueue("CDRService");
  testing::internal::CaptureStdout();
  for (const Setting& s : settings()) {
    EXPECT_FALSE(modify({{s.property, s.value}}).thrown) << s.property;
    EXPECT_EQ(std::vector<std::string>{"0"}, queue.drain()) << s.property;  // the service is told
  }
  testing::internal::GetCapturedStdout();
  testing::internal::CaptureStdout();
  OW::CIMInstance instance = get();
  testing::internal::GetCapturedStdout();
  for (const Setting& s : settings()) {
    if (s.bytes.empty()) {
      uint32_t stored = 0;
      EXPECT_EQ(0u, ZpoGetRegEntryInt("CDR", "CDRService", s.key, &stored));
      EXPECT_EQ(70000u, stored);
    } else {
      EXPECT_EQ(s.bytes, entry("CDRService", s.key)) << s.property;
    }
    EXPECT_EQ(std::string(s.value.toString().c_str()), propertyText(instance, s.property)) << s.property;
  }
}

// A failed read leaves the property out (its getter returns 100); a failed
// write is CIM error 1 with the setter's status 101 and notifies nothing.
// Both are logged under the accessor's name.
TEST_F(ServiceProviderTest, FailedReadsAndWritesAreLoggedUnderTheAccessorsName) {
  zpotest::TempZpoRoot::Queue queue = root.createQueue("CDRService");
  root.setFault("reg-read", "CDR", "CDRService", "", 77);
  testing::internal::CaptureStdout();
  OW::CIMInstance instance = get();
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(4u, instance.getProperties().size());  // the keys
  OW::Array<OW::CIMQualifier> q;
#define QTX_CDRSERVICE_TEST_STATUS(N, T) \
  {                                      \
    T value{};                           \
    EXPECT_EQ(100, service->get##N(value, q)) << #N; \
  }
  testing::internal::CaptureStdout();
  QTX_CDRSERVICE_PROPERTIES(QTX_CDRSERVICE_TEST_STATUS)
  testing::internal::GetCapturedStdout();
#undef QTX_CDRSERVICE_TEST_STATUS
  root.clearFaults();
  root.setFault("reg-write", "CDR", "CDRService", "", 78);
  std::vector<std::string> expected;
  for (const Setting& s : settings()) expected.push_back(std::string("get") + s.property + " error = 77");
  for (const Setting& s : settings()) expected.push_back(std::string("get") + s.property + " error = 77");
  for (const Setting& s : settings()) {
    CIMError error = modify({{s.property, s.value}});
    EXPECT_EQ(1, error.code) << s.property;
    EXPECT_EQ("101", error.message) << s.property;
    EXPECT_EQ(QTX_CDRServiceProviderLines.setterFailed, error.line);
    expected.push_back(std::string("set") + s.property + " error = 78");
  }
  EXPECT_TRUE(queue.drain().empty());
  std::vector<std::string> lines = log();
  for (std::string& line : lines) line = line.substr(line.find(" CDROAM cat=2 level=4 id=-1 ") + 28);
  EXPECT_EQ(expected, lines);
}

TEST_F(ServiceProviderTest, SendFailureIsLoggedButTheSetStillSucceeds) {
  zpotest::TempZpoRoot::Queue queue = root.createQueue("CDRService");
  root.setFault("queue-send", "", "", "", 0x30002);
  EXPECT_FALSE(modify({{"Language", OW::CIMValue(OW::UInt8(2))}}).thrown);
  EXPECT_EQ((std::vector<uint8_t>{2}), entry("CDRService", "LANG"));
  ASSERT_FALSE(log().empty());
  EXPECT_NE(std::string::npos,
            log().back().find("level=1 id=-1 Notifying CDRService QueueSend failed rc =30002"));
  // A service that went away is still addressed, and that failure is logged
  // too, also by an object that found the queue when it was made.
  root.clearFaults();
  QTX_CDRServiceImpl early("QTX_System", "QTX", "QTX_CDRService", "Early");
  root.removeQueue("CDRService");
  size_t before = log().size();
  EXPECT_FALSE(modify({{"Language", OW::CIMValue(OW::UInt8(3))}}).thrown);
  EXPECT_EQ(0, early.setLanguage(4));
  std::vector<std::string> lines = log();
  ASSERT_EQ(before + 2, lines.size());
  for (size_t i = before; i < lines.size(); ++i) {
    EXPECT_NE(std::string::npos, lines[i].find("level=1 id=-1 Notifying CDRService QueueSend failed rc ="));
  }
}

TEST_F(ServiceProviderTest, WithoutAQueueSettersSucceedSilently) {
  EXPECT_FALSE(modify({{"Language", OW::CIMValue(OW::UInt8(2))}}).thrown);
  EXPECT_TRUE(log().empty());
}

TEST_F(ServiceProviderTest, MethodsCountAndClipFileTellsTheService) {
  zpotest::TempZpoRoot::Queue queue = root.createQueue("CDRService");
  OW::CIMParamValueArray in, out;
  auto invoke = [&](const char* name) {
    return provider.invokeMethod(env, "root/cimv2", path(), name, in, out).toUInt32();
  };
  EXPECT_EQ(1u, invoke("Refresh"));
  EXPECT_EQ(2u, invoke("Refresh"));
  EXPECT_EQ(1u, invoke("ClipFile"));
  EXPECT_EQ((std::vector<std::string>{"1"}), queue.drain());
  CIMError error = catchCIMError([&] { invoke("refresh"); });
  EXPECT_EQ(17, error.code);
  EXPECT_FALSE(error.hasMessage);
  EXPECT_EQ(QTX_CDRServiceProviderLines.methodNotFound, error.line);
}

TEST_F(ServiceProviderTest, LookupsCreationAndDeletionFailAsNotFoundOrNotSupported) {
  OW::CIMObjectPath missingKey = makePath("QTX_CDRService", {{"SystemName", "QTX"}});
  OW::CIMObjectPath unknown = makePath("QTX_CDRService", {{"SystemCreationClassName", "QTX_System"},
                                                          {"SystemName", "QTX"},
                                                          {"CreationClassName", "QTX_CDRService"},
                                                          {"Name", "Other"}});
  for (const OW::CIMObjectPath& p : {missingKey, unknown}) {
    CIMError error = catchCIMError([&] {
      provider.getInstance(env, "root/cimv2", p, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                           OW::WBEMFlags::E_INCLUDE_QUALIFIERS, OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN,
                           0, OW::CIMClass(OW::CIMNULL));
    });
    EXPECT_EQ(6, error.code);
    EXPECT_EQ(kSource, error.file);
    EXPECT_FALSE(error.hasMessage);
  }
  EXPECT_EQ(6, catchCIMError([&] { provider.deleteInstance(env, "root/cimv2", unknown); }).code);
  EXPECT_EQ(7, catchCIMError([&] { provider.deleteInstance(env, "root/cimv2", path()); }).code);
  EXPECT_EQ(7, catchCIMError([&] {
              provider.createInstance(env, "root/cimv2", makeInstance("QTX_CDRService", {}));
            }).code);
  cdrtest::PathCollector names;
  provider.enumInstanceNames(env, "root/cimv2", "QTX_CDRService", names, OW::CIMClass(OW::CIMNULL));
  ASSERT_EQ(1u, names.items.size());  // the object survived the delete attempt
  EXPECT_EQ(4u, names.items[0].getKeys().size());
}

}  // namespace
