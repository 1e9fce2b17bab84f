// B_STACK (stack.h). Rests on the platform's memory and mutexes.
//
// Everything lies under the stack's own tag. A node that is popped waits on a
// list of spare ones for the next push, so that a stack that stays within the
// depth it once had leaves the allocator alone.
#include "stack.h"

#include "container_internal.h"

namespace {

struct _b_stack_node {
    void *data;
    _b_stack_node *next; // towards the bottom
};

using Node = _b_stack_node;

} // namespace

struct _B_STACK {
    const char *name;
    void *ctx;
    B_STACK_COMPARE cmpfcn;
    OSL_MEMTAG tag;
    OSL_SEM sem;
    uint64_t count;
    Node *top;
    Node *bottom;
    Node *spare;
};

namespace {

using oak::ContainerLock;

OAK_RETCODE get_node(B_STACK stack, Node **out) {
    if (stack->spare == nullptr) {
        return oak::get_zeroed(1, stack->tag, out, __FILE__, __LINE__);
    }
    *out = stack->spare;
    stack->spare = stack->spare->next;
    return sOKAY;
}

OAK_RETCODE push(B_STACK stack, const void *item) {
    Node *node = nullptr;
    const OAK_RETCODE rc = get_node(stack, &node);
    if (rc != sOKAY) {
        return rc;
    }
    *node = {oak::stored(item), stack->top};
    if (stack->top == nullptr) {
        stack->bottom = node;
    }
    stack->top = node;
    ++stack->count;
    return sOKAY;
}

/// Takes the node at `*link` out, `above` being the one over it, and returns its item.
void *take_out(B_STACK stack, Node **link, Node *above) {
    Node *node = *link;
    *link = node->next;
    if (stack->bottom == node) {
        stack->bottom = above;
    }
    node->next = stack->spare;
    stack->spare = node;
    --stack->count;
    return node->data;
}

OAK_RETCODE find(B_STACK stack, const void *lookup, bool takeOut, void **pItem) {
    Node *above = nullptr;
    for (Node **link = &stack->top; *link != nullptr; link = &above->next) {
        Node *node = *link;
        if (stack->cmpfcn(lookup, node->data, stack->ctx) == OAK_EQ) {
            *pItem = takeOut ? take_out(stack, link, above) : node->data;
            return sOKAY;
        }
        above = node;
    }
    return sNOTFOUND;
}

/// Fills in a stack whose tag is made; the caller frees the tag on failure.
OAK_RETCODE build(const char *name, uint32_t flags, OSL_MEMTAG tag, const char *file, int32_t line,
                  B_STACK *out) {
    OAK_RETCODE rc = oak::get_zeroed(1, tag, out, file, line);
    if (rc != sOKAY) {
        return rc;
    }
    void *copy = nullptr;
    rc = osl_getMem_rc(0, tag, OSL_MEM_STRING, name, &copy, file, line);
    if (rc != sOKAY) {
        return rc;
    }
    (*out)->name = static_cast<const char *>(copy);
    (*out)->tag = tag;
    return oak::create_mutex((flags & B_STACK_SYNC) != 0, file, line, &(*out)->sem);
}

} // namespace

OAK_RETCODE b_stackCreateEx(const char *name, uint32_t flags, B_STACK_COMPARE cmpfcn, void *ctx,
                            const char *file, int32_t line, B_STACK *pStack) {
    if (name == nullptr || cmpfcn == nullptr || pStack == nullptr) {
        return eINVNULLARG;
    }
    OSL_MEMTAG tag = nullptr;
    OAK_RETCODE rc = osl_createTagEx_rc(nullptr, BLOCK_ALLOCATOR, 0, 0, 0, &tag, file, line);
    if (rc != sOKAY) {
        return rc;
    }
    B_STACK stack = nullptr;
    rc = build(name, flags, tag, file, line, &stack);
    if (rc != sOKAY) {
        osl_freeTagMem(tag, 1, file, line);
        return rc;
    }
    stack->cmpfcn = cmpfcn;
    stack->ctx = ctx;
    *pStack = stack;
    return sOKAY;
}

void b_stackDestroy(B_STACK stack) {
    if (stack != nullptr) {
        oak::delete_mutex(stack->sem);
        OSL_FREE_TAG(stack->tag);
    }
}

OAK_RETCODE b_stackPush(B_STACK stack, const void *item) {
    if (stack == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(stack->sem);
    return push(stack, item);
}

OAK_RETCODE b_stackPop(B_STACK stack, void **pItem) {
    if (stack == nullptr || pItem == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(stack->sem);
    if (stack->top == nullptr) {
        return sNODATA;
    }
    *pItem = take_out(stack, &stack->top, nullptr);
    return sOKAY;
}

OAK_RETCODE b_stackFind(B_STACK stack, const void *lookup, void **pItem) {
    if (stack == nullptr || pItem == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(stack->sem);
    return find(stack, lookup, false, pItem);
}

OAK_RETCODE b_stackFindAndDelete(B_STACK stack, const void *lookup, void **pItem) {
    if (stack == nullptr || pItem == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(stack->sem);
    return find(stack, lookup, true, pItem);
}

OAK_RETCODE b_stackCount(B_STACK stack, uint64_t *pCount) {
    if (stack == nullptr || pCount == nullptr) {
        return eINVNULLARG;
    }
    const ContainerLock lock(stack->sem);
    *pCount = stack->count;
    return sOKAY;
}

void *b_stackTop(B_STACK stack) {
    if (stack == nullptr) {
        return nullptr;
    }
    const ContainerLock lock(stack->sem);
    return stack->top != nullptr ? stack->top->data : nullptr;
}
