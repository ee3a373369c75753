#pragma once

#include <memory>
#include <string>

#include "app/Utvynapp.h"

// Applications of a given size, the same in every run.
namespace application_bench {

constexpr int FullNodes = 20000;
constexpr int FullComponents = 10000;
constexpr int FullResources = 10000;
constexpr int FullShortcuts = 500;

// A component stream: a form with a label, as nodes open them.
std::string StoredForm(int number);

// A tree of `nodes` nodes below node 1, ten children each, of which the last `shortcuts` are shortcuts to branches of
// about a hundred nodes.
void MakeTree(vyn::TTreeVyn& tree, int nodes, int shortcuts);

// `parts` eighths of the full size.
std::unique_ptr<vyn::TVynApp> MakeApplication(int parts);

}  // namespace application_bench
