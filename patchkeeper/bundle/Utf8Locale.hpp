#pragma once

#include <clocale>

#include <locale.h>

namespace patchkeeper::bundle {

// Makes the calling thread read and write characters as UTF-8 while the object lives: the archive
// library converts the names of entries by the locale. C.UTF-8 is part of the C library; it is
// opened once and kept.
class Utf8Locale {
public:
    Utf8Locale() : before_(uselocale(Ours())) {}
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;
    ~Utf8Locale() { uselocale(before_); }

private:
    static locale_t Ours() {
        static const locale_t ours = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return ours; // when there is none the locale stays as it is
    }

    locale_t before_;
};

} // namespace patchkeeper::bundle
