#pragma once

#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace patchkeeper::bundle {

// A SHA-256 sum (FIPS 180-4) in the making.
class Sha256 {
public:
    Sha256();
    void Add(std::string_view data);
    // 64 lower-case hexadecimal digits; ends the sum.
    std::string Hex();

private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

std::string Sha256Of(std::string_view data);

} // namespace patchkeeper::bundle
