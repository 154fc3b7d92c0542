// The class "QTX_CDRServicePrefixBin" as a CIM client sees it: 8 rows keyed
// by InstanceID, backed by the registry entry "PREFIX BIN".
#include <memory>
#include <string>
#include <vector>

#include "CDRTestSupport.hpp"
#include "QTX_CDRServicePrefixBinProvider.h"

namespace {

namespace OW = OW_NAMESPACE;
namespace F = OW_NAMESPACE::WBEMFlags;
using cdrtest::catchCIMError;
using cdrtest::propertyText;
typedef std::vector<uint8_t> Bytes;

const char* const kClass = "QTX_CDRServicePrefixBin";
const char* const kNamespace = "root/cimv2";
const CDRProviderLines& kLines = QTX_CDRServicePrefixBinProviderLines;

class PrefixBinProviderTest : public cdrtest::ModuleTest {
 protected:
  PrefixBinProviderTest() : environment(cdrtest::makeEnvironment()) {
    provider.initialize(environment);
    for (int row = 0; row < 8; ++row) {
      rows.emplace_back(new QTX_CDRServicePrefixBinImpl("CDRServicePrefixBin_" + std::to_string(row), row));
    }
  }
  ~PrefixBinProviderTest() override {
    rows.clear();
    std::unique_ptr<QTX_CDRServicePrefixBinInstanceManager> installed(QTX_CDRServicePrefixBin::getInstanceManager());
    QTX_CDRServicePrefixBin::ClearInstanceManager();
  }
  void store(const Bytes& bytes) { ZpoSetRegEntryBinary("CDR", "CDRService", "PREFIX BIN", bytes.data(), 64); }
  Bytes stored() const { return entry("CDRService", "PREFIX BIN"); }
  OW::CIMObjectPath path(const char* id) { return cdrtest::makePath(kClass, {{"InstanceID", id}}); }
  cdrtest::CIMError modify(const char* id, const OW::CIMValue& prefixBin) {
    OW::CIMInstance instance =
        cdrtest::makeInstance(kClass, {{"InstanceID", OW::CIMValue(id)}, {"PrefixBin", prefixBin}});
    return catchCIMError([&] {
      provider.modifyInstance(environment, kNamespace, instance, OW::CIMInstance(),
                              F::E_EXCLUDE_QUALIFIERS, nullptr, OW::CIMClass());
    });
  }
  static void expectError(const cdrtest::CIMError& error, int code, int line, const char* message) {
    EXPECT_EQ(code, error.code);
    EXPECT_EQ("CDR/CDROAM/src/QTX_CDRServicePrefixBinProvider", error.file);
    EXPECT_EQ(line, error.line);
    EXPECT_EQ(message != nullptr, error.hasMessage);
    EXPECT_EQ(message ? message : "", error.message);
  }

  OW::ProviderEnvironmentIFCRef environment;
  QTX_CDRServicePrefixBinProvider provider;
  std::vector<std::unique_ptr<QTX_CDRServicePrefixBinImpl>> rows;
};

TEST_F(PrefixBinProviderTest, EnumerationYieldsTheEightRowsInKeyOrderWithTheirDigits) {
  Bytes bytes(64, 12);
  for (int row = 0; row < 8; ++row) std::fill_n(bytes.begin() + 8 * row, row, row);  // row r: r digits r
  store(bytes);
  cdrtest::InstanceCollector instances;
  provider.enumInstances(environment, kNamespace, kClass, instances, F::E_NOT_LOCAL_ONLY, F::E_DEEP,
                         F::E_EXCLUDE_QUALIFIERS, F::E_EXCLUDE_CLASS_ORIGIN, nullptr, OW::CIMClass(),
                         OW::CIMClass());
  cdrtest::PathCollector names;
  provider.enumInstanceNames(environment, kNamespace, kClass, names, OW::CIMClass());
  ASSERT_EQ(8u, instances.items.size());
  ASSERT_EQ(8u, names.items.size());
  for (int row = 0; row < 8; ++row) {
    const OW::CIMInstance& instance = instances.items[row];
    const std::string id = "CDRServicePrefixBin_" + std::to_string(row);
    EXPECT_EQ(kClass, std::string(instance.getClassName().c_str()));
    OW::CIMPropertyArray properties = instance.getProperties();
    ASSERT_EQ(2u, properties.size());
    EXPECT_EQ("PrefixBin", std::string(properties[0].getName().c_str()));
    EXPECT_EQ(std::string(row, char('0' + row)), propertyText(instance, "PrefixBin"));
    EXPECT_EQ("InstanceID", std::string(properties[1].getName().c_str()));
    EXPECT_EQ(id, propertyText(instance, "InstanceID"));
    EXPECT_EQ(1u, names.items[row].getKeys().size());
    EXPECT_EQ(id, std::string(names.items[row].getKeyValue("InstanceID").toString().c_str()));
  }
}

// A row whose PrefixBin getter fails without touching its value.
class UnreadableRow : public QTX_CDRServicePrefixBinImpl {
 public:
  using QTX_CDRServicePrefixBinImpl::QTX_CDRServicePrefixBinImpl;
  int getPrefixBin(std::string&, OW::Array<OW::CIMQualifier>&) const override { return 100; }
};

// One instance is filled row after row: a row whose getter fails shows the
// PrefixBin of the row before it, not an absent one.
TEST_F(PrefixBinProviderTest, ARowWhoseGetterFailsKeepsThePreviousRowsValueInAnEnumeration) {
  rows.clear();
  rows.emplace_back(new QTX_CDRServicePrefixBinImpl("CDRServicePrefixBin_0", 0));
  rows.emplace_back(new UnreadableRow("CDRServicePrefixBin_1", 1));
  Bytes bytes(64, 12);
  std::fill_n(bytes.begin(), 3, 7);  // row 0: 777
  store(bytes);
  cdrtest::InstanceCollector instances;
  provider.enumInstances(environment, kNamespace, kClass, instances, F::E_NOT_LOCAL_ONLY, F::E_DEEP,
                         F::E_EXCLUDE_QUALIFIERS, F::E_EXCLUDE_CLASS_ORIGIN, nullptr, OW::CIMClass(),
                         OW::CIMClass());
  ASSERT_EQ(2u, instances.items.size());
  EXPECT_EQ("777", propertyText(instances.items[0], "PrefixBin"));
  EXPECT_EQ("777", propertyText(instances.items[1], "PrefixBin"));
  EXPECT_EQ("CDRServicePrefixBin_1", propertyText(instances.items[1], "InstanceID"));
}

TEST_F(PrefixBinProviderTest, AnUnreadableEntryLeavesPrefixBinOutAndIsLogged) {
  OW::CIMInstance instance =
      provider.getInstance(environment, kNamespace, path("CDRServicePrefixBin_3"), F::E_NOT_LOCAL_ONLY,
                           F::E_EXCLUDE_QUALIFIERS, F::E_EXCLUDE_CLASS_ORIGIN, nullptr, OW::CIMClass());
  EXPECT_EQ("<absent>", propertyText(instance, "PrefixBin"));
  EXPECT_EQ("CDRServicePrefixBin_3", propertyText(instance, "InstanceID"));
  ASSERT_EQ(1u, log().size());
  EXPECT_NE(std::string::npos, log()[0].find(" cat=2 level=4 id=-1 getPrefixBin error = 2097165"));
}

TEST_F(PrefixBinProviderTest, ModifyChecksTheLengthBeforeTheSetterChecksTheDigits) {
  Bytes bytes(64, 12);
  store(bytes);
  expectError(modify("CDRServicePrefixBin_1", OW::CIMValue("123456789")), 4, kLines.invalidValue,
              "PrefixBin length must be must be <= 8");
  expectError(modify("CDRServicePrefixBin_1", OW::CIMValue("1234567a")), 1, kLines.setterFailed, "301");
  EXPECT_FALSE(modify("CDRServicePrefixBin_1", OW::CIMValue(OW::CIMNULL)).thrown);
  EXPECT_EQ(bytes, stored());
  EXPECT_FALSE(modify("CDRServicePrefixBin_1", OW::CIMValue("12345678")).thrown);
  std::copy_n(Bytes{1, 2, 3, 4, 5, 6, 7, 8}.begin(), 8, bytes.begin() + 8);
  EXPECT_EQ(bytes, stored());
  root.setFault("reg-write", "CDR", "CDRService", "PREFIX BIN", 0x200011);
  expectError(modify("CDRServicePrefixBin_1", OW::CIMValue("1")), 1, kLines.setterFailed, "101");
}

TEST_F(PrefixBinProviderTest, RowsCannotBeCreatedDeletedOrFoundUnderOtherKeysAndHaveNoMethods) {
  expectError(catchCIMError([&] {
                provider.createInstance(environment, kNamespace,
                                        cdrtest::makeInstance(kClass, {{"InstanceID", OW::CIMValue("x")}}));
              }),
              7, kLines.createNotSupported, nullptr);
  expectError(catchCIMError([&] { provider.deleteInstance(environment, kNamespace, path("CDRServicePrefixBin_2")); }),
              7, kLines.deleteNotSupported, nullptr);
  expectError(catchCIMError([&] { provider.deleteInstance(environment, kNamespace, path("CDRServicePrefixBin_8")); }),
              6, kLines.pathNoInstance, nullptr);
  expectError(modify("CDRServicePrefixBin_8", OW::CIMValue("1")), 6, kLines.instanceNoInstance, nullptr);
  for (const char* name : {"", "Refresh"}) {
    OW::CIMParamValueArray in, out;
    expectError(catchCIMError([&] {
                  provider.invokeMethod(environment, kNamespace, path("CDRServicePrefixBin_0"), name, in, out);
                }),
                17, kLines.methodNotFound, nullptr);
  }
  EXPECT_EQ(rows[2].get(), QTX_CDRServicePrefixBin::getInstanceManager()->get("CDRServicePrefixBin_2"));
}

}  // namespace
