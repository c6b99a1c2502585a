// How the test interface comes to its link and loses it.
#include <utility>

#include "Frameworks/Messaging/MessageController.h"
#include "System/TestInterface/TestInterface.h"

bool TestInterface::CreateReceiver() {
    const MutexLock lock(m_receiverMutex);
    if (m_isKilled || m_receiver != nullptr) {
        return true;
    }
    auto receiver = std::make_unique<ReceiverThread>();
    if (receiver->GetThreadId() == 0) {
        return false;
    }
    m_receiver = std::move(receiver);
    return true;
}

// The lock isn't held while the thread is joined: whoever took the receiver is the one who ends it.
void TestInterface::EndReceiver() {
    m_receiverMutex.Lock();
    const std::unique_ptr<ReceiverThread> receiver = std::exchange(m_receiver, nullptr);
    m_receiverMutex.Unlock();
    if (receiver != nullptr) {
        receiver->Kill();
        Join(*receiver);
    }
}

void TestInterface::EndReceiverUnlessTheLinkStays() {
    if (m_isLinkDown) {
        EndReceiver();
    }
}

// A receiver that still runs is a later one: the message came from one that has been ended since.
void TestInterface::LinkEnded() {
    m_receiverMutex.Lock();
    std::unique_ptr<ReceiverThread> receiver;
    if (m_receiver != nullptr && m_receiver->HasEnded()) {
        receiver = std::move(m_receiver);
    }
    m_receiverMutex.Unlock();
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
    // NOLINTNEXTLINE(bugprone-posix-return): errors are positive, and only a negative one has ever been reported
    if (pthread_join(receiver.GetThreadId(), nullptr) < 0) {
        MessageController::LogMessage("TestInterface::ProcessDataMessage  Error within pthread_join",
                                      EMERGENCY_LOG_LEVEL, TEST_INTERFACE);
    }
}

bool TestInterface::HandClientToResponse() {
    const MutexLock lock(m_receiverMutex);
    if (m_receiver == nullptr) {
        return false;
    }
    m_response.SetClient(m_receiver->GetClient());
    return true;
}
