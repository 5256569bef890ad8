// Arrays of owned texts: each slot is null or a heap block that belongs to the array.
#include <stdlib.h>
#include <string.h>

#include "common/log.hh"

void cmpnt_set_pointer_array_null(char **array, int32_t count) {
    if (array == nullptr) {
        return;
    }
    for (int32_t i = 0; i < count; i++) {
        array[i] = nullptr;
    }
}

void cmpnt_recycle_pointer_array(char **array, int32_t count) {
    if (array == nullptr) {
        return;
    }
    for (int32_t i = 0; i < count; i++) {
        free(array[i]);
        array[i] = nullptr;
    }
}

int32_t cmpnt_malloc_and_memory(char **array, int32_t index, const char *text, uint32_t size) {
    if (text == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (array == nullptr || index < 0) {
        return -1;
    }
    char *block = static_cast<char *>(cmpnt_malloc(size));
    array[index] = block;
    if (block == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_malloc fail!\n");
        return -1;
    }
    memcpy(block, text, strnlen(text, size - 1));  // the block is zero behind it
    return 0;
}
