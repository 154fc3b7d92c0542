#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"
#include "osa.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class MessageQueue : public ::testing::Test {
 protected:
  zpotest::TempZpoRoot root;
};

TEST_F(MessageQueue, MissingQueueIsNotCreated) {
  uint32_t id = 0xFFFFFFFF;
  EXPECT_EQ(OSA_ERR_NO_QUEUE, osQueueGetId("CDRService", &id));
  EXPECT_EQ(0xFFFFFFFFu, id);
  EXPECT_EQ(OSA_ERR_NO_QUEUE, osQueueGetId("CDRService", &id));
}

TEST_F(MessageQueue, SentMessagesReachTheOwnerInOrder) {
  auto owner = root.createQueue("CDRService");
  uint32_t id = 0;
  ASSERT_EQ(OSA_OK, osQueueGetId("CDRService", &id));
  ASSERT_EQ(OSA_OK, osQueueSend(id, "0", 1));
  ASSERT_EQ(OSA_OK, osQueueSend(id, "1", 1));
  EXPECT_EQ((std::vector<std::string>{"0", "1"}), owner.drain());
}

TEST_F(MessageQueue, SameNameGivesTheSameIdentifier) {
  auto owner = root.createQueue("CDRService");
  auto other = root.createQueue("Other");
  uint32_t first = 0, again = 0, second = 0;
  ASSERT_EQ(OSA_OK, osQueueGetId("CDRService", &first));
  ASSERT_EQ(OSA_OK, osQueueGetId("Other", &second));
  ASSERT_EQ(OSA_OK, osQueueGetId("CDRService", &again));
  EXPECT_EQ(first, again);
  EXPECT_NE(first, second);
}

TEST_F(MessageQueue, FullQueueRefusesWithoutBlocking) {
  auto owner = root.createQueue("CDRService", 1);
  uint32_t id = 0;
  ASSERT_EQ(OSA_OK, osQueueGetId("CDRService", &id));
  ASSERT_EQ(OSA_OK, osQueueSend(id, "0", 1));
  EXPECT_EQ(OSA_ERR_QUEUE_FULL, osQueueSend(id, "1", 1));
  EXPECT_EQ(std::vector<std::string>{"0"}, owner.drain());
}

TEST_F(MessageQueue, QueueThatHasGoneAwayIsReported) {
  {
    auto owner = root.createQueue("CDRService");
  }
  uint32_t id = 0;
  ASSERT_EQ(OSA_OK, osQueueGetId("CDRService", &id));
  root.removeQueue("CDRService");
  EXPECT_EQ(OSA_ERR_NO_QUEUE, osQueueSend(id, "0", 1));
  auto restarted = root.createQueue("CDRService");  // a restarted owner is found again
  EXPECT_EQ(OSA_OK, osQueueSend(id, "0", 1));
  EXPECT_EQ(std::vector<std::string>{"0"}, restarted.drain());
}

TEST_F(MessageQueue, UnknownIdentifierIsRefused) {
  EXPECT_EQ(OSA_ERR_INVALID, osQueueSend(0xFFFFFFFF, "0", 1));
}

TEST_F(MessageQueue, SendFaultSendsNothing) {
  auto owner = root.createQueue("CDRService");
  uint32_t id = 0;
  ASSERT_EQ(OSA_OK, osQueueGetId("CDRService", &id));
  root.setFault("queue-send", "", "", "", 0x30009);
  EXPECT_EQ(0x30009u, osQueueSend(id, "0", 1));
  EXPECT_TRUE(owner.drain().empty());
}

TEST_F(MessageQueue, StateDirectoriesNeverShareAQueue) {
  auto owner = root.createQueue("CDRService");
  {
    zpotest::TempZpoRoot otherDevice;
    uint32_t id = 0;
    EXPECT_EQ(OSA_ERR_NO_QUEUE, osQueueGetId("CDRService", &id));
    auto otherOwner = otherDevice.createQueue("CDRService");
    EXPECT_NE(owner.posixName(), otherOwner.posixName());
  }
  uint32_t id = 0;
  EXPECT_EQ(OSA_OK, osQueueGetId("CDRService", &id));
}

}  // namespace
