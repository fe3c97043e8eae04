// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/ModelDefinition.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <string_view>
#include <vector>

namespace tovik {

namespace {

/// The counts at the head of the file, in this order.
struct Counts {
    std::int32_t basePhones;
    std::int32_t phones;
    std::int32_t states;
    std::int32_t baseSenones;
    std::int32_t senones;
    std::int32_t transitionMatrices;
    std::int32_t sequences;
    std::int32_t contexts;
    std::int32_t treeNodes;
    std::int32_t silence;
};

/// A node of the tree of phones in context: either the first of its branches or a phone.
struct TreeNode {
    std::int16_t context;
    std::int16_t branches;
    std::int32_t target;
};

struct Phone {
    std::int32_t sequence;
    std::int32_t transitionMatrix;
    std::int32_t details;
};

/// Reads one thing after the other and notices the end.
class Bytes {
public:
    explicit Bytes(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }

    [[nodiscard]] bool skip(std::size_t count) {
        if (count > bytes_.size() - at_) {
            return false;
        }
        at_ += count;
        return true;
    }
    /// As many as the vector holds.
    template <typename T>
    [[nodiscard]] bool take(std::vector<T>& values) {
        const auto size = values.size() * sizeof(T);
        if (size > bytes_.size() - at_) {
            return false;
        }
        std::memcpy(values.data(), bytes_.data() + at_, size);
        at_ += size;
        return true;
    }
    template <typename T>
    [[nodiscard]] bool take(T& value) {
        std::vector<T> one(1);
        const bool taken = take(one);
        value = one.front();
        return taken;
    }
    [[nodiscard]] bool skipText() {
        const auto end = std::find(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), bytes_.end(), '\0');
        if (end == bytes_.end()) {
            return false;
        }
        at_ = static_cast<std::size_t>(end - bytes_.begin()) + 1;
        return true;
    }
    [[nodiscard]] std::size_t position() const { return at_; }
    [[nodiscard]] std::size_t left() const { return bytes_.size() - at_; }

private:
    std::vector<char> bytes_;
    std::size_t at_ = 0;
};

bool isIndex(std::int64_t value, std::int64_t count) {
    return value >= 0 && value < count;
}

/// Small enough that no product of two of them is out of range, and that the file can hold as many.
bool arePlausible(const Counts& counts, std::size_t bytes) {
    const auto most = static_cast<std::int64_t>(std::min<std::size_t>(bytes, 100'000'000));
    for (const auto count :
         {counts.basePhones, counts.phones, counts.states, counts.baseSenones, counts.senones,
          counts.transitionMatrices, counts.sequences, counts.contexts, counts.treeNodes}) {
        if (count < 1 || count > most) {
            return false;
        }
    }
    return counts.basePhones <= counts.phones && counts.baseSenones <= counts.senones &&
           counts.senones <= std::numeric_limits<std::uint16_t>::max();
}

bool areWhole(const std::vector<TreeNode>& tree, const Counts& counts) {
    for (std::size_t i = 0; i < tree.size(); ++i) {
        const auto& node = tree[i];
        if (node.branches == 0) {
            // A context in which no phone was ever heard has none.
            if (node.target != -1 && !isIndex(node.target, counts.phones)) {
                return false;
            }
            continue;
        }
        // Branches stand behind their node, so that every way down ends.
        const auto last = static_cast<std::int64_t>(node.target) + node.branches - 1;
        if (node.branches < 0 || node.target <= static_cast<std::int64_t>(i) ||
            !isIndex(last, counts.treeNodes)) {
            return false;
        }
    }
    return true;
}

bool areWhole(const std::vector<Phone>& phones, const Counts& counts) {
    return std::all_of(phones.begin(), phones.end(), [&](const Phone& phone) {
        return isIndex(phone.sequence, counts.sequences) &&
               isIndex(phone.transitionMatrix, counts.transitionMatrices);
    });
}

} // namespace

bool isWholeModelDefinition(const std::filesystem::path& file) {
    Bytes bytes(file);
    std::vector<char> mark(4);
    std::int32_t version = 0;
    std::int32_t descriptionSize = 0;
    Counts counts{};
    if (!bytes.take(mark) || std::string_view(mark.data(), mark.size()) != "BMDF" || !bytes.take(version) ||
        !bytes.take(descriptionSize) || descriptionSize < 0 ||
        !bytes.skip(static_cast<std::size_t>(descriptionSize)) || !bytes.take(counts) ||
        !arePlausible(counts, bytes.left())) {
        return false;
    }

    const auto names = bytes.position();
    for (std::int32_t i = 0; i < counts.basePhones; ++i) {
        if (!bytes.skipText()) {
            return false;
        }
    }
    constexpr std::size_t alignment = 4;
    const auto padding = (alignment - (bytes.position() - names) % alignment) % alignment;

    std::vector<TreeNode> tree(static_cast<std::size_t>(counts.treeNodes));
    std::vector<Phone> phones(static_cast<std::size_t>(counts.phones));
    std::vector<std::uint16_t> senones(static_cast<std::size_t>(counts.sequences) *
                                       static_cast<std::size_t>(counts.states));
    std::int32_t senoneCount = 0;
    return bytes.skip(padding) && bytes.take(tree) && areWhole(tree, counts) && bytes.take(phones) &&
           areWhole(phones, counts) && bytes.take(senoneCount) &&
           static_cast<std::size_t>(senoneCount) == senones.size() && bytes.take(senones) &&
           std::all_of(senones.begin(), senones.end(),
                       [&](std::uint16_t senone) { return senone < counts.senones; });
}

} // namespace tovik
