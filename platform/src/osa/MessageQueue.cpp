// libosa message queues on POSIX message queues.
//
// Queue "NAME" of a state directory is the POSIX queue
// "/zpo-<hash of the directory>-NAME" (see StateDirectory.hpp), so devices on
// different state directories never share a queue. An identifier is an index
// into this process's table of opened queues.
#include "osa.h"

#include "RegistryStore.hpp"
#include "StateDirectory.hpp"

#include <cerrno>
#include <fcntl.h>
#include <mqueue.h>
#include <mutex>
#include <string>
#include <vector>

namespace {

struct OpenedQueue {
  std::string posixName;
  mqd_t descriptor;
};

std::mutex gQueuesLock;
std::vector<OpenedQueue> gQueues;

mqd_t openForSending(const std::string& posixName) {
  return mq_open(posixName.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
}

}  // namespace

extern "C" {

uint32_t osQueueGetId(const char* name, uint32_t* id) {
  if (name == nullptr || id == nullptr) return OSA_ERR_INVALID;
  const std::string root = zpo::currentStateRoot();
  if (root.empty()) return OSA_ERR_NO_QUEUE;
  const std::string posixName = zpo::posixQueueName(root, name);
  if (posixName.empty()) return OSA_ERR_INVALID;
  const mqd_t descriptor = openForSending(posixName);
  if (descriptor == static_cast<mqd_t>(-1)) return errno == ENOENT ? OSA_ERR_NO_QUEUE : OSA_ERR_INVALID;
  std::lock_guard<std::mutex> hold(gQueuesLock);
  // Asking again for the same queue gives the same identifier.
  for (std::size_t index = 0; index < gQueues.size(); ++index) {
    if (gQueues[index].posixName == posixName) {
      mq_close(gQueues[index].descriptor);
      gQueues[index].descriptor = descriptor;
      *id = static_cast<uint32_t>(index);
      return OSA_OK;
    }
  }
  gQueues.push_back(OpenedQueue{posixName, descriptor});
  *id = static_cast<uint32_t>(gQueues.size() - 1);
  return OSA_OK;
}

uint32_t osQueueSend(uint32_t id, const void* message, uint32_t length) {
  if (message == nullptr && length > 0) return OSA_ERR_INVALID;
  std::lock_guard<std::mutex> hold(gQueuesLock);
  if (id >= gQueues.size()) return OSA_ERR_INVALID;
  OpenedQueue& queue = gQueues[id];
  const uint32_t fault = zpo::processInjectedFault(zpo::FaultOp::kQueueSend);
  if (fault != 0) return fault;
  // An open descriptor would still reach a queue that was removed: look the
  // name up again so that a vanished owner is noticed and a new one is found.
  const mqd_t current = openForSending(queue.posixName);
  if (current == static_cast<mqd_t>(-1)) return errno == ENOENT ? OSA_ERR_NO_QUEUE : OSA_ERR_SEND;
  mq_close(queue.descriptor);
  queue.descriptor = current;
  if (mq_send(queue.descriptor, static_cast<const char*>(message), length, 0) == 0) return OSA_OK;
  return errno == EAGAIN ? OSA_ERR_QUEUE_FULL : OSA_ERR_SEND;
}

}  // extern "C"
