// The list of the digests that signed hash lists give.
#include "verify/hash_list.hh"

#include <stdint.h>
#include <string.h>

#include "common/log.hh"
#include "list/list.hh"

namespace {

const void *name_of(const cmpnt_list_head *link) { return node_of<hash_verify_list_t>(link)->name; }

uint32_t hash_name(const void *name) {
    return hash_text(static_cast<const char *>(name), SIZE_MAX);
}

bool is_same_name(const void *a, const void *b) {
    return strcmp(static_cast<const char *>(a), static_cast<const char *>(b)) == 0;
}

constexpr ListKey by_name = {name_of, hash_name, is_same_name};

}  // namespace

HashIndex::HashIndex() : index_(&hash_verify_list, by_name) {}

const hash_verify_list_t *HashIndex::find(const char *name) const {
    return node_or_null<hash_verify_list_t>(index_.find(name));
}

const hash_verify_list_t *find_hash(const HashIndex *index, const char *name) {
    if (index != nullptr) {
        return index->find(name);
    }
    return node_or_null<hash_verify_list_t>(first_of_name(&hash_verify_list, by_name, name));
}

static hash_verify_list_t *malloc_hash_node() {
    void *node = cmpnt_malloc(sizeof(hash_verify_list_t));
    if (node == nullptr) {
        CMPNT_LOG(log_error, "malloc hash_verify_list_t node failed.\n");
    }
    return static_cast<hash_verify_list_t *>(node);
}

HashTexts cmpnt_add_hash_verify_list(char *name, char *hash_value, HashIndex *index) {
    if (name == nullptr || hash_value == nullptr) {
        CMPNT_LOG(log_error, "param is null, patch_name(%p), hash_value(%p)\n",
                  static_cast<void *>(name), static_cast<void *>(hash_value));
        return HashTexts::failed;
    }
    if (find_hash(index, name) != nullptr) {
        return HashTexts::not_taken;
    }
    hash_verify_list_t *node = malloc_hash_node();
    if (node == nullptr) {
        CMPNT_LOG(log_error, "malloc_hash_node failed!\n");
        return HashTexts::failed;
    }
    node->name = name;
    node->hash_value = hash_value;
    list_append(&hash_verify_list, &node->link);
    if (index != nullptr) {
        index->add(node);
    }
    return HashTexts::taken;
}

int32_t cmpnt_add_hash_verify_list(char *name, char *hash_value) {
    return cmpnt_add_hash_verify_list(name, hash_value, nullptr) == HashTexts::failed ? -1 : 0;
}

void cmpnt_recycle_hash_verify_list(void) {
    cmpnt_list_head *link = hash_verify_list.next;
    list_make_empty(&hash_verify_list);
    while (link != &hash_verify_list) {
        hash_verify_list_t *node = CMPNT_HASH_NODE(link);
        link = link->next;
        cmpnt_free_pointer(node->name);
        cmpnt_free_pointer(node->hash_value);
        cmpnt_free_pointer(node);
    }
}
