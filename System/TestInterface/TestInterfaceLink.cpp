// The start and the end of the test interface's link.
#include <utility>

#include "Frameworks/Utilities/TryMake.h"
#include "System/TestInterface/TestInterface.h"

bool TestInterface::CreateReceiver() {
    const MutexLock lock(m_receiverMutex);
    if (m_isKilled || m_receiver != nullptr) {
        return true;
    }
    auto receiver = TryMake<ReceiverThread>();
    if (receiver == nullptr || receiver->GetThreadId() == 0) {
        return false;
    }
    m_receiver = std::move(receiver);
    return true;
}

// The thread is joined without the lock: the caller that took the receiver is the one that ends it.
void TestInterface::EndReceiver() {
    if (const std::unique_ptr<ReceiverThread> receiver = TakeReceiver(false)) {
        receiver->Kill();
        Join(*receiver);
    }
}

std::unique_ptr<ReceiverThread> TestInterface::TakeReceiver(bool onlyIfEnded) {
    const MutexLock lock(m_receiverMutex);
    if (onlyIfEnded && m_receiver != nullptr && !m_receiver->HasEnded()) {
        return nullptr;
    }
    return std::exchange(m_receiver, nullptr);
}

void TestInterface::EndReceiverUnlessTheLinkStays() {
    if (m_isLinkDown) {
        EndReceiver();
    }
}

// A receiver that still runs is a later one: the message came from one that has been ended since.
void TestInterface::LinkEnded() {
    std::unique_ptr<ReceiverThread> receiver = TakeReceiver(true);
    if (receiver == nullptr) {
        return;
    }
    m_phase = COMMAND_RECEIVED_PHASE;
    Join(*receiver);
    receiver.reset();
    if (!m_isLinkDown && !CreateReceiver()) {
        Log("TestInterface::ProcessCommandMessage  Unable to transistion into \"TEST_STATE\"", ERROR_LOG_LEVEL);
    }
}

void TestInterface::Join(const ReceiverThread& receiver) {
    JoinThread(receiver, "TestInterface::ProcessDataMessage  Error within pthread_join", EMERGENCY_LOG_LEVEL,
               TEST_INTERFACE);
}

bool TestInterface::HandClientToResponse() {
    const MutexLock lock(m_receiverMutex);
    if (m_receiver == nullptr) {
        return false;
    }
    m_response.SetClient(m_receiver->GetClient());
    return true;
}
