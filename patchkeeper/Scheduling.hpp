#pragma once

#include <string>

#include "patchkeeper/Messages.hpp"
#include "patchkeeper/State.hpp"

namespace patchkeeper {

// Updates that are to be applied later, each at one moment, given as LocalMoment reads it. These
// three may be called while an operation runs. They throw StateProblem.

// Throws Failure (ScheduleFailed) when the update cannot be applied, is scheduled already, when the
// texts cannot be read, or name a moment that is over.
void ScheduleUpdate(const State& state, const std::string& name, const std::string& version,
                    const std::string& date, const std::string& time, std::ostream& notes);

// Both throw Failure (ModifyFailed) when the update is not scheduled; the first also for texts as
// above. An update that failed when it was due may be given another moment.
void MoveSchedule(const State& state, const std::string& name, const std::string& version,
                  const std::string& date, const std::string& time, std::ostream& notes);
void DropSchedule(const State& state, const std::string& name, const std::string& version,
                  std::ostream& notes);

// Applies what is due now, without optional components, one after the other, each once. One that
// fails is recorded as failed, is not tried again, and does not keep the others from their turn;
// Failure (ApplyFailed) tells of them in the end. When another operation keeps the lock too long,
// StateProblem is thrown and what is due stays so.
void RunDue(const State& state, const Messages& messages);

} // namespace patchkeeper
