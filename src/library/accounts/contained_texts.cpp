#include "library/accounts/contained_texts.h"

#include <algorithm>

namespace corvane {

ContainedTexts::ContainedTexts(const std::vector<std::string>& parts) {
    for (std::size_t number = 0; number < parts.size(); ++number)
        add(parts[number], static_cast<std::uint32_t>(number));
    linkShorter();
}

void ContainedTexts::add(std::string_view part, std::uint32_t number) {
    if (part.empty()) return;
    NodeNumber node = 0;
    for (const char byte : part) {
        NodeNumber following = child(node, byte);
        if (following == 0) {
            following = static_cast<NodeNumber>(nodes_.size());
            nodes_.push_back({.sibling = nodes_[node].firstChild, .byte = byte});
            nodes_[node].firstChild = following;
            if (node == 0) rootChildren_[static_cast<unsigned char>(byte)] = following;
        }
        node = following;
    }
    nodes_[node].part = std::min(nodes_[node].part, number);
}

// Short texts first, so that what a node is linked to is finished.
void ContainedTexts::linkShorter() {
    std::vector<NodeNumber> order = {0};
    for (std::size_t at = 0; at < order.size(); ++at) {
        const NodeNumber parent = order[at];
        for (NodeNumber node = nodes_[parent].firstChild; node != 0; node = nodes_[node].sibling) {
            Node& made = nodes_[node];
            made.shorter = parent == 0 ? 0 : next(nodes_[parent].shorter, made.byte);
            made.part = std::min(made.part, nodes_[made.shorter].part);
            order.push_back(node);
        }
    }
}

ContainedTexts::NodeNumber ContainedTexts::child(NodeNumber node, char byte) const {
    if (node == 0) return rootChildren_[static_cast<unsigned char>(byte)];
    NodeNumber found = nodes_[node].firstChild;
    while (found != 0 && nodes_[found].byte != byte) found = nodes_[found].sibling;
    return found;
}

ContainedTexts::NodeNumber ContainedTexts::next(NodeNumber node, char byte) const {
    while (true) {
        const NodeNumber following = child(node, byte);
        if (following != 0 || node == 0) return following;
        node = nodes_[node].shorter;
    }
}

std::optional<std::size_t> ContainedTexts::first(std::string_view text) const {
    std::uint32_t earliest = noPart;
    NodeNumber node = 0;
    for (const char byte : text) {
        node = next(node, byte);
        earliest = std::min(earliest, nodes_[node].part);
    }
    return earliest == noPart ? std::nullopt : std::optional<std::size_t>(earliest);
}

} // namespace corvane
