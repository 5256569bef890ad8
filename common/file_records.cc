// The texts that file list and communication list records own.
#include "common/log.hh"

namespace {

// A record holds no more names than that, whatever a caller or its own count field says.
int32_t name_slots(int32_t count) {
    return count > CMPNT_FILE_LIST_MAX ? CMPNT_FILE_LIST_MAX : count;
}

template <typename Record>
void set_texts_null(Record *record, int32_t count) {
    record->first_text = nullptr;
    record->second_text = nullptr;
    cmpnt_set_pointer_array_null(record->names, name_slots(count));
}

}  // namespace

void cmpnt_set_file_info_pointer_null(file_name_list *record, int32_t count) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return;
    }
    set_texts_null(record, count);
}

void cmpnt_recycle_file_info_pointer(file_name_list *record, int32_t count) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return;
    }
    cmpnt_free_pointer_set_null(&record->first_text);
    cmpnt_free_pointer(record->second_text);  // and left dangling, as callers know it
    cmpnt_recycle_pointer_array(record->names, name_slots(count));
}

void cmpnt_set_comm_info_pointer_null(cmpnt_comm_info *record, int32_t count) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return;
    }
    set_texts_null(record, count);
}

void cmpnt_recycle_comm_info_pointer(cmpnt_comm_info *record, int32_t count) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return;
    }
    cmpnt_free_pointer_set_null(&record->first_text);
    cmpnt_free_pointer_set_null(&record->second_text);
    cmpnt_recycle_pointer_array(record->names, name_slots(count));
}

void cmpnt_free_file_name(file_name_list *record) {
    if (record != nullptr) {
        cmpnt_recycle_pointer_array(record->names, name_slots(record->count));
    }
}
