#include <algorithm>
#include <bit>

#include "tree/node_store.h"

namespace vyn {

namespace arbre_sort_detail {

int ChildOf(const TNodeArbre& node) { return node.Child; }
int ChildOf(const NodeElement* element) { return element->Node.Child; }

// The middle element's key is the pivot; equal keys come out as these exchanges leave them. `splits` bounds how often
// a part may be split: one that splits badly again and again is finished by another method, so that no stored tree can
// make sorting cost the square.
template <class T>
void QuickSort(std::vector<T>& items, int low, int high, int splits) {
    while (low < high) {
        if (splits-- == 0) {
            std::stable_sort(items.begin() + low, items.begin() + high + 1,
                             [](const T& a, const T& b) { return ChildOf(a) < ChildOf(b); });
            return;
        }
        const int pivot = ChildOf(items[static_cast<size_t>(low + (high - low) / 2)]);
        int left = low;
        int right = high;
        while (left <= right) {
            while (ChildOf(items[static_cast<size_t>(left)]) < pivot) ++left;
            while (ChildOf(items[static_cast<size_t>(right)]) > pivot) --right;
            if (left > right) break;
            std::swap(items[static_cast<size_t>(left)], items[static_cast<size_t>(right)]);
            ++left;
            --right;
        }
        // The shorter part by recursion, the longer by going round: the stack stays flat.
        if (right - low < high - left) {
            QuickSort(items, low, right, splits);
            low = left;
        } else {
            QuickSort(items, left, high, splits);
            high = right;
        }
    }
}

template <class T>
void Sort(std::vector<T>& items, int low, int high) {
    constexpr int kSplitsPerLevel = 3;
    QuickSort(items, low, high, kSplitsPerLevel * std::bit_width(items.size()));
}

}  // namespace arbre_sort_detail

void SortElementsByChild(std::vector<NodeElement*>& elements) {
    arbre_sort_detail::Sort(elements, 0, static_cast<int>(elements.size()) - 1);
}

void TTreeVyn::SortTArrayDeNodesByChild(TArrayDeNodes& nodes, int low, int high) {
    arbre_sort_detail::Sort(nodes, std::max(low, 0), std::min(high, static_cast<int>(nodes.size()) - 1));
}

}  // namespace vyn
