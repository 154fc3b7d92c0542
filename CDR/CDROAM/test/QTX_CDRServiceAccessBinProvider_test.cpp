// The class "QTX_CDRServiceAccessBin" as a CIM client sees it: 5 rows keyed
// by InstanceID, backed by the registry entry "ACCESS BIN".
#include <memory>
#include <string>
#include <vector>

#include "CDRTestSupport.hpp"
#include "QTX_CDRServiceAccessBinProvider.h"

namespace {

namespace OW = OW_NAMESPACE;
namespace F = OW_NAMESPACE::WBEMFlags;
using cdrtest::propertyText;
typedef std::vector<uint8_t> Bytes;

const char* const kClass = "QTX_CDRServiceAccessBin";
const char* const kNamespace = "root/cimv2";
const CDRProviderLines& kLines = QTX_CDRServiceAccessBinProviderLines;

class AccessBinProviderTest : public cdrtest::ModuleTest {
 protected:
  AccessBinProviderTest() : environment(cdrtest::makeEnvironment()) {
    provider.initialize(environment);
    for (int row = 0; row < 5; ++row) {
      rows.emplace_back(new QTX_CDRServiceAccessBinImpl("CDRServiceAccessBin_" + std::to_string(row), row));
    }
    // Row r holds the digits r, r+1 and the suppress count 10+r.
    for (uint8_t row = 0; row < 5; ++row) seed.insert(seed.end(), {row, uint8_t(row + 1), 12, 12, 12, uint8_t(10 + row)});
    ZpoSetRegEntryBinary("CDR", "CDRService", "ACCESS BIN", seed.data(), 30);
  }
  ~AccessBinProviderTest() override {
    rows.clear();
    std::unique_ptr<QTX_CDRServiceAccessBinInstanceManager> installed(QTX_CDRServiceAccessBin::getInstanceManager());
    QTX_CDRServiceAccessBin::ClearInstanceManager();
  }
  Bytes stored() const { return entry("CDRService", "ACCESS BIN"); }
  // Modifies row 2 with the given properties after its key.
  cdrtest::CIMError modifyRow2(const std::vector<std::pair<const char*, OW::CIMValue>>& properties) {
    std::vector<std::pair<const char*, OW::CIMValue>> all = {{"InstanceID", OW::CIMValue("CDRServiceAccessBin_2")}};
    all.insert(all.end(), properties.begin(), properties.end());
    OW::CIMInstance instance = cdrtest::makeInstance(kClass, all);
    return cdrtest::catchCIMError([&] {
      provider.modifyInstance(environment, kNamespace, instance, OW::CIMInstance(),
                              F::E_EXCLUDE_QUALIFIERS, nullptr, OW::CIMClass());
    });
  }

  OW::ProviderEnvironmentIFCRef environment;
  QTX_CDRServiceAccessBinProvider provider;
  std::vector<std::unique_ptr<QTX_CDRServiceAccessBinImpl>> rows;
  Bytes seed;
};

TEST_F(AccessBinProviderTest, EnumerationYieldsTheFiveRowsInKeyOrderWithDigitsAndCounts) {
  cdrtest::InstanceCollector result;
  provider.enumInstances(environment, kNamespace, kClass, result, F::E_NOT_LOCAL_ONLY, F::E_DEEP,
                         F::E_EXCLUDE_QUALIFIERS, F::E_EXCLUDE_CLASS_ORIGIN, nullptr, OW::CIMClass(),
                         OW::CIMClass());
  ASSERT_EQ(5u, result.items.size());
  for (int row = 0; row < 5; ++row) {
    OW::CIMPropertyArray properties = result.items[row].getProperties();
    ASSERT_EQ(3u, properties.size());
    const char* const names[3] = {"AccessBin", "SuppressBin", "InstanceID"};
    const std::string values[3] = {std::to_string(row) + std::to_string(row + 1), std::to_string(10 + row),
                                   "CDRServiceAccessBin_" + std::to_string(row)};
    for (int p = 0; p < 3; ++p) {
      EXPECT_EQ(names[p], std::string(properties[p].getName().c_str()));
      EXPECT_EQ(values[p], std::string(properties[p].getValue().toString().c_str()));
      EXPECT_EQ(0u, properties[p].getQualifiers().size());
    }
  }
}

TEST_F(AccessBinProviderTest, ModifyRefusesLongTextsWithError4AndBadValuesWith301) {
  const struct { const char* property; const char* value; int code; int line; const char* message; } cases[] = {
      {"AccessBin", "123456", 4, kLines.invalidValue, "AccessBin length must be must be <= 5"},
      {"AccessBin", "12a45", 1, kLines.setterFailed, "301"},
      {"SuppressBin", "100", 4, kLines.invalidValue, "SuppressBin length must be must be <= 2"},
      {"SuppressBin", "17", 1, kLines.setterFailed, "301"},
  };
  for (const auto& c : cases) {
    cdrtest::CIMError error = modifyRow2({{c.property, OW::CIMValue(c.value)}});
    EXPECT_EQ(c.code, error.code) << c.property << " " << c.value;
    EXPECT_EQ("CDR/CDROAM/src/QTX_CDRServiceAccessBinProvider", error.file);
    EXPECT_EQ(c.line, error.line) << c.property << " " << c.value;
    EXPECT_EQ(c.message, error.message) << c.property << " " << c.value;
  }
  EXPECT_EQ(seed, stored());
}

TEST_F(AccessBinProviderTest, ModifyAppliesPropertiesInTheInstanceOrderUntilOneIsRefused) {
  EXPECT_FALSE(modifyRow2({{"SuppressBin", OW::CIMValue("16")}, {"AccessBin", OW::CIMValue("98765")}}).thrown);
  Bytes expected = seed;
  std::copy_n(Bytes{9, 8, 7, 6, 5, 16}.begin(), 6, expected.begin() + 12);
  EXPECT_EQ(expected, stored());

  EXPECT_EQ(4, modifyRow2({{"AccessBin", OW::CIMValue("4")}, {"SuppressBin", OW::CIMValue("123")}}).code);
  std::copy_n(Bytes{4, 12, 12, 12, 12}.begin(), 5, expected.begin() + 12);
  EXPECT_EQ(expected, stored());

  EXPECT_FALSE(modifyRow2({{"SuppressBin", OW::CIMValue("")}}).thrown);
  expected[17] = 0;
  EXPECT_EQ(expected, stored());
}

}  // namespace
