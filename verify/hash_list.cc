// The list of the digests that signed hash lists give.
#include "verify/hash_list.hh"

#include <string.h>

#include "common/log.hh"
#include "list/list.hh"

namespace {

constexpr size_t walked_nodes = 8;  // a walk over so few is no slower

const hash_verify_list_t *first_of_name(const char *name) {
    for (cmpnt_list_head *link = hash_verify_list.next; link != &hash_verify_list;
         link = link->next) {
        const hash_verify_list_t *node = CMPNT_HASH_NODE(link);
        if (strcmp(node->name, name) == 0) {
            return node;
        }
    }
    return nullptr;
}

}  // namespace

HashIndex::HashIndex() {
    for (const cmpnt_list_head *link = hash_verify_list.next; link != &hash_verify_list;
         link = link->next) {
        nodes_++;
    }
    if (nodes_ > walked_nodes) {
        build();
    }
}

const hash_verify_list_t *HashIndex::find(const char *name) const {
    return walks_ || !is_built_ ? first_of_name(name)
                                : static_cast<const hash_verify_list_t *>(names_.find(name));
}

void HashIndex::add(const hash_verify_list_t *node) {
    nodes_++;
    if (is_built_) {
        walks_ = walks_ || !names_.add(node->name, node);
    } else if (nodes_ > walked_nodes) {
        build();
    }
}

void HashIndex::build() {
    is_built_ = true;
    for (cmpnt_list_head *link = hash_verify_list.next; link != &hash_verify_list && !walks_;
         link = link->next) {
        const hash_verify_list_t *node = CMPNT_HASH_NODE(link);
        walks_ = !names_.add(node->name, node);
    }
}

const hash_verify_list_t *find_hash(const HashIndex *index, const char *name) {
    return index != nullptr ? index->find(name) : first_of_name(name);
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
