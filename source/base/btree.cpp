// B_BT (btree.h): an ordered set of pointers in a B-tree (Bayer and McCreight,
// 1972). Rests on the platform's memory, pools and mutexes; the maps, the node table
// of the cached tree, the R-tree's neighbours and the versioned cache rest on it.
//
// Shape. A node keeps at most `slots` entries and, but for the root, at least half
// as many. It may hold one too many for a moment, before it splits. The root is part
// of the tree's record; the tree grows and shrinks under it: a root that splits
// hands its halves to two new nodes and keeps one entry, a root of one entry whose
// two children together fit it takes them in.
//
// Cursor. The path from the root to where the last operation ended. Its end is an
// item, or the gap where an item that was not found would be; past either end of the
// tree, and where there is nothing to stand on, there is no path. A step compares
// nothing. b_btAdd keeps the path on the new item through all splits. b_btDelete
// gives the path up and keeps the removed item's successor in `next_value`: a step
// forward yields it, a step back goes from it. `next_value` outlives a b_btAdd, so a
// walk that deletes and adds goes on behind what was deleted; this is settled
// behaviour, and lookups, b_btFirst and b_btLast end it.
//
// Cost. A descent makes about log2(count) comparisons. b_btFind looks into the
// cursor's node first when finds have been close together, and b_btAdd of what a
// lookup has just missed compares with the two neighbours of the gap alone. Nothing
// is allocated but by a split, which takes its nodes before the entry goes in, and
// the path's room grows with the tree, so no lookup can fail for want of memory.
#include "btree.h"

#include "btree_internal.h"
#include "container_internal.h"

namespace {

using Node = B_BTREE_NODE;

constexpr uint32_t kFewestSlots = 3;
constexpr uint32_t kPathGrowth = 5;

template <class Call>
[[gnu::noinline]] auto run_with_mutex(B_BT tree, Call call) {
    const oak::ContainerLock lock(tree->sem);
    return call();
}

/// Runs a call, holding the tree's mutex where it has one. Without one, a walk or a
/// find pays a comparison for it and no stack frame.
template <class Call>
auto locked(B_BT tree, Call call) {
    if (tree->sem == OSL_SEM_NONE) [[likely]] {
        return call();
    }
    return run_with_mutex(tree, call);
}

// ---- Nodes ------------------------------------------------------------------

/// Slots of a node: an entry more than it keeps, and the last child behind it.
size_t slots_to_allocate(uint32_t slots) {
    return size_t{slots} + 2;
}

/// A node and its slots in one block; null when memory ends.
Node *get_node(B_BT tree) {
    const size_t size = sizeof(Node) + slots_to_allocate(tree->slots) * sizeof(B_BTREE_SLOT);
    void *block = osl_poolGetMem(tree->node_pool, size, OSL_MEM_PLAIN, 0, __FILE__, __LINE__);
    if (block == nullptr) {
        return nullptr;
    }
    auto *node = static_cast<Node *>(block);
    node->slots = reinterpret_cast<B_BTREE_SLOT *>(node + 1);
    node->used = 0;
    return node;
}
static_assert(sizeof(Node) % alignof(B_BTREE_SLOT) == 0);

void release_node(B_BT tree, Node *node) {
    osl_poolPut(tree->node_pool, node);
}

Node *child_at(const Node *node, uint32_t slot) {
    return node->slots[slot].child;
}

/// Nodes that wait for a split, each one's first child being the next.
class SpareNodes {
  public:
    Node *take() {
        Node *node = first_;
        first_ = child_at(node, 0);
        return node;
    }
    /// Takes `count` nodes from the pool; none on failure.
    OAK_RETCODE fill(B_BT tree, uint32_t count) {
        for (; count > 0; --count) {
            Node *node = get_node(tree);
            if (node == nullptr) {
                give_back(tree);
                return eNOMEMORY;
            }
            node->slots[0].child = first_;
            first_ = node;
        }
        return sOKAY;
    }

  private:
    void give_back(B_BT tree) {
        while (first_ != nullptr) {
            release_node(tree, take());
        }
    }
    Node *first_ = nullptr;
};

// ---- The path ---------------------------------------------------------------

bool has_path(const _B_BTREE *tree) {
    return tree->pathlevel != kNoBtPath;
}

B_BTREE_PATH &path_end(B_BT tree) {
    return tree->path[tree->pathlevel];
}

void push(B_BT tree, Node *node, uint32_t slot) {
    ++tree->pathlevel;
    path_end(tree) = {node, slot};
}

/// Gives the path up and says where the cursor stands without one.
void *leave_path(B_BT tree, BtCursor cursor) {
    tree->pathlevel = kNoBtPath;
    tree->cursor = cursor;
    return nullptr;
}

/// The item at the path's end, on which the cursor then stands.
void *stand_on_item(B_BT tree) {
    tree->cursor = BtCursor::on_item;
    const B_BTREE_PATH &end = path_end(tree);
    return end.node->slots[end.slot].data;
}

void push_leftmost(B_BT tree, Node *node) {
    for (; node != nullptr; node = child_at(node, 0)) {
        push(tree, node, 0);
    }
}

/// Every level's slot is then the last child's, that of the leaf one past its items.
void push_rightmost(B_BT tree, Node *node) {
    for (; node != nullptr; node = child_at(node, node->used)) {
        push(tree, node, node->used);
    }
}

/// Makes room for a path of one level more than the tree has.
OAK_RETCODE make_path_room(B_BT tree) {
    if (tree->depth < tree->pathsize) {
        return sOKAY;
    }
    const OAK_RETCODE rc = oak::extend_zeroed(tree->pathsize, size_t{tree->pathsize} + kPathGrowth,
                                              tree->tag, &tree->path, __FILE__, __LINE__);
    if (rc == sOKAY) {
        tree->pathsize += kPathGrowth;
    }
    return rc;
}

// ---- Search -----------------------------------------------------------------

/// What compares the lookup with an entry.
auto comparison_with(const _B_BTREE *tree, const void *lookup) {
    return [function = tree->cmpfcn, ctx = tree->ctx, lookup](const void *data) {
        return function(lookup, data, ctx);
    };
}

/// Searches from `node` down; the path gets a level for each node. Returns the item,
/// or null, the cursor then being in the gap where it would be.
void *descend(B_BT tree, Node *node, const void *lookup) {
    const auto compare = comparison_with(tree, lookup);
    B_BTREE_PATH *place = tree->path + (tree->pathlevel + 1);
    void *item = nullptr;
    for (; node != nullptr; ++place) {
        uint32_t slot = 0;
        const bool hit = oak::node_search(*node, 0, node->used, compare, &slot);
        *place = {node, slot};
        item = hit ? node->slots[slot].data : nullptr;
        node = hit ? nullptr : child_at(node, slot);
    }
    tree->pathlevel = static_cast<uint32_t>(place - tree->path) - 1;
    tree->cursor = item != nullptr ? BtCursor::on_item : BtCursor::between;
    return item;
}

void *locate(B_BT tree, const void *lookup) {
    tree->pathlevel = kNoBtPath;
    return descend(tree, &tree->root, lookup);
}

/// Looks in the node at the path's end, and below it. False if the lookup does not lie
/// between the first and the last item of that node, so that it may be anywhere.
bool locate_near(B_BT tree, const void *lookup, void **pItem) {
    B_BTREE_PATH &end = path_end(tree);
    const Node *node = end.node;
    if (node->used == 0) {
        return false;
    }
    const auto compare = comparison_with(tree, lookup);
    const uint32_t last = node->used - 1;
    const OAK_COMPARE with_first = compare(node->slots[0].data);
    const OAK_COMPARE with_last = with_first == OAK_GT ? compare(node->slots[last].data) : OAK_EQ;
    if (with_first == OAK_LT || with_last == OAK_GT) {
        return false;
    }
    bool hit = true;
    uint32_t slot = with_first == OAK_EQ ? 0 : last;
    if (with_first == OAK_GT && with_last == OAK_LT) {
        hit = oak::node_search(*node, 1, last, compare, &slot);
    }
    end.slot = slot;
    *pItem = hit ? stand_on_item(tree) : descend(tree, child_at(node, slot), lookup);
    return true;
}

/// Finds the item, or null and the gap where it would be, for the lookups: a find
/// close to the last one is done from there.
void *look_up(B_BT tree, const void *lookup) {
    tree->next_value = nullptr;
    void *item = nullptr;
    if (tree->clustered && has_path(tree) && locate_near(tree, lookup, &item)) {
        return item;
    }
    const Node *before = has_path(tree) ? path_end(tree).node : nullptr;
    item = locate(tree, lookup);
    tree->clustered = path_end(tree).node == before;
    return item;
}

// ---- Walk -------------------------------------------------------------------

void *first(B_BT tree) {
    tree->pathlevel = kNoBtPath;
    push_leftmost(tree, &tree->root);
    return tree->count > 0 ? stand_on_item(tree) : leave_path(tree, BtCursor::lost);
}

void *last(B_BT tree) {
    tree->pathlevel = kNoBtPath;
    push_rightmost(tree, &tree->root);
    if (tree->count == 0) {
        return leave_path(tree, BtCursor::lost);
    }
    --path_end(tree).slot;
    return stand_on_item(tree);
}

/// From an item or a gap to the next item: the path's end moves into the gap behind
/// the item, then up until there is an item on the gap's right side.
void *step_forward(B_BT tree) {
    if (tree->cursor == BtCursor::on_item) {
        B_BTREE_PATH &end = path_end(tree);
        ++end.slot;
        Node *behind = child_at(end.node, end.slot);
        if (behind == nullptr && end.slot < end.node->used) [[likely]] {
            return end.node->slots[end.slot].data; // the next in the leaf
        }
        push_leftmost(tree, behind);
    }
    while (path_end(tree).slot == path_end(tree).node->used) {
        if (tree->pathlevel == 0) {
            return leave_path(tree, BtCursor::after_last);
        }
        --tree->pathlevel;
    }
    return stand_on_item(tree);
}

/// The mirror image.
void *step_back(B_BT tree) {
    if (tree->cursor == BtCursor::on_item) {
        push_rightmost(tree, child_at(path_end(tree).node, path_end(tree).slot));
    }
    while (path_end(tree).slot == 0) {
        if (tree->pathlevel == 0) {
            return leave_path(tree, BtCursor::before_first);
        }
        --tree->pathlevel;
    }
    --path_end(tree).slot;
    return stand_on_item(tree);
}

/// Moves the cursor onto `next_value` and clears it; returns the item.
void *take_next_value(B_BT tree) {
    const void *item = tree->next_value;
    tree->next_value = nullptr;
    return locate(tree, item);
}

void *next(B_BT tree) {
    if (tree->next_value != nullptr) [[unlikely]] {
        return take_next_value(tree);
    }
    if (has_path(tree)) [[likely]] {
        return step_forward(tree);
    }
    return tree->cursor == BtCursor::before_first ? first(tree) : nullptr;
}

void *previous(B_BT tree) {
    if (tree->next_value != nullptr) [[unlikely]] {
        take_next_value(tree);
    }
    if (has_path(tree)) [[likely]] {
        return step_back(tree);
    }
    return tree->cursor == BtCursor::after_last ? last(tree) : nullptr;
}

void *go_to_first(B_BT tree) {
    tree->next_value = nullptr;
    return first(tree);
}

void *go_to_last(B_BT tree) {
    tree->next_value = nullptr;
    return last(tree);
}

void *find_or(B_BT tree, const void *lookup, B_BTREE_ON_NOT_FOUND otherwise) {
    void *item = look_up(tree, lookup);
    if (item != nullptr || otherwise == BT_RETURN_NONE) {
        return item;
    }
    return otherwise == BT_RETURN_NEXT ? step_forward(tree) : step_back(tree);
}

/// The item behind a gap at the path's end, null at the end of the tree.
void *item_after_gap(B_BT tree) {
    for (uint32_t level = tree->pathlevel + 1; level-- > 0;) {
        const B_BTREE_PATH &place = tree->path[level];
        if (place.slot < place.node->used) {
            return place.node->slots[place.slot].data;
        }
    }
    return nullptr;
}

/// The item in front of a gap at the path's end, null at the front of the tree.
void *item_before_gap(B_BT tree) {
    for (uint32_t level = tree->pathlevel + 1; level-- > 0;) {
        const B_BTREE_PATH &place = tree->path[level];
        if (place.slot > 0) {
            return place.node->slots[place.slot - 1].data;
        }
    }
    return nullptr;
}

/// The successor of the item under the cursor, which stays.
void *successor(B_BT tree) {
    const uint32_t level = tree->pathlevel;
    const uint32_t slot = path_end(tree).slot;
    ++path_end(tree).slot;
    push_leftmost(tree, child_at(path_end(tree).node, slot + 1));
    void *item = item_after_gap(tree);
    tree->pathlevel = level;
    path_end(tree).slot = slot;
    return item;
}

// ---- Add --------------------------------------------------------------------

/// Whether the cursor stands in the very gap where the item belongs, as it does after
/// a lookup that missed it.
bool gap_fits(B_BT tree, const void *item) {
    if (tree->cursor != BtCursor::between) {
        return false;
    }
    const void *before = item_before_gap(tree);
    const void *after = item_after_gap(tree);
    return (before == nullptr || tree->cmpfcn(item, before, tree->ctx) == OAK_GT) &&
           (after == nullptr || tree->cmpfcn(item, after, tree->ctx) == OAK_LT);
}

/// How many nodes an entry at the path's end will ask for: one for each full node
/// from there up, two for the root.
uint32_t count_split_nodes(B_BT tree, bool *rootSplits) {
    uint32_t count = 0;
    uint32_t level = tree->pathlevel;
    while (level > 0 && tree->path[level].node->used == tree->slots) {
        ++count;
        --level;
    }
    *rootSplits = level == 0 && tree->root.used == tree->slots;
    return *rootSplits ? count + 2 : count;
}

/// Takes what the splits will need, so that they cannot fail half-way.
OAK_RETCODE prepare_splits(B_BT tree, SpareNodes *spare) {
    bool rootSplits = false;
    const uint32_t count = count_split_nodes(tree, &rootSplits);
    if (rootSplits) {
        const OAK_RETCODE rc = make_path_room(tree);
        if (rc != sOKAY) {
            return rc;
        }
    }
    return spare->fill(tree, count);
}

/// Puts the entries of an over-full node that lie behind its middle one into `right`
/// and returns the middle one. The path follows: its level may move into `right`, or,
/// if the new item is the middle one, end a level higher. `*wentRight` says the first.
void *split_node(B_BT tree, uint32_t level, Node *right, bool *wentRight) {
    B_BTREE_PATH &place = tree->path[level];
    Node *node = place.node;
    const uint32_t half = node->used >> 1;
    oak::node_take(*right, *node, half + 1, node->used - half - 1);
    node->used = half;
    *wentRight = place.slot > half;
    if (*wentRight) {
        place = {right, place.slot - half - 1};
    } else if (level == tree->pathlevel && place.slot == half) {
        --tree->pathlevel;
    }
    return node->slots[half].data;
}

/// Splits the over-full root: its entries go into `left`, then like any node's into
/// `right`, and the root keeps the middle one.
void split_root(B_BT tree, Node *left, Node *right) {
    Node &root = tree->root;
    oak::node_take(*left, root, 0, root.used);
    oak::move_slots(&tree->path[1], &tree->path[0], tree->pathlevel + 1);
    ++tree->pathlevel;
    ++tree->depth;
    tree->path[1].node = left;
    bool wentRight = false;
    void *middle = split_node(tree, 1, right, &wentRight);
    root.slots[0] = {left, middle};
    root.slots[1].child = right;
    root.used = 1;
    tree->path[0] = {&root, wentRight ? 1U : 0U};
}

/// Puts the item in at the path's end and splits what becomes too full.
void expand(B_BT tree, void *item, SpareNodes *spare) {
    void *data = item;
    Node *right = nullptr;
    bool wentRight = false;
    for (uint32_t level = tree->pathlevel;; --level) {
        B_BTREE_PATH &place = tree->path[level];
        oak::node_insert(*place.node, place.slot, data, right);
        place.slot += wentRight ? 1 : 0;
        if (place.node->used <= tree->slots) {
            return;
        }
        if (level == 0) {
            Node *left = spare->take();
            split_root(tree, left, spare->take());
            return;
        }
        right = spare->take();
        data = split_node(tree, level, right, &wentRight);
    }
}

OAK_RETCODE add(B_BT tree, const void *item) {
    if (item == nullptr) {
        return eINVNULLARG;
    }
    if (!gap_fits(tree, item) && locate(tree, item) != nullptr) {
        return eDUPLICATE;
    }
    SpareNodes spare;
    const OAK_RETCODE rc = prepare_splits(tree, &spare);
    if (rc != sOKAY) {
        return rc;
    }
    expand(tree, oak::stored(item), &spare);
    tree->cursor = BtCursor::on_item;
    ++tree->count;
    return sOKAY;
}

// ---- Delete -----------------------------------------------------------------

/// The root takes in its two children, which together fit it.
void absorb_children(B_BT tree, Node *left, Node *right) {
    Node &root = tree->root;
    void *separator = root.slots[0].data;
    oak::node_take(root, *left, 0, left->used);
    oak::node_merge(root, separator, *right);
    release_node(tree, left);
    release_node(tree, right);
    --tree->depth;
}

/// Joins two neighbours; the separator is left for the caller to remove, as the entry
/// at the parent's place in the path, with the child on its right side in use.
void merge_children(B_BT tree, B_BTREE_PATH *parent, uint32_t separator) {
    B_BTREE_SLOT *slots = parent->node->slots;
    Node *left = slots[separator].child;
    Node *right = slots[separator + 1].child;
    oak::node_merge(*left, slots[separator].data, *right);
    release_node(tree, right);
    slots[separator + 1].child = left;
    parent->slot = separator;
}

/// Fills up a node that has become too small, from a neighbour or together with one.
/// True when the parent is left with an entry to remove.
bool rebalance(B_BT tree, Node *node, B_BTREE_PATH *parent) {
    const uint32_t half = tree->slots >> 1;
    const uint32_t place = parent->slot;
    Node *above = parent->node;
    Node *left = place > 0 ? child_at(above, place - 1) : nullptr;
    Node *right = place < above->used ? child_at(above, place + 1) : nullptr;
    if (left != nullptr && left->used > half) {
        oak::node_rotate_right(*above, place - 1, *left, *node);
        return false;
    }
    if (right != nullptr && right->used > half) {
        oak::node_rotate_left(*above, place, *node, *right);
        return false;
    }
    if (above == &tree->root && above->used == 1) {
        absorb_children(tree, child_at(above, 0), child_at(above, 1));
        return false;
    }
    merge_children(tree, parent, left != nullptr ? place - 1 : place);
    return true;
}

/// Removes the entry at the path's end and puts right what becomes too small.
void shrink(B_BT tree) {
    for (uint32_t level = tree->pathlevel;; --level) {
        const B_BTREE_PATH &place = tree->path[level];
        oak::node_remove(*place.node, place.slot);
        if (level == 0 || place.node->used >= tree->slots >> 1 ||
            !rebalance(tree, place.node, &tree->path[level - 1])) {
            return;
        }
    }
}

/// Takes the item under the cursor out; there is no path then. An item of an inner
/// node gives its place to its successor, which is the first of a leaf.
void *take_out(B_BT tree, BtCursor cursor) {
    B_BTREE_PATH &place = path_end(tree);
    void **entry = &place.node->slots[place.slot].data;
    void *item = *entry;
    if (Node *behind = child_at(place.node, place.slot + 1); behind != nullptr) {
        ++place.slot;
        push_leftmost(tree, behind);
        *entry = path_end(tree).node->slots[0].data;
    }
    shrink(tree);
    --tree->count;
    leave_path(tree, cursor);
    return item;
}

/// Takes the item under the cursor out without remembering what follows it.
void *forget(B_BT tree) {
    void *item = take_out(tree, BtCursor::lost);
    if (tree->next_value == item) {
        tree->next_value = nullptr;
    }
    return item;
}

/// Deletes for a caller who may walk on: the cursor stands in front of the item that
/// follows, or past the end.
void *delete_and_stay(B_BT tree, const void *lookup) {
    if (locate(tree, lookup) == nullptr) {
        return nullptr;
    }
    tree->next_value = successor(tree);
    return take_out(tree, tree->next_value != nullptr ? BtCursor::lost : BtCursor::after_last);
}

void *delete_first(B_BT tree) {
    return first(tree) != nullptr ? forget(tree) : nullptr;
}

void *delete_last(B_BT tree) {
    return last(tree) != nullptr ? forget(tree) : nullptr;
}

OAK_RETCODE add_multiple(B_BT tree, uint32_t count, const void *const *items) {
    for (uint32_t i = 0; i < count; ++i) {
        const OAK_RETCODE rc = add(tree, items[i]);
        if (rc == sOKAY) {
            continue;
        }
        while (i-- > 0) {
            locate(tree, items[i]);
            forget(tree);
        }
        return rc;
    }
    return sOKAY;
}

// ---- Life -------------------------------------------------------------------

/// Fills in a tree whose tag is made; the caller frees the tag on failure.
OAK_RETCODE build(const char *name, uint32_t slots, uint32_t flags, OSL_MEMTAG tag,
                  const char *file, int32_t line, B_BT *out) {
    OAK_RETCODE rc = oak::get_zeroed(1, tag, out, file, line);
    if (rc != sOKAY) {
        return rc;
    }
    B_BT tree = *out;
    *tree = {};
    tree->tag = tag;
    tree->slots = slots;
    tree->depth = 1;
    tree->pathlevel = kNoBtPath;
    if (name != nullptr) {
        void *copy = nullptr;
        rc = osl_getMem_rc(0, tag, OSL_MEM_STRING, name, &copy, file, line);
        tree->name = static_cast<const char *>(copy);
    }
    if (rc == sOKAY) {
        rc = osl_poolCreateEx(tag, OSL_POOL_FIXED_SIZE, 0, nullptr, nullptr, nullptr,
                              &tree->node_pool);
    }
    if (rc == sOKAY) {
        rc = oak::get_zeroed(slots_to_allocate(slots), tag, &tree->root.slots, file, line);
    }
    if (rc == sOKAY) {
        rc = make_path_room(tree);
    }
    return rc == sOKAY ? oak::create_mutex((flags & B_BT_SYNC) != 0, file, line, &tree->sem) : rc;
}

} // namespace

OAK_RETCODE b_btCreateEx(const char *name, B_BT_COMPARE cmpfcn, uint32_t slots, uint32_t flags,
                         void *ctx, B_BT *pTree, const char *file, int32_t line) {
    if (pTree == nullptr) {
        return eINVNULLARG;
    }
    if (slots < kFewestSlots || cmpfcn == nullptr) {
        return eNOMEMORY; // this very code is what callers of a refused tree look for
    }
    OSL_MEMTAG tag = nullptr;
    OAK_RETCODE rc = osl_createTagEx_rc(nullptr, BLOCK_ALLOCATOR, 0, 0, 0, &tag, file, line);
    if (rc != sOKAY) {
        return rc;
    }
    B_BT tree = nullptr;
    rc = build(name, slots, flags, tag, file, line, &tree);
    if (rc != sOKAY) {
        osl_freeTagMem(tag, 1, file, line);
        return rc;
    }
    tree->cmpfcn = cmpfcn;
    tree->ctx = ctx;
    *pTree = tree;
    return sOKAY;
}

void b_btDestroy(B_BT tree) {
    if (tree != nullptr) {
        oak::delete_mutex(tree->sem);
        OSL_FREE_TAG(tree->tag);
    }
}

uint32_t b_btCount(B_BT tree) {
    if (tree == nullptr) {
        return 0;
    }
    return locked(tree, [=] { return tree->count; });
}

// ---- Change -----------------------------------------------------------------

OAK_RETCODE b_btAdd(B_BT tree, const void *item) {
    if (tree == nullptr) {
        return eINVNULLARG;
    }
    return locked(tree, [=] { return add(tree, item); });
}

OAK_RETCODE b_btAddMultiple(B_BT tree, uint32_t count, const void *const *items) {
    if (tree == nullptr || (items == nullptr && count > 0)) {
        return eINVNULLARG;
    }
    return locked(tree, [=] { return add_multiple(tree, count, items); });
}

void *b_btDelete(B_BT tree, const void *lookup) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return delete_and_stay(tree, lookup); });
}

void *b_btDeleteFirst(B_BT tree) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return delete_first(tree); });
}

void *b_btDeleteLast(B_BT tree) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return delete_last(tree); });
}

// ---- Find -------------------------------------------------------------------

void *b_btFind(B_BT tree, const void *lookup) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return find_or(tree, lookup, BT_RETURN_NONE); });
}

void *b_btFindOrNext(B_BT tree, const void *lookup) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return find_or(tree, lookup, BT_RETURN_NEXT); });
}

void *b_btFindOrPrev(B_BT tree, const void *lookup) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return find_or(tree, lookup, BT_RETURN_PREV); });
}

// ---- Walk -------------------------------------------------------------------

void *b_btFirst(B_BT tree) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return go_to_first(tree); });
}

void *b_btLast(B_BT tree) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return go_to_last(tree); });
}

void *b_btNext(B_BT tree) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return next(tree); });
}

void *b_btPrev(B_BT tree) {
    if (tree == nullptr) {
        return nullptr;
    }
    return locked(tree, [=] { return previous(tree); });
}
