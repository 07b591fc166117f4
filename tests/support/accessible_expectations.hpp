#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// What a screen reader should find for a laid-out tree, read from the tree JSON alone, and the
// check of what AT-SPI reported (read_accessible.py's JSON for a window or card) against it.
namespace korvo::desktop_test {

// The names a screen reader should read for the tree, in order.
std::vector<std::string> readableNames(const nlohmann::json& tree);

// Expects `card`'s children to be the tree's texts, meters and links, in order, with the roles,
// names, values, actions and on-screen bounds (from the card's own corner) the tree gives.
// `what` names the tree in failure messages.
void expectReadsAsTree(const nlohmann::json& card, const nlohmann::json& tree,
                       const std::string& what);

}  // namespace korvo::desktop_test
