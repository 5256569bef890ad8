// Texts in strcmp's order, for questions about one of them.
#ifndef CMPNT_VERIFY_SORTED_TEXTS_HH
#define CMPNT_VERIFY_SORTED_TEXTS_HH

#include <stddef.h>

// Holds pointers only: the texts stay where they are.
class SortedTexts {
public:
    SortedTexts() = default;
    SortedTexts(const SortedTexts &) = delete;
    SortedTexts &operator=(const SortedTexts &) = delete;
    ~SortedTexts() { clear(); }

    bool add(const char *text);  // false without memory
    void sort();                 // once, between adding and asking
    void clear();

    bool contains(const char *text) const;
    bool any_begins_with(const char *beginning) const;

private:
    const char *first_not_before(const char *text) const;

    const char **texts_ = nullptr;
    size_t count_ = 0;
    size_t capacity_ = 0;
};

#endif
