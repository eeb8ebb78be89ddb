// A content model as a DTD writes it, such as "(QUALIFIER*,VALUE?)", and the question whether the
// children of an element fit it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

class ContentModel {
public:
    /// Reads `text`, which must stay alive; std::invalid_argument when it is no content model.
    /// EMPTY and #PCDATA are models without children.
    explicit ContentModel(std::string_view text);

    bool Fits(const std::vector<std::string>& children) const;
    bool MayHoldText() const { return text_ == "#PCDATA"; }
    bool IsEmpty() const { return text_ == "EMPTY"; }
    std::string_view Text() const { return text_; }

private:
    struct Part {
        std::string_view name; ///< empty: a group
        std::vector<Part> parts;
        bool isChoice = false;
        char repetition = ' ';
    };

    Part ReadPart(std::size_t& at) const;
    Part ReadGroup(std::size_t& at) const;
    using Position = std::optional<std::size_t>;
    static Position Match(const Part& part, const std::vector<std::string>& children,
                          std::size_t at);
    static Position MatchOnce(const Part& part, const std::vector<std::string>& children,
                              std::size_t at);

    std::string_view text_;
    Part root_;
};

} // namespace test_support
