#include "provider/common/Common.hpp"

// The library's objects with a way in for the tests, which start a background task with a command
// of their own.
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
