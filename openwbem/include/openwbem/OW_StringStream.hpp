// Streams that write to and read from a String.
#pragma once

#include "OW_CommonFwd.hpp"
#include "OW_String.hpp"
#include "OW_config.h"

#include <istream>
#include <ostream>
#include <streambuf>
#include <string>

namespace OpenWBEM {

// The buffers are bases of the streams, so that they exist before the streams use them.
class OW_COMMON_API OStringStreamBuffer {
protected:
    class Buffer : public std::streambuf {
    public:
        std::string text;

    protected:
        int_type overflow(int_type character) override;
        std::streamsize xsputn(const char* characters, std::streamsize length) override;
    };
    Buffer m_buffer;
};

class OW_COMMON_API OStringStream : private OStringStreamBuffer, public std::ostream {
public:
    // `size`: bytes to set aside for the start.
    explicit OStringStream(size_t size = 256);
    ~OStringStream() override;

    // What was written so far.
    String toString() const;
    // The same, and the stream begins anew.
    String releaseString();
    // Valid until something is written.
    const char* c_str() const { return m_buffer.text.c_str(); }
    size_t length() const { return m_buffer.text.length(); }
    void reset() { m_buffer.text.clear(); }
};

class OW_COMMON_API IStringStreamBuffer {
protected:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(const String& text);

    private:
        std::string m_text;
    };
    explicit IStringStreamBuffer(const String& text) : m_buffer(text) {}
    Buffer m_buffer;
};

class OW_COMMON_API IStringStream : private IStringStreamBuffer, public std::istream {
public:
    // Reads a copy of the text.
    explicit IStringStream(const String& text);
    ~IStringStream() override;
};

} // namespace OpenWBEM
