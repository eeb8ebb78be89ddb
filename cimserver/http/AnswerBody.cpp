#include "cimserver/http/Http.hpp"

#include <algorithm>
#include <cstring>

namespace cimserver::http {

namespace {

constexpr std::size_t blockSize = 64 * 1024;

} // namespace

struct AnswerBody::Blocks {
    std::vector<std::unique_ptr<char[]>> blocks;
    std::uint64_t size = 0;

    std::size_t UsedOfLast() const {
        return static_cast<std::size_t>(size - (blocks.size() - 1) * std::uint64_t{blockSize});
    }
};

AnswerBody::AnswerBody() : blocks_(std::make_unique<Blocks>()) {
}

AnswerBody::~AnswerBody() = default;

void AnswerBody::Append(std::string_view bytes) {
    Blocks& all = *blocks_;
    while (!bytes.empty()) {
        if (all.blocks.empty() || all.UsedOfLast() == blockSize) {
            all.blocks.push_back(std::unique_ptr<char[]>(new char[blockSize]));
        }
        const std::size_t used = all.UsedOfLast();
        const std::size_t count = std::min(bytes.size(), blockSize - used);
        std::memcpy(all.blocks.back().get() + used, bytes.data(), count);
        all.size += count;
        bytes.remove_prefix(count);
    }
}

void AnswerBody::Clear() {
    blocks_->blocks.clear();
    blocks_->size = 0;
}

std::uint64_t AnswerBody::Size() const {
    return blocks_->size;
}

std::size_t AnswerBody::Read(std::uint64_t position, char* target, std::size_t room) const {
    const Blocks& all = *blocks_;
    std::size_t copied = 0;
    while (copied < room && position < all.size) {
        const auto block = static_cast<std::size_t>(position / blockSize);
        const auto offset = static_cast<std::size_t>(position % blockSize);
        const std::size_t inBlock = block + 1 == all.blocks.size() ? all.UsedOfLast() : blockSize;
        const std::size_t count = std::min(room - copied, inBlock - offset);
        std::memcpy(target + copied, all.blocks[block].get() + offset, count);
        copied += count;
        position += count;
    }
    return copied;
}

std::vector<std::string_view> AnswerBody::Pieces() const {
    const Blocks& all = *blocks_;
    std::vector<std::string_view> pieces;
    pieces.reserve(all.blocks.size());
    for (const auto& block : all.blocks) {
        const bool isLast = &block == &all.blocks.back();
        pieces.emplace_back(block.get(), isLast ? all.UsedOfLast() : blockSize);
    }
    return pieces;
}

} // namespace cimserver::http
