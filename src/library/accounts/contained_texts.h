// Which of many short texts a longer one holds, found in one pass over it however many they are (Aho and
// Corasick, "Efficient string matching", 1975). Immutable, any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

class ContainedTexts {
  public:
    // An empty part is held by no text.
    explicit ContainedTexts(const std::vector<std::string>& parts);

    [[nodiscard]] bool empty() const { return nodes_.size() == 1; }

    // The place in their list of the first part that the text holds, byte for byte; nullopt without one.
    [[nodiscard]] std::optional<std::size_t> first(std::string_view text) const;

  private:
    using NodeNumber = std::uint32_t; // 0 is the root, and as a child or sibling means none
    static constexpr std::uint32_t noPart = UINT32_MAX;

    struct Node {
        NodeNumber firstChild = 0;
        NodeNumber sibling = 0;
        NodeNumber shorter = 0;      // the longest proper end of this node's text that is a node
        std::uint32_t part = noPart; // the first that ends here
        char byte = 0;
    };

    void add(std::string_view part, std::uint32_t number);
    void linkShorter();
    [[nodiscard]] NodeNumber child(NodeNumber node, char byte) const;
    [[nodiscard]] NodeNumber next(NodeNumber node, char byte) const;

    std::vector<Node> nodes_{1};
    std::array<NodeNumber, 256> rootChildren_{};
};

} // namespace corvane
