// Writes XML text: markup as it is, everything else so that it can stand in a UTF-8 document.
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace cimserver::cimxml {

/// Collects an answer in portions and hands each full one to the output. The output must outlive
/// it; nothing is flushed by the destructor.
class XmlBuffer {
public:
    explicit XmlBuffer(Output& output);

    /// Bytes that are right as they are.
    void Markup(std::string_view bytes) {
        if (bytes.size() <= Room()) {
            std::memcpy(next_, bytes.data(), bytes.size());
            next_ += bytes.size();
        } else {
            MarkupInPortions(bytes);
        }
    }

    /// Any bytes as character data. What has a meaning in markup is written as one of the five
    /// predefined entities, a carriage return, which a parser would turn into a line feed, as a
    /// character reference; what XML 1.0 or UTF-8 does not allow becomes U+FFFD, once for each
    /// maximal part of a sequence (Unicode, chapter 3.9).
    void Text(std::string_view bytes);

    /// The same as an attribute's value in double quotes: there tabs and line feeds are character
    /// references too, because a parser would turn them into blanks (XML 1.0, 3.3.3).
    void Attribute(std::string_view bytes);

    template <class Integer>
    void Number(Integer number) {
        constexpr std::size_t longest = 24;
        MakeRoom(longest);
        next_ = std::to_chars(next_, next_ + longest, number).ptr;
    }

    /// How many bytes have been written.
    std::uint64_t Position() const { return flushed_ + capacity - Room(); }
    /// What was written since that position; empty when part of it has been flushed.
    std::string_view Since(std::uint64_t position) const {
        return position < flushed_ ? std::string_view()
                                   : std::string_view(memory_.get() + (position - flushed_), next_);
    }

    void Flush();
    /// Forgets everything, also what the output has.
    void Restart();

private:
    static constexpr std::size_t capacity = 64 * 1024;

    std::size_t Room() const { return static_cast<std::size_t>(memory_.get() + capacity - next_); }
    void MakeRoom(std::size_t size) {
        if (Room() < size) {
            Flush();
        }
    }
    void MarkupInPortions(std::string_view bytes);
    const char* Special(const char* at, const char* end);

    Output& output_;
    std::unique_ptr<char[]> memory_;
    char* next_;
    std::uint64_t flushed_ = 0;
};

} // namespace cimserver::cimxml
