// Texts in strcmp's order: all of one prefix stand together, behind what sorts before it.
#include "verify/sorted_texts.hh"

#include <stdlib.h>
#include <string.h>

namespace {

constexpr size_t first_capacity = 64;

int compare(const void *a, const void *b) {
    return strcmp(*static_cast<const char *const *>(a), *static_cast<const char *const *>(b));
}

}  // namespace

bool SortedTexts::add(const char *text) {
    if (count_ == capacity_) {
        const size_t capacity = capacity_ == 0 ? first_capacity : 2 * capacity_;
        void *grown = realloc(texts_, capacity * sizeof(*texts_));
        if (grown == nullptr) {
            return false;
        }
        texts_ = static_cast<char **>(grown);
        capacity_ = capacity;
    }
    char *copy = strdup(text);
    if (copy == nullptr) {
        return false;
    }
    texts_[count_++] = copy;
    return true;
}

void SortedTexts::sort() {
    if (count_ > 1) {
        qsort(texts_, count_, sizeof(*texts_), compare);
    }
}

void SortedTexts::clear() {
    for (size_t i = 0; i < count_; i++) {
        free(texts_[i]);
    }
    free(texts_);
    texts_ = nullptr;
    count_ = 0;
    capacity_ = 0;
}

const char *SortedTexts::lower_bound(const char *text) const {
    size_t low = 0;
    size_t high = count_;
    while (low < high) {
        const size_t middle = low + (high - low) / 2;
        if (strcmp(texts_[middle], text) < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < count_ ? texts_[low] : nullptr;
}

bool SortedTexts::contains(const char *text) const {
    const char *found = lower_bound(text);
    return found != nullptr && strcmp(found, text) == 0;
}

bool SortedTexts::any_has_prefix(const char *prefix) const {
    const char *found = lower_bound(prefix);
    return found != nullptr && strncmp(found, prefix, strlen(prefix)) == 0;
}
