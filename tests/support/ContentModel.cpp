#include "support/ContentModel.hpp"

#include <algorithm>
#include <stdexcept>

namespace test_support {

ContentModel::ContentModel(std::string_view text) : text_(text) {
    if (MayHoldText() || IsEmpty()) {
        return;
    }
    std::size_t at = 0;
    root_ = ReadPart(at);
    if (at != text_.size()) {
        throw std::invalid_argument("not a content model: " + std::string(text));
    }
}

ContentModel::Part ContentModel::ReadPart(std::size_t& at) const {
    Part part;
    if (at < text_.size() && text_[at] == '(') {
        part = ReadGroup(at);
    } else {
        const std::size_t end = std::min(text_.find_first_of("()|,*+?", at), text_.size());
        part.name = text_.substr(at, end - at);
        at = end;
        if (part.name.empty()) {
            throw std::invalid_argument("not a content model: " + std::string(text_));
        }
    }
    if (at < text_.size() && std::string_view("*+?").find(text_[at]) != std::string_view::npos) {
        part.repetition = text_[at++];
    }
    return part;
}

ContentModel::Part ContentModel::ReadGroup(std::size_t& at) const {
    Part group;
    char separator = text_[at];
    while (separator != ')') {
        ++at;
        group.parts.push_back(ReadPart(at));
        separator = at < text_.size() ? text_[at] : '\0';
        if (group.parts.size() == 1) {
            group.isChoice = separator == '|';
        }
        if (separator != ')' && separator != (group.isChoice ? '|' : ',')) {
            throw std::invalid_argument("not a content model: " + std::string(text_));
        }
    }
    ++at;
    return group;
}

bool ContentModel::Fits(const std::vector<std::string>& children) const {
    if (MayHoldText() || IsEmpty()) {
        return children.empty();
    }
    return Match(root_, children, 0) == children.size();
}

// The models of a DTD are deterministic: the longest match of each part is the right one.
ContentModel::Position
ContentModel::Match(const Part& part, const std::vector<std::string>& children, std::size_t at) {
    Position end = MatchOnce(part, children, at);
    if (part.repetition == '*' || part.repetition == '+') {
        Position next = end;
        while (next && *next > at) {
            end = next;
            at = *next;
            next = MatchOnce(part, children, at);
        }
    }
    const bool mayBeAbsent = part.repetition == '*' || part.repetition == '?';
    return !end && mayBeAbsent ? at : end;
}

ContentModel::Position ContentModel::MatchOnce(const Part& part,
                                               const std::vector<std::string>& children,
                                               std::size_t at) {
    if (!part.name.empty()) {
        const bool isThere = at < children.size() && children[at] == part.name;
        return isThere ? Position(at + 1) : std::nullopt;
    }
    Position best = part.isChoice ? std::nullopt : Position(at);
    for (const Part& one : part.parts) {
        const Position end = Match(one, children, part.isChoice ? at : *best);
        if (part.isChoice) {
            best = std::max(best, end);
        } else if (!end) {
            return std::nullopt;
        } else {
            best = end;
        }
    }
    return best;
}

} // namespace test_support
