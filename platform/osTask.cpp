#include "platform/osTask.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>

#include <pthread.h>

namespace {

struct Task {
    OsTaskEntry entry;
    unsigned long argument;
};

void* RunTask(void* pointer) {
    const Task task = *std::unique_ptr<Task>(static_cast<Task*>(pointer));
    task.entry(task.argument);
    return nullptr;
}

// Linux keeps 15 characters of a thread's name and refuses a longer one.
void NameThread(pthread_t thread, const char* name) {
    char shortened[16];
    snprintf(shortened, sizeof shortened, "%s", name);
    pthread_setname_np(thread, shortened);
}

} // namespace

int osCreateTask(const char* name, int priority, int stackSize, OsTaskEntry entry,
                 unsigned long argument, int options, unsigned long* taskId) {
    if (priority != 0 || stackSize != 0 || options != 0) {
        return EINVAL;
    }
    std::unique_ptr<Task> task(new (std::nothrow) Task{entry, argument});
    if (task == nullptr) {
        return ENOMEM;
    }
    pthread_t thread{};
    const int failure = pthread_create(&thread, nullptr, RunTask, task.get());
    if (failure != 0) {
        return failure;
    }
    static_cast<void>(task.release());
    *taskId = thread;
    // The thread's number stays good until it is detached, even when the thread has ended.
    NameThread(thread, name);
    pthread_detach(thread);
    return 0;
}
