// The application logger: the one process-wide entry point for messages, with the queue of
// messages that wait for a master logger.
#include <memory>

#include "orvo/services/logger.h"

namespace orvo {

namespace {

// The registered master. A plain pointer with constant initialisation, so that a master that
// is destroyed late during program exit can still safely unregister itself.
constinit OvMasterLogger* registeredMaster = nullptr;

// Messages logged while no master is registered: id = level, name = text.
TOvListHeader<OvListnode>& PendingMessages() {
    static TOvListHeader<OvListnode> queue;
    return queue;
}

}  // namespace

void OvApplicationLogger::RegisterMasterLogger(OvMasterLogger* master) {
    registeredMaster = master;
}

OvMasterLogger* OvApplicationLogger::GetMasterLogger() {
    return registeredMaster;
}

int OvApplicationLogger::Log(int level, const String& text) {
    TOvListHeader<OvListnode>& queue = PendingMessages();
    queue.Add(new OvListnode(static_cast<unsigned int>(level), text));
    // Each message leaves the queue before it is delivered, so a logger that logs from inside
    // its own Log appends behind the current message instead of receiving it again.
    while (registeredMaster != nullptr && queue.First() != nullptr) {
        std::unique_ptr<OvListnode> message(queue.Subtract(queue.First()));
        registeredMaster->Log(static_cast<int>(message->GetId()), message->GetName().chars());
    }
    return queue.Count();
}

int OvApplicationLogger::GetPendingCount() {
    return PendingMessages().Count();
}

void OvApplicationLogger::DiscardPending() {
    PendingMessages().Destroy();
}

}  // namespace orvo
