#include "platform/osTask.h"

#include <cerrno>
#include <condition_variable>
#include <cstddef>
#include <mutex>

#include <gtest/gtest.h>
#include <pthread.h>

namespace {

// Where a task tells what it saw and waits until it may end.
struct Meeting {
    std::mutex lock;
    std::condition_variable changed;
    bool started = false;
    bool mayEnd = false;
    bool ended = false;
    unsigned long id = 0;

    void WaitUntil(const bool& condition) {
        std::unique_lock<std::mutex> held(lock);
        changed.wait(held, [&condition] { return condition; });
    }
    void Set(bool& condition) {
        const std::lock_guard<std::mutex> held(lock);
        condition = true;
        changed.notify_all();
    }
};

void Task(unsigned long argument) {
    Meeting& meeting = *reinterpret_cast<Meeting*>(argument);
    meeting.id = pthread_self();
    meeting.Set(meeting.started);
    meeting.WaitUntil(meeting.mayEnd);
    meeting.Set(meeting.ended);
}

int Start(Meeting& meeting, unsigned long& id, int priority = 0, int stackSize = 0,
          int options = 0) {
    return osCreateTask("BackgroundThread", priority, stackSize, Task,
                        reinterpret_cast<unsigned long>(&meeting), options, &id);
}

// The task touches the meeting until it has let go of the lock, so it is never freed.
Meeting& NewMeeting() {
    static Meeting meetings[4];
    static std::size_t used = 0;
    return meetings[used++];
}

} // namespace

TEST(OsTask, RunsTheEntryBesideTheCaller) {
    Meeting& meeting = NewMeeting();
    unsigned long id = 0;
    ASSERT_EQ(Start(meeting, id), 0);
    meeting.WaitUntil(meeting.started);
    EXPECT_NE(meeting.id, pthread_self());
    EXPECT_EQ(meeting.id, id);
    EXPECT_FALSE(meeting.ended);
    meeting.Set(meeting.mayEnd);
    meeting.WaitUntil(meeting.ended);
}

TEST(OsTask, IsDetached) {
    Meeting& meeting = NewMeeting();
    unsigned long id = 0;
    ASSERT_EQ(Start(meeting, id), 0);
    meeting.WaitUntil(meeting.started);
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_getattr_np(id, &attributes), 0);
    int state = PTHREAD_CREATE_JOINABLE;
    ASSERT_EQ(pthread_attr_getdetachstate(&attributes, &state), 0);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(state, PTHREAD_CREATE_DETACHED);
    meeting.Set(meeting.mayEnd);
    meeting.WaitUntil(meeting.ended);
}

TEST(OsTask, OffersNothingButItsOwnChoice) {
    Meeting& meeting = NewMeeting();
    unsigned long id = 17;
    EXPECT_EQ(Start(meeting, id, 1, 0, 0), EINVAL);
    EXPECT_EQ(Start(meeting, id, 0, 4096, 0), EINVAL);
    EXPECT_EQ(Start(meeting, id, 0, 0, 1), EINVAL);
    EXPECT_EQ(id, 17UL);
    EXPECT_FALSE(meeting.started);
}

TEST(OsTask, NamesTheThreadAsFarAsNamesReach) {
    Meeting& meeting = NewMeeting();
    unsigned long id = 0;
    ASSERT_EQ(Start(meeting, id), 0);
    char name[32] = "";
    ASSERT_EQ(pthread_getname_np(id, name, sizeof(name)), 0);
    EXPECT_STREQ(name, "BackgroundThrea");
    meeting.Set(meeting.mayEnd);
    meeting.WaitUntil(meeting.ended);
}

TEST(OsTask, TellsWhenNoThreadCanBeMade) {
    pthread_attr_t attributes;
    pthread_attr_t original;
    ASSERT_EQ(pthread_getattr_default_np(&original), 0);
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{1} << 46), 0);
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
    Meeting meeting;
    unsigned long id = 17;
    EXPECT_EQ(Start(meeting, id), EAGAIN);
    EXPECT_EQ(id, 17UL);
    ASSERT_EQ(pthread_setattr_default_np(&original), 0);
}
