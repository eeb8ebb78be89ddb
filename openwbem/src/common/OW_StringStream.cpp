#include "OW_StringStream.hpp"

namespace OpenWBEM {

OStringStreamBuffer::Buffer::int_type OStringStreamBuffer::Buffer::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        text.push_back(traits_type::to_char_type(character));
    }
    return traits_type::not_eof(character);
}

std::streamsize OStringStreamBuffer::Buffer::xsputn(const char* characters,
                                                    std::streamsize length) {
    text.append(characters, static_cast<size_t>(length));
    return length;
}

OStringStream::OStringStream(size_t size) : std::ostream(&m_buffer) {
    m_buffer.text.reserve(size);
}

OStringStream::~OStringStream() = default;

String OStringStream::toString() const {
    return String(m_buffer.text.data(), m_buffer.text.size());
}

String OStringStream::releaseString() {
    String written = toString();
    reset();
    return written;
}

IStringStreamBuffer::Buffer::Buffer(const String& text) : m_text(text.c_str(), text.length()) {
    char* const begin = &m_text[0];
    setg(begin, begin, begin + m_text.size());
}

IStringStream::IStringStream(const String& text)
    : IStringStreamBuffer(text), std::istream(&m_buffer) {
}

IStringStream::~IStringStream() = default;

} // namespace OpenWBEM
