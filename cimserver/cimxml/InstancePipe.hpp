// Writes the instances of a large answer beside the provider that makes them.
#pragma once

#include "cimserver/cimxml/InstanceWriter.hpp"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace cimserver::cimxml {

/// A thread that takes instances in batches, in their order. The writer and its buffer are that
/// thread's from the constructor to the end of Finish or of the destructor; everything else here is
/// for the one thread that made it. That thread also destroys the instances: memory is cheapest to
/// free where it was allocated.
class InstancePipe {
public:
    /// Throws std::system_error when there is no thread to be had.
    explicit InstancePipe(InstanceWriter& writer);
    /// Drops what is not written yet.
    ~InstancePipe();
    InstancePipe(const InstancePipe&) = delete;
    InstancePipe& operator=(const InstancePipe&) = delete;

    /// Waits while the writing is far behind, never for a client. Throws what an earlier instance
    /// threw when it was written; nothing behind that one is written.
    void Add(const OpenWBEM::CIMInstance& instance);
    /// Returns when everything is written; throws as Add does.
    void Finish();

private:
    using Batch = std::vector<OpenWBEM::CIMInstance>;

    void HandOver();
    void Write();
    void WriteUntilEnd();
    void End();

    InstanceWriter& writer_;
    Batch filling_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Batch> full_;
    std::vector<Batch> written_;
    std::exception_ptr failure_;
    bool isEnded_ = false;
    bool isDropped_ = false;

    std::thread thread_;
};

} // namespace cimserver::cimxml
