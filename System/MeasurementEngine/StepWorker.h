// A thread for the length of one step. The object lives for a cycle; its owner gives it the step (SetStep), starts it
// and joins it, all on one thread, and reads results after the join only. Work runs on the worker's own thread. A
// worker with nothing to do in a step runs no thread.
#pragma once

#include <atomic>

#include "Frameworks/Threading/ThreadBase.h"
#include "System/Messages/StepParameters.h"

class StepWorker : public ThreadBase {
public:
    explicit StepWorker(const char* name) { SetThreadName(name); }
    ~StepWorker() override = default;

    std::int32_t Run() override;
    // A step that has been started ends by itself: no worker reads this flag.
    void Kill() override { m_abort = true; }
    std::int32_t Exit() override;

    // Not owned; it has to outlive the step.
    virtual void SetStep(const StepParameters* step) { m_step = step; }

    // False if no thread runs: the step does not need this worker, there is no device, or no thread could be created.
    // The worker then forgets the step.
    bool Start();
    void Join();  // returns at once if no thread was started

protected:
    const StepParameters* GetStep() const { return m_step; }
    void ForgetStep() { m_step = nullptr; }

    virtual bool HasWork() const = 0;  // only asked with a step
    virtual void Prepare() {}          // before each start
    // The step's work.
    virtual void Work() = 0;
    virtual void Refuse() { ForgetStep(); }

private:
    std::atomic<bool> m_abort{false};
    const StepParameters* m_step = nullptr;
};
