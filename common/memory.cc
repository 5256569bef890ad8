// Zero-filled heap blocks.
#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include "common/log.hh"

void *cmpnt_malloc(uint32_t size) {
    if (size == 0) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return nullptr;
    }
    void *block = calloc(1, size);
    if (block == nullptr) {
        CMPNT_LOG(log_error, "malloc failed, size(%u), error(%s).\n", size, strerror(errno));
    }
    return block;
}

void cmpnt_free_pointer(void *pointer) { free(pointer); }

// Copies the pointer in and out by its bytes: the caller's variable has any pointer type.
void cmpnt_free_pointer_set_null(void *address_of_pointer) {
    if (address_of_pointer == nullptr) {
        return;
    }
    void *pointer = nullptr;
    memcpy(&pointer, address_of_pointer, sizeof(pointer));
    if (pointer != nullptr) {
        free(pointer);
        pointer = nullptr;
        memcpy(address_of_pointer, &pointer, sizeof(pointer));
    }
}
