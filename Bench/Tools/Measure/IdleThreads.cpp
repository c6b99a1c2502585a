// The least program with as many threads as the environment variable IDLE_THREADS says. All of them only wait.
#include <pthread.h>
#include <semaphore.h>

#include <cstdlib>

namespace {

sem_t g_never;

void* Wait(void*) {
    while (true) {
        sem_wait(&g_never);
    }
}

}  // namespace

int main() {
    const char* text = std::getenv("IDLE_THREADS");
    const long count = text == nullptr ? 1 : std::strtol(text, nullptr, 10);
    sem_init(&g_never, 0, 0);
    for (long thread = 1; thread < count; ++thread) {
        pthread_t id{};
        if (pthread_create(&id, nullptr, Wait, nullptr) != 0) {
            return 1;
        }
    }
    Wait(nullptr);
}
