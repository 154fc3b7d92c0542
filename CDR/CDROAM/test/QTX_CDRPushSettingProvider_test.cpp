// The push settings served through CIM, against the real platform.
#include "CDRTestSupport.hpp"
#include "OW_CIMQualifierType.hpp"
#include "QTX_CDRPushSettingProvider.h"

namespace {

namespace OW = OW_NAMESPACE;
using namespace cdrtest;

const char* const kSource = "CDR/CDROAM/src/QTX_CDRPushSettingProvider";
const char* const kTask = " /qv/bin/CDRTransfer";

class PushSettingProviderTest : public cdrtest::ProviderTest<QTX_CDRPushSettingProvider, QTX_CDRPushSetting> {
 protected:
  PushSettingProviderTest() {
    push = new QTX_CDRPushSettingImpl("CDRPushSetting");
  }
  ~PushSettingProviderTest() override {
    delete push;
  }

  OW::CIMObjectPath path() const {
    return makePath("QTX_CDRPushSetting", {{"InstanceID", "CDRPushSetting"}});
  }
  OW::CIMInstance get() { return getInstance(path()); }
  void modifyWith(const std::vector<std::pair<const char*, OW::CIMValue>>& properties) {
    OW::CIMInstance instance = makeInstance("QTX_CDRPushSetting", properties);
    instance.setProperty("InstanceID", OW::CIMValue(OW::String("CDRPushSetting")));
    modifyInstance(instance);
  }
  CIMError modify(const std::vector<std::pair<const char*, OW::CIMValue>>& properties) {
    return catchCIMError([&] { modifyWith(properties); });
  }
  CIMError invoke(const char* method, OW::CIMValue* result = nullptr) {
    return catchCIMError([&] {
      OW::CIMParamValueArray in, out;
      OW::CIMValue value = provider.invokeMethod(env, "root/cimv2", path(), method, in, out);
      if (result) *result = value;
    });
  }
  void setByte(const char* key, uint8_t value) { ZpoSetRegEntryBinary("CDR", "CDRPush", key, &value, 1); }
  void setText(const char* key, const char* text) { ZpoSetRegEntryString("CDR", "CDRPush", key, text); }
  std::string text(const char* key) const {
    char buffer[512] = {0};
    if (ZpoGetRegEntryString("CDR", "CDRPush", key, buffer, sizeof buffer) != 0) return "<absent>";
    return buffer;
  }
  static OW::CIMValue str(const char* text) { return OW::CIMValue(OW::String(text)); }

  QTX_CDRPushSettingImpl* push;
};

TEST_F(PushSettingProviderTest, InstanceHoldsEverySettingInOrderWithItsCIMType) {
  setByte("TransferType", 2);
  setText("IpAddr", "192.168.1.10");
  setText("UserName", "cdr");
  setText("Password", "secret");
  setText("DestFolder", "/in");
  setByte("NumRetry", 200);
  setByte("DeleteFlag", 1);
  setByte("CompressFlag", 0);
  setByte("IncludeMetricsFlag", 1);
  setText("TranTime", "7:5");
  setText("TranDateOfMonth", "15");
  setText("TranDateOfWeek", "3");

  OW::CIMInstance instance = get();
  const char* expected[][3] = {
      {"TransferType", "uint8", "2"},         {"IPAddress", "string", "192.168.1.10"},
      {"UserName", "string", "cdr"},          {"Password", "string", "secret"},
      {"DestFolder", "string", "/in"},        {"NumRetry", "uint32", "200"},
      {"DeleteFlag", "boolean", "true"},      {"CompressFlag", "boolean", "false"},
      {"IncludeMetricsFlag", "boolean", "true"}, {"TransferTime", "string", "7:5"},
      {"TransferDayOfMonth", "string", "15"}, {"TransferDayOfWeek", "string", ""},
      {"InstanceID", "string", "CDRPushSetting"}};
  OW::CIMPropertyArray properties = instance.getProperties();
  ASSERT_EQ(13u, properties.size());
  for (size_t i = 0; i < properties.size(); ++i) {
    EXPECT_EQ(expected[i][0], std::string(properties[i].getName().c_str()));
    EXPECT_EQ(expected[i][1], std::string(properties[i].getDataType().toString().c_str()));
    EXPECT_EQ(expected[i][2], propertyText(instance, expected[i][0]));
  }
  EXPECT_EQ("true", qualifierText(instance, "IPAddress", "Applicable"));
  EXPECT_EQ("true", qualifierText(instance, "TransferDayOfMonth", "Applicable"));
  EXPECT_EQ("false", qualifierText(instance, "TransferDayOfWeek", "Applicable"));
  EXPECT_EQ("<absent>", qualifierText(instance, "TransferType", "Applicable"));
}

TEST_F(PushSettingProviderTest, WithoutScheduledPushOnlyTheTypeApplies) {
  setByte("TransferType", 4);
  setText("IpAddr", "192.168.1.10");
  OW::CIMInstance instance = get();
  EXPECT_EQ("4", propertyText(instance, "TransferType"));
  EXPECT_EQ("", propertyText(instance, "IPAddress"));
  for (const char* name : {"IPAddress", "UserName", "Password", "DestFolder", "NumRetry", "DeleteFlag",
                           "CompressFlag", "IncludeMetricsFlag", "TransferTime", "TransferDayOfMonth",
                           "TransferDayOfWeek"}) {
    EXPECT_EQ("false", qualifierText(instance, name, "Applicable")) << name;
    OW::CIMQualifier q = instance.getProperty(name).getQualifier("Applicable");
    EXPECT_EQ("boolean", std::string(q.getDefaults().getName().c_str()));
    EXPECT_EQ(OW::CIMDataType::BOOLEAN, q.getDefaults().getDataType().getType());
  }
  EXPECT_EQ("<absent>", qualifierText(instance, "InstanceID", "Applicable"));

  // Instances share their qualifiers until one is changed: a caller's change
  // reaches neither the next instance nor the other properties.
  OW::CIMProperty changed = instance.getProperty("IPAddress");
  OW::CIMQualifier mine = changed.getQualifier("Applicable");
  mine.setValue(OW::CIMValue(true));
  changed.setQualifier(mine);
  instance.setProperty(changed);
  EXPECT_EQ("true", qualifierText(instance, "IPAddress", "Applicable"));
  EXPECT_EQ("false", qualifierText(instance, "UserName", "Applicable"));
  OW::CIMInstance next = get();
  EXPECT_EQ("false", qualifierText(next, "IPAddress", "Applicable"));
  EXPECT_EQ("false", qualifierText(next, "UserName", "Applicable"));
}

TEST_F(PushSettingProviderTest, ModifyAppliesTheRequestInOrderAndTheLastScheduleChangeWins) {
  CIMError error = modify({{"TransferType", OW::CIMValue(OW::UInt8(3))},
                           {"TransferTime", str("10:00")},
                           {"NumRetry", OW::CIMValue(OW::UInt32(300))},
                           {"CompressFlag", OW::CIMValue(true)},
                           {"DestFolder", str("/cdr")},
                           {"InstanceID", str("other")}});
  EXPECT_FALSE(error.thrown) << error.message;
  EXPECT_EQ((std::vector<uint8_t>{3}), entry("CDRPush", "TransferType"));
  EXPECT_EQ((std::vector<uint8_t>{44}), entry("CDRPush", "NumRetry"));
  EXPECT_EQ((std::vector<uint8_t>{1}), entry("CDRPush", "CompressFlag"));
  EXPECT_EQ("/cdr", text("DestFolder"));
  EXPECT_EQ((std::vector<std::string>{std::string("0 10 * * *") + kTask}), root.crontabLines());

  error = modify({{"TransferTime", str("11:00")}, {"TransferType", OW::CIMValue(OW::UInt8(4))}});
  EXPECT_FALSE(error.thrown);
  EXPECT_TRUE(root.crontabLines().empty());

  error = modify({{"TransferType", OW::CIMValue(OW::UInt8(1))}, {"TransferDayOfWeek", str("2")}});
  EXPECT_FALSE(error.thrown);
  EXPECT_EQ((std::vector<std::string>{std::string("0 11 * * 2") + kTask}), root.crontabLines());
}

TEST_F(PushSettingProviderTest, RefusedValueIsCIMFailed301KeepingWhatCameBefore) {
  struct Row { const char* name; const char* value; } rows[] = {
      {"TransferTime", "25:00"}, {"TransferDayOfMonth", "32"}, {"TransferDayOfWeek", "7"}};
  for (const Row& row : rows) {
    CIMError error = modify({{"UserName", str(row.name)}, {row.name, str(row.value)},
                             {"Password", str("never")}});
    EXPECT_EQ(1, error.code) << row.name;
    EXPECT_EQ("301", error.message);
    EXPECT_EQ(kSource, error.file);
    EXPECT_EQ(QTX_CDRPushSettingProviderLines.setterFailed, error.line);
    EXPECT_EQ(row.name, text("UserName"));
    EXPECT_EQ("<absent>", text("Password"));
  }
  EXPECT_EQ("<absent>", text("TranTime"));
  EXPECT_TRUE(root.crontabLines().empty());
}

TEST_F(PushSettingProviderTest, NullValueLeavesItsEntryAlone) {
  setText("IpAddr", "10.1.1.1");
  EXPECT_FALSE(modify({{"IPAddress", OW::CIMValue(OW::CIMNULL)}}).thrown);
  EXPECT_EQ("10.1.1.1", text("IpAddr"));
}

TEST_F(PushSettingProviderTest, RegistryFailuresPassThroughUntranslated) {
  root.setFault("reg-write", "CDR", "CDRPush", "IpAddr", 0x200011);
  EXPECT_THROW(modifyWith({{"IPAddress", str("10.1.1.1")}}), CFG_WriteError);
  root.setFault("sched-set", "", "", "", 0x200011);
  EXPECT_THROW(modifyWith({{"TransferType", OW::CIMValue(OW::UInt8(0))}}), CFG_WriteError);
  setByte("TransferType", 0);
  root.setFault("reg-read", "CDR", "CDRPush", "UserName", 0x200011);
  EXPECT_THROW(get(), CFG_ReadError);
}

TEST_F(PushSettingProviderTest, PushFileNowIsTheOnlyMethod) {
  OW::CIMValue first(OW::CIMNULL);
  ASSERT_FALSE(invoke("PushFileNow", &first).thrown);
  EXPECT_EQ(OW::CIMDataType::UINT32, first.getType());
  OW::CIMValue second(OW::CIMNULL);
  invoke("PushFileNow", &second);
  EXPECT_EQ(first.toUInt32() + 1, second.toUInt32());

  for (const char* name : {"pushfilenow", "Refresh", ""}) {
    CIMError error = invoke(name);
    EXPECT_EQ(17, error.code) << name;
    EXPECT_FALSE(error.hasMessage);
    EXPECT_EQ(QTX_CDRPushSettingProviderLines.methodNotFound, error.line);
  }
}

TEST_F(PushSettingProviderTest, CreationIsNotSupported) {
  OW::CIMInstance fresh = makeInstance("QTX_CDRPushSetting", {{"InstanceID", str("second")},
                                                              {"TransferType", OW::CIMValue(OW::UInt8(0))}});
  CIMError error = catchCIMError([&] { provider.createInstance(env, "root/cimv2", fresh); });
  EXPECT_EQ(7, error.code);
  EXPECT_EQ(QTX_CDRPushSettingProviderLines.createNotSupported, error.line);
  EXPECT_FALSE(root.hasEntry("CDR", "CDRPush", "TransferType"));
  EXPECT_EQ(push, gCDRPushInstance);  // restores still reach the one object
}

}  // namespace
