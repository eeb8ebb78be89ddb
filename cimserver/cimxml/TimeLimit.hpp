// The time that a call may spend in a provider library, told to the output.
#pragma once

#include "cimserver/cimxml/AnswerWriter.hpp"
#include "cimserver/cimxml/CimXml.hpp"

#include <memory>
#include <string>

namespace cimserver::cimxml {

/// Limits the output's time while a call is inside a library. The late answer is CIM_ERR_FAILED,
/// and says which call has been running for how long.
class TimeLimit final : public operations::ProviderWatch {
public:
    TimeLimit(Output& output, std::shared_ptr<const AnswerTo> request);

    void Entered(const std::string& what) override;
    void Left() override { output_.LiftLimit(); }

private:
    Output& output_;
    const std::shared_ptr<const AnswerTo> request_;
};

} // namespace cimserver::cimxml
