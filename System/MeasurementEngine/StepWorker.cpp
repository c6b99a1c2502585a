#include "System/MeasurementEngine/StepWorker.h"

bool StepWorker::Start() {
    m_abort = false;
    Prepare();
    if (m_step != nullptr && HasWork()) {
        if (CreateThread()) {
            return true;
        }
        ReleaseThread();
    }
    Refuse();
    ClearThreadId();
    return false;
}

void StepWorker::Join() {
    if (GetThreadId() != 0) {
        pthread_join(GetThreadId(), nullptr);
    }
    ClearThreadId();
}

std::int32_t StepWorker::Run() {
    if (Init()) {
        Work();
    }
    return Exit();
}

std::int32_t StepWorker::Exit() { pthread_exit(nullptr); }
