#include "cimserver/cimxml/TimeLimit.hpp"

#include "cimserver/cimxml/Trailers.hpp"

#include "OW_CIMException.hpp"

#include <utility>

namespace cimserver::cimxml {

namespace {

class Text final : public Output {
public:
    void Head(const Status& /*status*/) override {}
    void Write(std::string_view part) override { text_ += part; }
    bool HasLeft() const override { return false; }
    void Restart() override { text_.clear(); }
    void Trailers(const HeaderList& /*trailers*/) override {}
    void LimitTime(MakeLateAnswer /*late*/) override {}
    void LiftLimit() override {}

    const std::string& Whole() const { return text_; }

private:
    std::string text_;
};

std::string Reason(const std::string& what, std::chrono::milliseconds limit) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit).count();
    return what + " has been running for " + std::to_string(seconds) + " s; it is left to finish";
}

LateAnswer Late(const AnswerTo& request, const std::string& reason) {
    const OpenWBEM::CIMException error(__FILE__, __LINE__, OpenWBEM::CIMException::FAILED,
                                       reason.c_str());
    Text text;
    AnswerWriter(text, request).Fail(error);
    return {text.Whole(), TrailersOf(error), reason};
}

} // namespace

TimeLimit::TimeLimit(Output& output, std::shared_ptr<const AnswerTo> request)
    : output_(output), request_(std::move(request)) {
}

void TimeLimit::Entered(const std::string& what) {
    output_.LimitTime([request = request_, what](std::chrono::milliseconds limit) {
        return Late(*request, Reason(what, limit));
    });
}

} // namespace cimserver::cimxml
