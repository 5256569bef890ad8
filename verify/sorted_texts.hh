// Texts in strcmp's order, for questions about one of them.
#ifndef CMPNT_VERIFY_SORTED_TEXTS_HH
#define CMPNT_VERIFY_SORTED_TEXTS_HH

#include <stddef.h>

class SortedTexts {
public:
    SortedTexts() = default;
    SortedTexts(const SortedTexts &) = delete;
    SortedTexts &operator=(const SortedTexts &) = delete;
    ~SortedTexts() { clear(); }

    bool add(const char *text);  // a copy; false without memory
    void sort();                 // once, between adding and asking
    void clear();

    bool contains(const char *text) const;
    bool any_has_prefix(const char *prefix) const;

private:
    const char *lower_bound(const char *text) const;

    char **texts_ = nullptr;
    size_t count_ = 0;
    size_t capacity_ = 0;
};

#endif
