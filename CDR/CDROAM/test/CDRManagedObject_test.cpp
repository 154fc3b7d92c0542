// The instance manager's semantics, seen through the CDR service family.
#include "CDRTestSupport.hpp"
#include "QTX_CDRServiceImpl.h"

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

}  // namespace
