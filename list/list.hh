// The intrusive, circular, doubly linked list: a head is its own sentinel.
#ifndef CMPNT_LIST_LIST_HH
#define CMPNT_LIST_LIST_HH

#include "libcmpnt_db.h"

inline void list_make_empty(cmpnt_list_head *head) {
    head->next = head;
    head->prev = head;
}

inline bool list_is_empty(const cmpnt_list_head *head) { return head->next == head; }

inline void list_append(cmpnt_list_head *head, cmpnt_list_head *link) {
    link->next = head;
    link->prev = head->prev;
    head->prev->next = link;
    head->prev = link;
}

inline void list_unlink(cmpnt_list_head *link) {
    link->prev->next = link->next;
    link->next->prev = link->prev;
    list_make_empty(link);
}

template <class Node>
const Node *node_of(const cmpnt_list_head *link) {
    return reinterpret_cast<const Node *>(reinterpret_cast<const char *>(link) -
                                          offsetof(Node, link));
}

template <class Node>
const Node *node_or_null(const cmpnt_list_head *link) {
    return link != nullptr ? node_of<Node>(link) : nullptr;
}

inline const cmpnt_upgrade_node *upgrade_node_of(const cmpnt_list_head *link) {
    return node_of<cmpnt_upgrade_node>(link);
}

inline const cmpnt_smu_node *smu_node_of(const cmpnt_list_head *link) {
    return node_of<cmpnt_smu_node>(link);
}

// for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)): the records of a list
// whose nodes stay while it is walked.
class UpgradeRecords {
public:
    explicit UpgradeRecords(const cmpnt_list_head *head) : head_(head) {}

    class Iterator {
    public:
        explicit Iterator(const cmpnt_list_head *link) : link_(link) {}
        const cmpnt_upgrade_value &operator*() const { return upgrade_node_of(link_)->value; }
        Iterator &operator++() {
            link_ = link_->next;
            return *this;
        }
        bool operator!=(const Iterator &other) const { return link_ != other.link_; }

    private:
        const cmpnt_list_head *link_;
    };

    Iterator begin() const { return Iterator(head_->next); }
    Iterator end() const { return Iterator(head_); }

private:
    const cmpnt_list_head *head_;
};

// The list that a selector names; null for any other.
inline cmpnt_list_head *selected_list(int32_t list) {
    switch (list) {
        case CMPNT_UPGRADE_LIST:
            return &cmpnt_upgrade_list;
        case CMPNT_HP_LIST:
            return &cmpnt_hp_list;
        default:
            return nullptr;
    }
}

#endif
