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
    // A step that has been started ends by itself: the mark is kept for whoever looks, and no worker cuts its step
    // short.
    void Kill() override { m_abort = true; }
    std::int32_t Exit() override;

    // Not owned; it has to outlive the step.
    virtual void SetStep(const StepParameters* step) { m_step = step; }

    // False where no thread runs: this worker is not asked for in the step, has no device, or got no thread. It has
    // forgotten the step then.
    bool Start();
    void Join();  // returns at once where no thread was started

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
