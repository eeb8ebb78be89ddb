#include "provider/common/Common.hpp"

// The library's objects with a way in for the tests: no class served today starts a background
// task.
extern "C" {
void hookStartBackground(const char* command);
bool hookBackgroundRuns();
}

void hookStartBackground(const char* command) {
    SpawnBackgroundThread(command);
}

bool hookBackgroundRuns() {
    return BackgroundTasksRun();
}
