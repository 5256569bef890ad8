// Card identifiers: three bytes, the device, the slot and the sub-slot.
#include "libcmpnt_db.h"

namespace {

constexpr uint32_t byte_mask = 0xFF;
constexpr uint32_t slot_shift = 8;
constexpr uint32_t sslot_shift = 16;

}  // namespace

uint32_t cmpnt_get_devid_by_card_id(uint32_t card_id) { return card_id & byte_mask; }

uint32_t cmpnt_get_slotid_by_card_id(uint32_t card_id) {
    return (card_id >> slot_shift) & byte_mask;
}

uint32_t cmpnt_get_sslotid_by_card_id(uint32_t card_id) {
    return (card_id >> sslot_shift) & byte_mask;
}

void cmpnt_combine_card_id(uint32_t *card_id, uint32_t dev_id, uint32_t slot_id,
                           uint32_t sslot_id) {
    if (card_id != nullptr) {
        *card_id = (dev_id & byte_mask) | (slot_id & byte_mask) << slot_shift |
                   (sslot_id & byte_mask) << sslot_shift;
    }
}
