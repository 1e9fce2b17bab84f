// Internal to the trees: what can be done to a node without knowing its tree, and
// the records of B_BT.
//
// A node has `slots` and `used`; a slot has `child` and `data`. Slot i holds the
// child left of its data, a node with `used` entries has `used` + 1 children, and
// the last child lies in slot `used`, whose data means nothing. So an array of n
// slots has room for n - 1 entries. The routines are templates: a child may be a
// pointer or a number.
#ifndef BTREE_INTERNAL_H
#define BTREE_INTERNAL_H

#include <cstring>

#include "btree.h"

namespace oak {

/// Searches the entries from `first` up to but not with `end`, which are in order,
/// by halves. compare(data) compares what is looked for with an entry. True on a
/// hit; `*slot` is the entry's place, or where what is looked for would go.
///
/// The processor guesses each outcome and errs at every other one. What that costs is
/// the way from there to the next outcome, so what either one compares with next is
/// loaded before the comparison: where there is nothing, from a slot near by.
template <class Node, class Compare>
[[gnu::always_inline]] inline bool node_search(const Node &node, uint32_t first, uint32_t end,
                                               Compare compare, uint32_t *slot) {
    const auto *const slots = node.slots;
    size_t low = first;
    size_t high = end;
    size_t mid = (low + high - (high > 0 ? 1 : 0)) / 2;
    auto data = slots[mid].data;
    while (low < high) {
        const size_t left = (low + mid - (mid > 0 ? 1 : 0)) / 2; // of `low` to `mid` - 1
        const size_t right = (mid + high) / 2;                   // of `mid` + 1 to `high` - 1
        const auto left_data = slots[left].data;
        const auto right_data = slots[right].data;
        const OAK_COMPARE result = compare(data);
        if (result == OAK_LT) {
            high = mid;
            data = left_data;
        } else if (result == OAK_GT) [[likely]] {
            low = mid + 1;
            data = right_data;
        } else {
            *slot = static_cast<uint32_t>(mid);
            return true;
        }
        mid = (low + high - 1) / 2;
    }
    *slot = static_cast<uint32_t>(low);
    return false;
}

/// Copies `count` slots, which may overlap.
template <class Slot>
void move_slots(Slot *to, const Slot *from, size_t count) {
    std::memmove(to, from, count * sizeof(Slot));
}

/// Puts `data` at place `at`, with `right` for the child to its right.
template <class Node, class Data, class Child>
void node_insert(Node &node, uint32_t at, Data data, Child right) {
    move_slots(&node.slots[at + 1], &node.slots[at], node.used - at + 1);
    node.slots[at].data = data;
    node.slots[at + 1].child = right;
    ++node.used;
}

/// Takes the entry at place `at` out, and the child to its left with it.
template <class Node>
void node_remove(Node &node, uint32_t at) {
    move_slots(&node.slots[at], &node.slots[at + 1], node.used - at);
    --node.used;
}

/// Makes `to` hold `count` entries of `from` that begin at `first`, with their children.
template <class Node>
void node_take(Node &to, const Node &from, uint32_t first, uint32_t count) {
    move_slots(&to.slots[0], &from.slots[first], size_t{count} + 1);
    to.used = count;
}

/// The entry at `separator` of the parent comes down in front of `node`'s entries
/// and the last of `left`, the node to the left, goes up in its place.
template <class Node>
void node_rotate_right(Node &parent, uint32_t separator, Node &left, Node &node) {
    const auto moved = left.slots[left.used].child;
    node_insert(node, 0, parent.slots[separator].data, node.slots[0].child);
    node.slots[0].child = moved;
    --left.used;
    parent.slots[separator].data = left.slots[left.used].data;
}

/// The mirror image: the first entry of `right` goes up, the separator comes down
/// behind `node`'s entries.
template <class Node>
void node_rotate_left(Node &parent, uint32_t separator, Node &node, Node &right) {
    node_insert(node, node.used, parent.slots[separator].data, right.slots[0].child);
    parent.slots[separator].data = right.slots[0].data;
    node_remove(right, 0);
}

/// `left` takes `separator` and all of `right`, which is then free to be released.
template <class Node, class Data>
void node_merge(Node &left, Data separator, const Node &right) {
    left.slots[left.used].data = separator;
    move_slots(&left.slots[left.used + 1], &right.slots[0], size_t{right.used} + 1);
    left.used += 1 + right.used;
}

} // namespace oak

struct b_btree_node_;
using B_BTREE_NODE = b_btree_node_;

struct B_BTREE_SLOT {
    B_BTREE_NODE *child; // null in a leaf
    void *data;
};

struct b_btree_node_ {
    B_BTREE_SLOT *slots; // room for one entry more than the tree's limit
    uint32_t used;
};

/// A level of the cursor's path: at the path's end `slot` is the place of an item,
/// or the place where a missing one would go; above, of the child gone down to.
struct B_BTREE_PATH {
    B_BTREE_NODE *node;
    uint32_t slot;
};

/// Where the cursor stands.
enum class BtCursor : uint8_t {
    lost,         // nowhere: a step goes nowhere either
    on_item,      // the path ends on it
    between,      // the path ends where the item that was looked for would go
    before_first, // past the front; no path
    after_last    // past the end; no path
};

struct _B_BTREE {
    const char *name;
    void *ctx;
    OSL_POOL node_pool; // nodes with their slots, but for the root's
    B_BTREE_PATH *path;
    B_BT_COMPARE cmpfcn;
    OSL_MEMTAG tag;
    OSL_SEM sem;
    uint32_t count;
    uint32_t slots;     // the most entries that a node keeps
    uint32_t depth;     // levels of the tree, at least 1
    uint32_t pathsize;  // levels that the path has room for, at least `depth`
    uint32_t pathlevel; // the path's end; all ones without a path
    BtCursor cursor;
    bool clustered;    // the last find ended in the node of the one before
    B_BTREE_NODE root; // its identity never changes
    void *next_value;  // what the next step forward yields whatever the path says
};

constexpr uint32_t kNoBtPath = UINT32_MAX;

#endif
