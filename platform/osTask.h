#pragma once

// The task service that runs the library's long actions beside the request threads. The appliance's
// utility library has one; everywhere else osTask.cpp starts a detached thread. The build option
// OSTASK_LIBRARY=FILE links another implementation of this one function in its place.

extern "C" {

/// What a task runs. The argument is a pointer in the shape of an integer; the task owns what it
/// points at.
typedef void (*OsTaskEntry)(unsigned long argument);

/// Starts a task and returns without waiting for it.
///
/// `priority`, `stackSize` and `options` are 0 for the service's own choice; ours offers nothing
/// else. The number of the task is stored in `*taskId` before the call returns. Any thread may
/// call. The result is 0 when the task has been started; any other number (ours: an errno value)
/// means that `entry` is never called and the argument stays the caller's.
int osCreateTask(const char* name, int priority, int stackSize, OsTaskEntry entry,
                 unsigned long argument, int options, unsigned long* taskId);
}
