// B_LL (ll.h). Rests on the platform's memory and mutexes.
//
// One routine links a node in and one takes a node out, whatever end or middle
// it is; the exported functions say where. A cursor on a node that goes is
// cleared with it: the head's is settled behaviour, and clearing the others lets
// a walk that goes on where it should not end instead of reading freed memory.
#include "ll.h"

#include "container_internal.h"

namespace {

struct S_B_LL_NODE {
    S_B_LL_NODE *next;
    S_B_LL_NODE *prev;
    void *ptr;
};

using Node = S_B_LL_NODE;

} // namespace

struct S_B_LINKED_LIST {
    Node *head;
    Node *tail;
    Node *cur; // the cursor, null for none
    OSL_SEM sem;
    OSL_MEMTAG tag;
    uint32_t count;
};

namespace {

using oak::ContainerLock;

void *item_of(const Node *node) {
    return node != nullptr ? node->ptr : nullptr;
}

/// Makes `next` follow `prev`; null stands for the list's end on that side.
void join(B_LL list, Node *prev, Node *next) {
    (prev != nullptr ? prev->next : list->head) = next;
    (next != nullptr ? next->prev : list->tail) = prev;
}

/// Puts a new node between two neighbours.
OAK_RETCODE insert_between(B_LL list, Node *prev, Node *next, const void *item) {
    Node *node = nullptr;
    const OAK_RETCODE rc = oak::get_zeroed(1, list->tag, &node, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    node->ptr = oak::stored(item);
    join(list, prev, node);
    join(list, node, next);
    ++list->count;
    return sOKAY;
}

/// Takes a node out, null for none, and returns its item.
void *take_out(B_LL list, Node *node) {
    if (node == nullptr) {
        return nullptr;
    }
    void *item = node->ptr;
    join(list, node->prev, node->next);
    if (list->cur == node) {
        list->cur = nullptr;
    }
    --list->count;
    OSL_FREE(node, list->tag);
    return item;
}

void *move_cursor(B_LL list, Node *node) {
    list->cur = node;
    return item_of(node);
}

/// The node of the very pointer: at the head, at the tail, or by a walk.
Node *node_of(B_LL list, const void *item) {
    if (list->head == nullptr || list->head->ptr == item) {
        return list->head;
    }
    if (list->tail->ptr == item) {
        return list->tail;
    }
    Node *node = list->head->next;
    while (node != nullptr && node->ptr != item) {
        node = node->next;
    }
    return node;
}

OAK_RETCODE visit_all(const Node *first, Node *Node::*step, B_LL_FCN fcn, void *ctx) {
    for (const Node *node = first; node != nullptr; node = node->*step) {
        const OAK_RETCODE rc = fcn(node->ptr, ctx);
        if (rc != sOKAY) {
            return rc;
        }
    }
    return sOKAY;
}

} // namespace

OAK_RETCODE b_llCreate(OAK_BOOL_T sync, OSL_MEMTAG tag, B_LL *pList) {
    if (pList == nullptr) {
        return eINVNULLARG;
    }
    B_LL list = nullptr;
    OAK_RETCODE rc = oak::get_zeroed(1, tag, &list, __FILE__, __LINE__);
    if (rc != sOKAY) {
        return rc;
    }
    rc = oak::create_mutex(sync != OAK_FALSE, __FILE__, __LINE__, &list->sem);
    if (rc != sOKAY) {
        OSL_FREE(list, tag);
        return rc;
    }
    list->tag = tag;
    *pList = list;
    return sOKAY;
}

void b_llDestroy(B_LL list) {
    if (list == nullptr) {
        return;
    }
    while (list->head != nullptr) {
        take_out(list, list->head);
    }
    oak::delete_mutex(list->sem);
    OSL_FREE(list, list->tag);
}

uint32_t b_llGetNodeCount(B_LL list) {
    if (list == nullptr) {
        return 0;
    }
    const ContainerLock lock(list->sem);
    return list->count;
}

OAK_RETCODE b_llAddHead(B_LL list, const void *item) {
    if (list == nullptr || item == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(list->sem);
    return insert_between(list, nullptr, list->head, item);
}

OAK_RETCODE b_llAddTail(B_LL list, const void *item) {
    if (list == nullptr || item == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(list->sem);
    return insert_between(list, list->tail, nullptr, item);
}

void *b_llGetHead(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return item_of(list->head);
}

void *b_llGetTail(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return item_of(list->tail);
}

void *b_llFirst(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return move_cursor(list, list->head);
}

void *b_llLast(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return move_cursor(list, list->tail);
}

void *b_llNext(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return move_cursor(list, list->cur != nullptr ? list->cur->next : nullptr);
}

void *b_llPrev(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return move_cursor(list, list->cur != nullptr ? list->cur->prev : nullptr);
}

void *b_llDeleteHead(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return take_out(list, list->head);
}

void *b_llDeleteTail(B_LL list) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return take_out(list, list->tail);
}

OAK_RETCODE b_llIterate(B_LL list, B_LL_FCN fcn, void *ctx) {
    if (list == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(list->sem);
    return visit_all(list->head, &Node::next, fcn, ctx);
}

OAK_RETCODE b_llIterateBackward(B_LL list, B_LL_FCN fcn, void *ctx) {
    if (list == nullptr || fcn == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(list->sem);
    return visit_all(list->tail, &Node::prev, fcn, ctx);
}

void *b_llRemove(B_LL list, const void *item) {
    if (list == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(list->sem);
    return take_out(list, node_of(list, item));
}
