// The instance manager's semantics, seen through the CDR service family.
#include "CDRTestSupport.hpp"
#include "QTX_CDRPullStatisticsImpl.h"
#include "QTX_CDRPushSettingImpl.h"
#include "QTX_CDRPushStatisticsImpl.h"
#include "QTX_CDRServiceAccessBinImpl.h"
#include "QTX_CDRServiceImpl.h"
#include "QTX_CDRServicePrefixBinImpl.h"

namespace {

using cdrtest::ModuleTest;

class InstanceManagerTest : public ModuleTest {
 protected:
  InstanceManagerTest() { QTX_CDRService::SetInstanceManager(&manager); }
  ~InstanceManagerTest() override { QTX_CDRService::ClearInstanceManager(); }
  QTX_CDRServiceImplInstanceManager manager;
};

TEST_F(InstanceManagerTest, LookupsOfUnknownKeysAndExhaustedCursorsThrowNoInstance) {
  EXPECT_THROW(manager.get("a", "b", "c", "d"), CFG_NoInstance);
  EXPECT_THROW(manager.next(), CFG_NoInstance);  // cursor starts at the end
  QTX_CDRServiceImpl only("a", "b", "c", "d");
  manager.startIteration();
  ASSERT_TRUE(manager.hasNext());
  EXPECT_EQ(&only, manager.next());
  EXPECT_FALSE(manager.hasNext());
  EXPECT_THROW(manager.next(), CFG_NoInstance);
}

TEST_F(InstanceManagerTest, CursorStepsPastAnObjectRemovedUnderIt) {
  QTX_CDRServiceImpl first("1", "", "", "");
  QTX_CDRServiceImpl* second = new QTX_CDRServiceImpl("2", "", "", "");
  QTX_CDRServiceImpl third("3", "", "", "");
  manager.startIteration();
  EXPECT_EQ(&first, manager.next());
  delete second;  // the cursor's object
  EXPECT_EQ(&third, manager.next());
  EXPECT_FALSE(manager.hasNext());
}

TEST_F(InstanceManagerTest, KeysAreConcatenatedWithoutSeparatorSoTheyCanCollide) {
  QTX_CDRServiceImpl first("a", "bc", "x", "y");
  QTX_CDRServiceImpl second("ab", "c", "x", "y");
  EXPECT_EQ(&second, manager.get("abc", "", "x", "y"));
  EXPECT_EQ(&second, manager.get("a", "bc", "x", "y"));
}

TEST_F(InstanceManagerTest, SameKeyReplacesAndRemovalIsByKey) {
  QTX_CDRServiceImpl* first = new QTX_CDRServiceImpl("k", "k", "k", "k");
  QTX_CDRServiceImpl second("k", "k", "k", "k");
  EXPECT_EQ(&second, manager.get("k", "k", "k", "k"));
  delete first;  // removes the entry under the shared key, i.e. the second's
  EXPECT_THROW(manager.get("k", "k", "k", "k"), CFG_NoInstance);
}

TEST_F(InstanceManagerTest, DeletionRemovesFromTheManagerCurrentAtThatMoment) {
  QTX_CDRServiceImpl* object = new QTX_CDRServiceImpl("a", "b", "c", "d");
  QTX_CDRServiceImplInstanceManager other;
  QTX_CDRService::SetInstanceManager(&other);
  delete object;
  QTX_CDRService::SetInstanceManager(&manager);
  manager.startIteration();
  EXPECT_TRUE(manager.hasNext());  // still listed: it was removed from `other`
  manager.endIteration();
}

TEST_F(InstanceManagerTest, ClearingFallsBackToTheDefaultManager) {
  QTX_CDRServiceImpl object("a", "b", "c", "d");
  QTX_CDRService::ClearInstanceManager();
  EXPECT_EQ(&QTX_CDRService::defaultInstanceManager, QTX_CDRService::getInstanceManager());
  EXPECT_THROW(QTX_CDRService::getInstanceManager()->get("a", "b", "c", "d"), CFG_NoInstance);
  QTX_CDRService::SetInstanceManager(&manager);
}

TEST_F(InstanceManagerTest, IterationIsInByteWiseKeyOrder) {
  QTX_CDRServiceImpl b("_2", "", "", "");
  QTX_CDRServiceImpl a("_10", "", "", "");
  QTX_CDRServiceImpl c("_1", "", "", "");
  std::vector<QTX_CDRService*> seen;
  manager.startIteration();
  while (manager.hasNext()) seen.push_back(manager.next());
  manager.endIteration();
  EXPECT_EQ((std::vector<QTX_CDRService*>{&c, &a, &b}), seen);
}

TEST_F(InstanceManagerTest, NoManagerCreatesOrDestroys) {
  EXPECT_THROW(manager.createQTX_CDRService("a", "b", "c", "d"), CFG_InstanceCreationFailed);
  QTX_CDRServiceImpl object("a", "b", "c", "d");
  EXPECT_THROW(manager.destroyQTX_CDRService(&object), CFG_InstanceDeletionFailed);
  EXPECT_EQ(&object, manager.get("a", "b", "c", "d"));
}

// What the managed classes answer for a property their implementation does
// not provide: the settings' getters fail with 100 and their setters with
// 101; the pull statistics read as nothing (0) but refuse the flag (101).
TEST_F(ModuleTest, ManagedClassesOwnAccessorsRefuse) {
  OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier> q;
  QTX_CDRServiceImpl service("a", "b", "c", "d");
  testing::internal::CaptureStdout();
  QTX_CDRPushSettingImpl push("p");
  testing::internal::GetCapturedStdout();
#define CDR_TEST_BASE_ACCESSORS(C, object, N, T) \
  {                                             \
    T value{};                                  \
    EXPECT_EQ(100, object.C::get##N(value, q)) << #N; \
    EXPECT_EQ(101, object.C::set##N(value)) << #N;    \
  }
#define CDR_TEST_SERVICE(N, T) CDR_TEST_BASE_ACCESSORS(QTX_CDRService, service, N, T)
#define CDR_TEST_PUSH(N, T) CDR_TEST_BASE_ACCESSORS(QTX_CDRPushSetting, push, N, T)
  QTX_CDRSERVICE_PROPERTIES(CDR_TEST_SERVICE)
  QTX_CDRPUSHSETTING_PROPERTIES(CDR_TEST_PUSH)
#undef CDR_TEST_PUSH
#undef CDR_TEST_SERVICE
#undef CDR_TEST_BASE_ACCESSORS

  std::string text;
  QTX_CDRServiceAccessBinImpl access("x", 0);
  EXPECT_EQ(100, access.QTX_CDRServiceAccessBin::getAccessBin(text, q));
  EXPECT_EQ(100, access.QTX_CDRServiceAccessBin::getSuppressBin(text, q));
  EXPECT_EQ(101, access.QTX_CDRServiceAccessBin::setAccessBin("1"));
  EXPECT_EQ(101, access.QTX_CDRServiceAccessBin::setSuppressBin("1"));
  QTX_CDRServicePrefixBinImpl prefix("y", 0);
  EXPECT_EQ(100, prefix.QTX_CDRServicePrefixBin::getPrefixBin(text, q));
  EXPECT_EQ(101, prefix.QTX_CDRServicePrefixBin::setPrefixBin("1"));
  QTX_CDRPushStatisticsImpl pushed("s");
  EXPECT_EQ(100, pushed.QTX_CDRPushStatistics::getLastTransferTime(text, q));
  QTX_CDRPullStatisticsImpl pulled("t");
  unsigned int count = 7;
  bool flag = true;
  EXPECT_EQ(0, pulled.QTX_CDRPullStatistics::getNumberOfSuccessfulTransfers(count, q));
  EXPECT_EQ(0, pulled.QTX_CDRPullStatistics::getReasonForFailure(text, q));
  EXPECT_EQ(0, pulled.QTX_CDRPullStatistics::getIncludeMetricsFlag(flag, q));
  EXPECT_EQ(101, pulled.QTX_CDRPullStatistics::setIncludeMetricsFlag(true));
}

}  // namespace
